#pragma once

#include <QDate>
#include <QString>

namespace engine::functions {

/// Place of a day in a week that starts on `first` (1 Sunday ... 7 Saturday, 0 as the settings have it:
/// Monday), from 1. Failure 5 for another `first`.
int WeekdayOf(QDate date, int first);

/// Number of the week of a year. `rule`: 1 the week of 1 January is the first (0 too), 2 the first of four
/// days in the year, 3 the first whole one. Failure 5 for others.
int WeekOf(QDate date, int first, int rule);

/// Russian name of a day of the week, 1 Monday to 7 Sunday.
QString WeekdayName(int day, bool abbreviated);

} // namespace engine::functions
