#include "platform/engine/functions/Calendar.h"
#include "platform/engine/functions/Call.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"

#include <algorithm>
#include <array>

namespace engine::functions {

namespace {

using runtime::Raise;

constexpr int secondsOfDay = 86400;
constexpr int sunday = 1;

qint64 FloorDivide(qint64 number, qint64 divisor) {
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

qint64 DayNumber(const QDateTime& value) {
    return runtime::DayZero().daysTo(value.date());
}

/// Number of the span of so many seconds in which a moment lies.
template <int Seconds>
qint64 TimeNumber(const QDateTime& value, int /*first*/) {
    return FloorDivide(DayNumber(value) * secondsOfDay + value.time().msecsSinceStartOfDay() / 1000, Seconds);
}

qint64 WeekNumber(const QDateTime& value, int first) {
    return FloorDivide(DayNumber(value) - WeekdayOf(value.date(), first) + 1, 7);
}

template <int Months>
qint64 MonthNumber(const QDateTime& value, int /*first*/) {
    return (value.date().year() * 12 + value.date().month() - 1) / Months;
}

/// A part of a date as DATEADD, DATEDIFF and DATEPART know it. `first` is the first day of the week, `rule`
/// that of the first week of the year.
struct Interval {
    QStringView letters;
    int months; ///< that DATEADD adds for one
    int seconds;
    qint64 (*number)(const QDateTime& value, int first); ///< DATEDIFF tells how far two of them are apart
    int divisor;                                         ///< of that distance
    int (*part)(const QDateTime& value, int first, int rule);
};

using Moment = const QDateTime&;

constexpr auto intervals = std::to_array<Interval>({
    {u"yyyy", 12, 0, MonthNumber<12>, 1, [](Moment m, int, int) { return m.date().year(); }},
    {u"q", 3, 0, MonthNumber<3>, 1, [](Moment m, int, int) { return (m.date().month() + 2) / 3; }},
    {u"m", 1, 0, MonthNumber<1>, 1, [](Moment m, int, int) { return m.date().month(); }},
    {u"y", 0, secondsOfDay, TimeNumber<secondsOfDay>, 1,
     [](Moment m, int, int) { return m.date().dayOfYear(); }},
    {u"d", 0, secondsOfDay, TimeNumber<secondsOfDay>, 1, [](Moment m, int, int) { return m.date().day(); }},
    {u"w", 0, secondsOfDay, TimeNumber<secondsOfDay>, 7,
     [](Moment m, int first, int) { return WeekdayOf(m.date(), first); }},
    {u"ww", 0, 7 * secondsOfDay, WeekNumber, 1,
     [](Moment m, int first, int rule) { return WeekOf(m.date(), first, rule); }},
    {u"h", 0, 3600, TimeNumber<3600>, 1, [](Moment m, int, int) { return m.time().hour(); }},
    {u"n", 0, 60, TimeNumber<60>, 1, [](Moment m, int, int) { return m.time().minute(); }},
    {u"s", 0, 1, TimeNumber<1>, 1, [](Moment m, int, int) { return m.time().second(); }},
});

/// By its letters, case ignored; failure 5 for others.
const Interval& IntervalOf(const QString& letters) {
    const auto found = std::ranges::find_if(intervals, [&](const Interval& interval) {
        return interval.letters.compare(letters, Qt::CaseInsensitive) == 0;
    });
    if (found == intervals.end())
        Raise(runtime::InvalidCall);
    return *found;
}

Value DateAdd(const QString& letters, const Value& number, const Value& start) {
    const Interval& interval = IntervalOf(letters);
    const qint64 count = number.Long();
    if (start.IsNull())
        return {};
    // Beyond this the range of dates is left anyway, and the calendar's own numbers are not.
    constexpr qint64 mostMonths = 12 * 10000;
    const qint64 months = std::clamp(interval.months * count, -mostMonths, mostMonths);
    return NumberOf(DateOf(start).addMonths(static_cast<int>(months)).addSecs(interval.seconds * count));
}

Value DateDiff(const QString& letters, const Value& from, const Value& to,
               const std::optional<Value>& firstDay, const std::optional<Value>& /*rule*/) {
    const Interval& interval = IntervalOf(letters);
    if (from.IsNull() || to.IsNull())
        return {};
    const QDateTime start = DateOf(from);
    const QDateTime end = DateOf(to);
    const int first = firstDay ? firstDay->Long() : sunday;
    const qint64 count = (interval.number(end, first) - interval.number(start, first)) / interval.divisor;
    if (count != static_cast<std::int32_t>(count))
        Raise(runtime::Overflow);
    return std::int64_t{count};
}

Value DatePart(const QString& letters, const Value& value, const std::optional<Value>& firstDay,
               const std::optional<Value>& rule) {
    const Interval& interval = IntervalOf(letters);
    if (value.IsNull())
        return {};
    const QDateTime moment = DateOf(value);
    const int first = firstDay ? firstDay->Long() : sunday;
    return interval.part(moment, first, rule ? rule->Long() : 1);
}

QDateTime AtMidnight(QDate date) {
    return {date, QTime(0, 0), Qt::UTC};
}

QDateTime OnDayZero(QTime time) {
    return {runtime::DayZero(), time, Qt::UTC};
}

QDateTime NowInSeconds() {
    const QDateTime now = runtime::Now();
    return now.addMSecs(-now.time().msec());
}

/// A part that DATESERIAL and TIMESERIAL take: failure 6 beyond 16 bits.
struct Part {
    qint64 number;
    explicit Part(const Value& value)
        : number(runtime::Int16(value.Long()).value()) {}
};

/// Months and days outside their ranges carry over.
QDateTime DateSerial(Part year, Part month, Part day) {
    const qint64 months = month.number - 1;
    const qint64 years = runtime::FullYear(static_cast<int>(year.number)) + FloorDivide(months, 12);
    const qint64 ofYear = months - FloorDivide(months, 12) * 12 + 1;
    return AtMidnight(QDate(static_cast<int>(years), static_cast<int>(ofYear), 1).addDays(day.number - 1));
}

QString MonthNameOf(Within<1, 12> month, std::optional<double> abbreviated) {
    return runtime::MonthName(month, abbreviated.value_or(0) != 0);
}

QString WeekdayNameOf(const Value& place, const std::optional<Value>& abbreviated,
                      const std::optional<Value>& firstDay) {
    const std::int32_t day = place.Long();
    const std::int32_t first = firstDay ? firstDay->Long() : 0;
    if (day < 1 || day > 7 || first < 0 || first > 7)
        Raise(runtime::InvalidCall);
    const int fromMonday = (day - 1 + (first == 0 ? 0 : first + 5)) % 7;
    return WeekdayName(fromMonday + 1, abbreviated && abbreviated->Number() != 0);
}

using enum DataType;
using Answers::Vary;

constexpr auto functions = std::to_array<ScalarFunction>({
    {"DATE", Date, Nulls::Taken, [] { return AtMidnight(runtime::Today()); }, Vary},
    {"TIME", Date, Nulls::Taken, [] { return OnDayZero(NowInSeconds().time()); }, Vary},
    {"NOW", Date, Nulls::Taken, Of<NowInSeconds>, Vary},
    {"YEAR", Short, Nulls::First, [](Moment moment) { return moment.date().year(); }, Vary},
    {"MONTH", Short, Nulls::First, [](Moment moment) { return moment.date().month(); }, Vary},
    {"DAY", Short, Nulls::First, [](Moment moment) { return moment.date().day(); }, Vary},
    {"HOUR", Short, Nulls::First, [](Moment moment) { return moment.time().hour(); }, Vary},
    {"MINUTE", Short, Nulls::First, [](Moment moment) { return moment.time().minute(); }, Vary},
    {"SECOND", Short, Nulls::First, [](Moment moment) { return moment.time().second(); }, Vary},
    {"WEEKDAY", Short, Nulls::First,
     [](Moment moment, std::optional<std::int32_t> first) {
         return WeekdayOf(moment.date(), first.value_or(sunday));
     },
     Vary},
    {"DATEADD", Date, Nulls::Taken, Of<DateAdd>, Vary},
    {"DATEDIFF", Long, Nulls::Taken, Of<DateDiff>, Vary},
    {"DATEPART", Short, Nulls::Taken, Of<DatePart>, Vary},
    {"DATESERIAL", Date, Nulls::Taken, Of<DateSerial>},
    {"DATEVALUE", Date, Nulls::Refused, [](Moment moment) { return AtMidnight(moment.date()); }, Vary},
    {"TIMESERIAL", Date, Nulls::Taken,
     [](Part hour, Part minute, Part second) {
         const qint64 seconds = hour.number * 3600 + minute.number * 60 + second.number;
         return static_cast<double>(seconds) / secondsOfDay;
     }},
    {"TIMEVALUE", Date, Nulls::Refused, [](Moment moment) { return OnDayZero(moment.time()); }, Vary},
    {"CDATE", Date, Nulls::Refused, [](Moment moment) { return moment; }, Vary},
    {"CVDATE", Date, Nulls::First, [](Moment moment) { return moment; }, Vary},
    {"MONTHNAME", Text, Nulls::Taken, Of<MonthNameOf>},
    {"WEEKDAYNAME", Text, Nulls::Taken, Of<WeekdayNameOf>},
});

} // namespace

std::span<const ScalarFunction> DateFunctions() {
    return functions;
}

} // namespace engine::functions
