#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

namespace engine::functions {

/// A part of a date by the letters that DATEADD, DATEDIFF and DATEPART take.
enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

/// By its letters, case ignored; failure 5 for others.
Interval IntervalOf(const QString& letters);

/// Place of a day in a week that starts on `first` (1 Sunday ... 7 Saturday, 0 as the settings have it:
/// Monday), from 1. Failure 5 for another `first`.
int WeekdayOf(QDate date, int first);

/// Number of the week of a year. `rule`: 1 the week of 1 January is the first (0 too), 2 the first of four
/// days in the year, 3 the first whole one. Failure 5 for others.
int WeekOf(QDate date, int first, int rule);

/// Russian name of a day of the week, 1 Monday to 7 Sunday.
QString WeekdayName(int day, bool abbreviated);

/// Days since 30.12.1899; seconds since the midnight before that day.
qint64 DayNumber(QDate date);
qint64 SecondNumber(const QDateTime& value);

} // namespace engine::functions
