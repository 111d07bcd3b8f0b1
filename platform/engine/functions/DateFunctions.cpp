#include "platform/engine/functions/Calendar.h"
#include "platform/engine/functions/Call.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Failure.h"
#include "platform/runtime/Numbers.h"

#include <array>

namespace engine::functions {

namespace {

using runtime::Raise;

constexpr qint64 secondsOfDay = 86400;
const QTime midnight(0, 0);

QDateTime AtMidnight(QDate date) {
    return {date, midnight, Qt::UTC};
}

QDateTime DayZero() {
    return AtMidnight(QDate(1899, 12, 30));
}

QTime WholeSeconds(QTime time) {
    return {time.hour(), time.minute(), time.second()};
}

Value DateToday(const Arguments&) {
    return AtMidnight(runtime::Today());
}

Value TimeNow(const Arguments&) {
    return QDateTime(DayZero().date(), WholeSeconds(runtime::Now().time()), Qt::UTC);
}

Value Now(const Arguments&) {
    const QDateTime now = runtime::Now();
    return QDateTime(now.date(), WholeSeconds(now.time()), Qt::UTC);
}

template <int (*Part)(const QDateTime&)>
Value PartOf(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    return Part(arguments.Date(0));
}

int YearOf(const QDateTime& value) {
    return value.date().year();
}

int MonthOf(const QDateTime& value) {
    return value.date().month();
}

int DayOf(const QDateTime& value) {
    return value.date().day();
}

int HourOf(const QDateTime& value) {
    return value.time().hour();
}

int MinuteOf(const QDateTime& value) {
    return value.time().minute();
}

int SecondOf(const QDateTime& value) {
    return value.time().second();
}

constexpr int sunday = 1;

Value Weekday(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    return WeekdayOf(arguments.Date(0).date(), arguments.Long(1, sunday));
}

Value DateAdd(const Arguments& arguments) {
    const Interval interval = IntervalOf(arguments.Text(0));
    const std::int32_t count = arguments.Long(1);
    if (arguments.IsNull(2))
        return {};
    const QDateTime start = arguments.Date(2);
    const auto months = [&start, count](qint64 each) {
        // Beyond this the range of dates is left anyway, and the calendar's own numbers are not.
        const qint64 limit = 12 * 10000;
        const qint64 all = each * count;
        return NumberOf(all > limit || all < -limit ? QDateTime() : start.addMonths(static_cast<int>(all)));
    };
    switch (interval) {
    case Interval::Year:
        return months(12);
    case Interval::Quarter:
        return months(3);
    case Interval::Month:
        return months(1);
    case Interval::DayOfYear:
    case Interval::Day:
    case Interval::Weekday:
        return NumberOf(start.addDays(count));
    case Interval::Week:
        return NumberOf(start.addDays(qint64{count} * 7));
    case Interval::Hour:
        return NumberOf(start.addSecs(qint64{count} * 3600));
    case Interval::Minute:
        return NumberOf(start.addSecs(qint64{count} * 60));
    case Interval::Second:
        return NumberOf(start.addSecs(count));
    }
    Raise(runtime::InvalidCall);
}

qint64 FloorDivide(qint64 number, qint64 divisor) {
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

Value DateDiff(const Arguments& arguments) {
    const Interval interval = IntervalOf(arguments.Text(0));
    if (arguments.IsNull(1) || arguments.IsNull(2))
        return {};
    const QDateTime from = arguments.Date(1);
    const QDateTime to = arguments.Date(2);
    const int first = arguments.Long(3, sunday);
    const qint64 days = DayNumber(to.date()) - DayNumber(from.date());
    const auto boundaries = [&from, &to](qint64 seconds) {
        return FloorDivide(SecondNumber(to), seconds) - FloorDivide(SecondNumber(from), seconds);
    };
    const auto weekStart = [first](QDate date) { return DayNumber(date) - WeekdayOf(date, first) + 1; };
    const qint64 months =
        (to.date().year() - from.date().year()) * 12 + to.date().month() - from.date().month();
    qint64 count = 0;
    switch (interval) {
    case Interval::Year:
        count = to.date().year() - from.date().year();
        break;
    case Interval::Quarter:
        count = (to.date().year() - from.date().year()) * 4 + (to.date().month() - 1) / 3 -
                (from.date().month() - 1) / 3;
        break;
    case Interval::Month:
        count = months;
        break;
    case Interval::DayOfYear:
    case Interval::Day:
        count = days;
        break;
    case Interval::Weekday:
        count = days / 7;
        break;
    case Interval::Week:
        count = (weekStart(to.date()) - weekStart(from.date())) / 7;
        break;
    case Interval::Hour:
        count = boundaries(3600);
        break;
    case Interval::Minute:
        count = boundaries(60);
        break;
    case Interval::Second:
        count = boundaries(1);
        break;
    }
    if (count != static_cast<std::int32_t>(count))
        Raise(runtime::Overflow);
    return static_cast<std::int64_t>(count);
}

Value DatePart(const Arguments& arguments) {
    const Interval interval = IntervalOf(arguments.Text(0));
    if (arguments.IsNull(1))
        return {};
    const QDateTime value = arguments.Date(1);
    const QDate date = value.date();
    const int first = arguments.Long(2, sunday);
    const int rule = arguments.Long(3, 1);
    switch (interval) {
    case Interval::Year:
        return date.year();
    case Interval::Quarter:
        return (date.month() - 1) / 3 + 1;
    case Interval::Month:
        return date.month();
    case Interval::DayOfYear:
        return date.dayOfYear();
    case Interval::Day:
        return date.day();
    case Interval::Weekday:
        return WeekdayOf(date, first);
    case Interval::Week:
        return WeekOf(date, first, rule);
    case Interval::Hour:
        return value.time().hour();
    case Interval::Minute:
        return value.time().minute();
    case Interval::Second:
        return value.time().second();
    }
    Raise(runtime::InvalidCall);
}

/// A part that DATESERIAL and TIMESERIAL take: 16 bits.
qint64 Part(const Arguments& arguments, int place) {
    return runtime::Int16(arguments.Long(place)).value();
}

Value DateSerial(const Arguments& arguments) {
    qint64 year = Part(arguments, 0);
    if (year >= 0 && year < 100)
        year += year < 30 ? 2000 : 1900;
    const qint64 months = Part(arguments, 1) - 1;
    year += FloorDivide(months, 12);
    const int month = static_cast<int>(months - FloorDivide(months, 12) * 12) + 1;
    return NumberOf(AtMidnight(QDate(static_cast<int>(year), month, 1).addDays(Part(arguments, 2) - 1)));
}

Value TimeSerial(const Arguments& arguments) {
    const qint64 seconds = Part(arguments, 0) * 3600 + Part(arguments, 1) * 60 + Part(arguments, 2);
    return static_cast<double>(seconds) / static_cast<double>(secondsOfDay);
}

/// A date argument of a function that does not pass NULL on.
QDateTime RequiredDate(const Arguments& arguments) {
    if (arguments.IsNull(0))
        Raise(runtime::InvalidUseOfNull);
    return arguments.Date(0);
}

Value DateValue(const Arguments& arguments) {
    return AtMidnight(RequiredDate(arguments).date());
}

Value TimeValue(const Arguments& arguments) {
    return QDateTime(DayZero().date(), RequiredDate(arguments).time(), Qt::UTC);
}

Value CDate(const Arguments& arguments) {
    return RequiredDate(arguments);
}

Value CVDate(const Arguments& arguments) {
    return arguments.IsNull(0) ? Value() : CDate(arguments);
}

Value MonthNameFunction(const Arguments& arguments) {
    const std::int32_t month = arguments.Long(0);
    if (month < 1 || month > 12)
        Raise(runtime::InvalidCall);
    return runtime::MonthName(month, arguments.Has(1) && arguments.Number(1) != 0);
}

Value WeekdayNameFunction(const Arguments& arguments) {
    const std::int32_t place = arguments.Long(0);
    const std::int32_t first = arguments.Long(2, 0);
    if (place < 1 || place > 7 || first < 0 || first > 7)
        Raise(runtime::InvalidCall);
    const int fromMonday = (place - 1 + (first == 0 ? 0 : first + 5)) % 7;
    return WeekdayName(fromMonday + 1, arguments.Has(1) && arguments.Number(1) != 0);
}

constexpr ScalarFunction functions[] = {
    {{"DATE", 0, 0, DataType::Date}, DateToday, false},
    {{"TIME", 0, 0, DataType::Date}, TimeNow, false},
    {{"NOW", 0, 0, DataType::Date}, Now, false},
    // Texts of a day without a year mean the current one, so whatever reads a date depends on today.
    {{"YEAR", 1, 1, DataType::Short}, PartOf<YearOf>, false},
    {{"MONTH", 1, 1, DataType::Short}, PartOf<MonthOf>, false},
    {{"DAY", 1, 1, DataType::Short}, PartOf<DayOf>, false},
    {{"HOUR", 1, 1, DataType::Short}, PartOf<HourOf>, false},
    {{"MINUTE", 1, 1, DataType::Short}, PartOf<MinuteOf>, false},
    {{"SECOND", 1, 1, DataType::Short}, PartOf<SecondOf>, false},
    {{"WEEKDAY", 1, 2, DataType::Short}, Weekday, false},
    {{"DATEADD", 3, 3, DataType::Date}, DateAdd, false},
    {{"DATEDIFF", 3, 5, DataType::Long}, DateDiff, false},
    {{"DATEPART", 2, 4, DataType::Short}, DatePart, false},
    {{"DATESERIAL", 3, 3, DataType::Date}, DateSerial},
    {{"DATEVALUE", 1, 1, DataType::Date}, DateValue, false},
    {{"TIMESERIAL", 3, 3, DataType::Date}, TimeSerial},
    {{"TIMEVALUE", 1, 1, DataType::Date}, TimeValue, false},
    {{"CDATE", 1, 1, DataType::Date}, CDate, false},
    {{"CVDATE", 1, 1, DataType::Date}, CVDate, false},
    {{"MONTHNAME", 1, 2, DataType::Text}, MonthNameFunction},
    {{"WEEKDAYNAME", 1, 3, DataType::Text}, WeekdayNameFunction},
};

} // namespace

std::span<const ScalarFunction> DateFunctions() {
    return functions;
}

} // namespace engine::functions
