#include "platform/engine/functions/Calendar.h"

#include "platform/runtime/Failure.h"

#include <array>

namespace engine::functions {

int WeekdayOf(QDate date, int first) {
    if (first < 0 || first > 7)
        runtime::Raise(runtime::InvalidCall);
    const int monday = 2;
    const int start = first == 0 ? monday : first;
    const int fromSunday = date.dayOfWeek() % 7 + 1;
    return (fromSunday - start + 7) % 7 + 1;
}

int WeekOf(QDate date, int first, int rule) {
    if (rule < 0 || rule > 3)
        runtime::Raise(runtime::InvalidCall);
    // The first day of week 1 of a year: that of the week in which 1 January falls, or of the one behind.
    const auto start = [first, rule](int year) {
        const QDate january(year, 1, 1);
        const int place = WeekdayOf(january, first);
        const int daysOfYear = 8 - place;
        const int needed = rule == 2 ? 4 : rule == 3 ? 7 : 1;
        return january.addDays(1 - place + (daysOfYear < needed ? 7 : 0));
    };
    if (rule <= 1)
        return static_cast<int>(start(date.year()).daysTo(date) / 7) + 1;
    int year = date.year();
    if (date < start(year))
        --year;
    else if (date >= start(year + 1))
        ++year;
    return static_cast<int>(start(year).daysTo(date) / 7) + 1;
}

QString WeekdayName(int day, bool abbreviated) {
    static constexpr std::array<QStringView, 7> names{u"понедельник", u"вторник", u"среда",      u"четверг",
                                                      u"пятница",     u"суббота", u"воскресенье"};
    static constexpr std::array<QStringView, 7> shortNames{u"Пн", u"Вт", u"Ср", u"Чт", u"Пт", u"Сб", u"Вс"};
    const auto place = static_cast<std::size_t>(day - 1);
    return (abbreviated ? shortNames : names).at(place).toString();
}

} // namespace engine::functions
