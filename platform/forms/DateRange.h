#pragma once

#include "platform/runtime/Failure.h"

#include <QDate>

namespace forms {

/// First and last day that the date controls take.
inline constexpr QDate FirstControlDate() {
    return QDate::fromJulianDay(2361331); // 1.1.1753
}
inline constexpr QDate LastControlDate() {
    return QDate::fromJulianDay(5373484); // 31.12.9999
}

/// Number of the failure of a date beyond the range of a date control.
inline constexpr int DateOutOfRange = 35773;

/// Failure 35773 for a day that the date controls do not take.
inline void CheckControlDate(QDate date) {
    if (date.isValid() && date >= FirstControlDate() && date <= LastControlDate())
        return;
    throw runtime::Failure(DateOutOfRange, QStringLiteral("Дата выходит за пределы допустимого диапазона"));
}

} // namespace forms
