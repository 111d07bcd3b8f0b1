#include "platform/runtime/Dates.h"

#include "platform/runtime/DateReader.h"
#include "platform/runtime/Failure.h"

#include <algorithm>
#include <cmath>

namespace runtime {

namespace {

constexpr double MillisecondsOfDay = 86'400'000;
constexpr double SecondsOfDay = 86'400;

constexpr double DayBeforeFirst = -657'435; // 31.12.99
constexpr double DayBehindLast = 2'958'466; // 1.1.10000

std::optional<QDate> fixedToday;

QString TimeText(QTime time) {
    return QString::number(time.hour()) + time.toString(QStringLiteral(":mm:ss"));
}

} // namespace

bool IsDate(const QString& text) {
    return TryTextToDate(text).has_value();
}

QDateTime TextToDate(const QString& text) {
    const std::optional<QDateTime> value = TryTextToDate(text);
    if (!value)
        Raise(TypeMismatch);
    return *value;
}

std::optional<QDateTime> TryTextToDate(const QString& text) {
    const std::optional<QDateTime> shortDate = ReadShortDate(text);
    return shortDate ? shortDate : ReadDate(text, Today());
}

QString DateToText(const QDateTime& value) {
    const bool midnight = value.time().msecsSinceStartOfDay() < 1000;
    if (value.date() == DayZero())
        return TimeText(value.time());
    const QString date = value.date().toString(QStringLiteral("dd.MM.yyyy"));
    return midnight ? date : date + u' ' + TimeText(value.time());
}

QString DateToText(QDate date) {
    return DateToText(QDateTime(date, QTime(0, 0), Qt::UTC));
}

int FullYear(int year) {
    constexpr int firstOfLastCentury = 30;
    if (year < 0 || year > 99)
        return year;
    return year + (year < firstOfLastCentury ? 2000 : 1900);
}

QDate DayZero() {
    return {1899, 12, 30};
}

bool IsDateNumber(double number) {
    return number > DayBeforeFirst && number < DayBehindLast;
}

QDateTime DateFromNumber(double number) {
    // The fraction counts forward within its day on both sides of day 0.
    const double days = std::trunc(number);
    double seconds = std::round(std::abs(number - days) * SecondsOfDay);
    if (!IsDateNumber(number))
        Raise(Overflow);
    if (days == DayBehindLast - 1)
        seconds = std::min(seconds, SecondsOfDay - 1); // no day follows
    return QDateTime(DayZero().addDays(static_cast<qint64>(days)), QTime(0, 0), Qt::UTC)
        .addSecs(static_cast<qint64>(seconds));
}

double NumberFromDate(const QDateTime& value) {
    const double days = static_cast<double>(DayZero().daysTo(value.date()));
    const double fraction = value.time().msecsSinceStartOfDay() / MillisecondsOfDay;
    return days < 0 ? days - fraction : days + fraction;
}

QDate Today() {
    return fixedToday.value_or(QDate::currentDate());
}

QDateTime Now() {
    return {Today(), QTime::currentTime(), Qt::UTC};
}

FixedToday::FixedToday(QDate day)
    : m_before(fixedToday) {
    fixedToday = day;
}

FixedToday::~FixedToday() {
    fixedToday = m_before;
}

QString MonthName(int month, bool abbreviated) {
    if (month < 1 || month > static_cast<int>(Months.size()))
        Raise(InvalidCall);
    const MonthForms& forms = Months[static_cast<std::size_t>(month - 1)];
    return QString::fromUtf16(abbreviated ? forms.abbreviated : forms.nominative);
}

} // namespace runtime
