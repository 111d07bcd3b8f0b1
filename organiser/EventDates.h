#pragma once

#include <QDate>

/// How an event comes back; the numbers stand in the file.
enum class Periodicity : int { OneOff = 0, Yearly = 1 };

/// Whether an event of that date is one of the year: a one-off event of its own year alone, a yearly one of
/// its first year and all after it.
constexpr bool FallsInYear(int eventYear, Periodicity periodicity, int year) {
    switch (periodicity) {
    case Periodicity::OneOff:
        return eventYear == year;
    case Periodicity::Yearly:
        return eventYear <= year;
    }
    return false;
}
