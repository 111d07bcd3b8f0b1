#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

#include <optional>

namespace runtime {

// Dates by Russian regional settings, whatever the system's are: short date dd.MM.yyyy, order
// day-month-year, separator '.', time H:mm:ss, Russian month names. Range 1.1.100 to 31.12.9999. A value is a
// QDateTime in UTC (so that no daylight saving bends it); a time alone lies on day 0, 30.12.1899.

/// Whether TextToDate reads the text. A plain number is no date, a day that does not exist is none.
bool IsDate(const QString& text);

/// Reads a date, a time or both. Failure 13 if the text is none.
QDateTime TextToDate(const QString& text);

/// The same without a failure.
std::optional<QDateTime> TryTextToDate(const QString& text);

/// Short date, then a blank and H:mm:ss if there is a time; the date is left out on day 0.
QString DateToText(const QDateTime& value);
QString DateToText(QDate date);

/// A year as it is written: 0 to 29 mean 2000 to 2029, 30 to 99 mean 1930 to 1999, others themselves.
int FullYear(int year);

/// Day 0 of date numbers, 30.12.1899.
QDate DayZero();
/// A date number is days since day 0, the fraction is the time of day, of which parts of a second are
/// rounded. Failure 6 for a number that IsDateNumber refuses.
QDateTime DateFromNumber(double number);
double NumberFromDate(const QDateTime& value);
/// Whether the number is that of a moment from 1.1.100 0:00 to the end of 31.12.9999. All moments of a day
/// before day 0 have numbers below that of its midnight.
bool IsDateNumber(double number);

/// Today and now from the one date service; nothing else asks the system.
QDate Today();
QDateTime Now();

/// While alive, Today() is the given day (Now() keeps the clock's time on it); for tests.
class FixedToday {
public:
    explicit FixedToday(QDate day);
    ~FixedToday();
    FixedToday(const FixedToday&) = delete;
    FixedToday& operator=(const FixedToday&) = delete;

private:
    std::optional<QDate> m_before;
};

/// Full Russian month name, nominative, 1 to 12.
QString MonthName(int month, bool abbreviated = false);

} // namespace runtime
