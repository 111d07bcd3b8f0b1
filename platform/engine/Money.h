#pragma once

#include <QStringView>

#include <cstdint>
#include <optional>

namespace engine {

/// An amount of type CURRENCY: exact to four decimals, from -922337203685477.5808 to 922337203685477.5807.
/// What lies beyond is failure 6; further decimals are rounded half to even.
struct Money {
    std::int64_t units = 0; ///< ten-thousandths

    static constexpr std::int64_t unitsOfOne = 10000;

    static Money FromWhole(std::int64_t whole);
    static Money FromNumber(double number);
    /// Reads a sign, digits, and decimals behind `point`; none if the text is anything else.
    static std::optional<Money> FromDigits(QStringView text, char16_t point);

    double Number() const { return static_cast<double>(units) / unitsOfOne; }
    /// All digits, with a decimal comma.
    QString Text() const;
    /// To that number of decimals, from 0 to 4.
    Money Rounded(int decimals) const;
    /// The whole part, downwards or towards zero.
    Money Floor() const;
    Money Truncated() const { return {units - units % unitsOfOne}; }
    Money Abs() const { return units < 0 ? Money{} - *this : *this; }

    friend bool operator==(const Money&, const Money&) = default;
    friend Money operator+(Money a, Money b);
    friend Money operator-(Money a, Money b);
    friend Money operator*(Money a, Money b);
};

} // namespace engine
