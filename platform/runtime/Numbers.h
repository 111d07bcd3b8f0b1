#pragma once

#include "platform/runtime/Failure.h"

#include <QString>

#include <cstdint>
#include <limits>

namespace runtime {

// Numbers by Russian regional settings: decimal comma, blank or no-break blank between thousands.

/// Text to number: blanks at both ends, sign, digits, decimal comma, thousands blanks, exponent, &H and &O.
/// Failure 13 if the text is none (a decimal point is none), 6 if it is too large.
double TextToNumber(const QString& text);

/// The same rounded half to even and held to 32 bits (failure 6 beyond).
std::int32_t TextToLong(const QString& text);

/// Longest number at the start, with '.' as the point, blanks passed over, &H and &O; else 0. Never fails.
double Val(const QString& text);

/// Rounds half to the even neighbour.
double RoundHalfEven(double value);
/// The same as a whole number of at most 32 bits; failure 6 if it does not fit.
template <class Whole>
Whole RoundedTo(double value) {
    static_assert(sizeof(Whole) <= sizeof(std::int32_t));
    const double rounded = RoundHalfEven(value);
    if (!(rounded >= std::numeric_limits<Whole>::min() && rounded <= std::numeric_limits<Whole>::max()))
        Raise(Overflow);
    return static_cast<Whole>(rounded);
}

/// Decimal text of a number as CStr writes it: at most 15 digits or those given, decimal comma, no
/// thousands sign.
QString NumberToText(double value, int digits = 15);

/// Blanks (U+0020 only) off both ends.
QString Trim(const QString& text);

/// The signed 16-bit counter of the program's loops and totals: every result outside -32768 .. 32767 is
/// failure 6.
class Int16 {
public:
    constexpr Int16() = default;
    /// Failure 6 if the value does not fit.
    explicit Int16(std::int64_t value)
        : m_value(Checked(value)) {}

    Int16& operator++() { return *this += 1; }
    Int16& operator+=(std::int64_t step) {
        m_value = Checked(std::int64_t{m_value} + step);
        return *this;
    }
    constexpr std::int16_t value() const { return m_value; }
    constexpr operator int() const { return m_value; } // NOLINT: it is a number

private:
    static std::int16_t Checked(std::int64_t value) {
        if (value < std::numeric_limits<std::int16_t>::min() ||
            value > std::numeric_limits<std::int16_t>::max())
            Raise(Overflow);
        return static_cast<std::int16_t>(value);
    }
    std::int16_t m_value = 0;
};

} // namespace runtime
