#include "platform/engine/functions/Call.h"
#include "platform/runtime/Numbers.h"

#include <array>
#include <bit>
#include <cmath>

namespace engine::functions {

namespace {

using runtime::Raise;

Value Truth(const Value& value) {
    if (const auto* text = value.As<QString>()) {
        if (text->compare(u"true", Qt::CaseInsensitive) == 0)
            return true;
        if (text->compare(u"false", Qt::CaseInsensitive) == 0)
            return false;
    }
    return value.Number() != 0;
}

/// A number without its decimals; NULL and whole numbers stay as they are.
template <double (*cut)(double), Money (Money::*cutMoney)() const>
Value Cut(const Value& value) {
    if (value.IsNull() || value.As<std::int64_t>())
        return value;
    if (const auto* amount = value.As<Money>())
        return (amount->*cutMoney)();
    return cut(value.Number());
}

/// To a number of decimals, halves to the even neighbour.
Value Round(const Value& value, const std::optional<Value>& decimals) {
    using Digits = Within<0, 22>;
    const std::int32_t digits = decimals && !decimals->IsNull() ? Digits(*decimals) : 0;
    if (value.IsNull() || value.As<std::int64_t>())
        return value;
    if (const auto* amount = value.As<Money>())
        return amount->Rounded(digits);
    const double number = value.Number();
    const double scale = std::pow(10.0, digits);
    const double scaled = number * scale;
    // A number too large to be scaled has no such decimals.
    return std::abs(scaled) < 1e16 ? runtime::RoundHalfEven(scaled) / scale : number;
}

Value Abs(const Value& value) {
    if (const auto* whole = value.As<std::int64_t>())
        return std::abs(*whole);
    if (const auto* amount = value.As<Money>())
        return amount->Abs();
    return std::abs(value.Number());
}

/// The next number of the one sequence, which starts the same in every run; 0 repeats the last, a negative
/// number starts from itself.
Value Random(std::optional<double> given) {
    constexpr std::uint32_t mask = 0xFFFFFF;
    static std::uint32_t state = 0x50000;
    const auto argument = static_cast<float>(given.value_or(1));
    if (argument < 0) {
        const auto bits = std::bit_cast<std::uint32_t>(argument);
        state = (bits + (bits >> 24)) & mask;
    }
    if (argument != 0)
        state = (state * 0x43FD43FDU + 0xC39EC3U) & mask;
    return state / static_cast<double>(mask + 1);
}

using enum DataType;

constexpr auto functions = std::to_array<ScalarFunction>({
    {"CBYTE", Byte, Nulls::Taken, [](double number) { return runtime::RoundedTo<std::uint8_t>(number); }},
    {"CINT", Short, Nulls::Taken, [](double number) { return runtime::RoundedTo<std::int16_t>(number); }},
    {"CLNG", Long, Nulls::Taken, [](std::int32_t number) { return number; }},
    {"CSNG", Single, Nulls::Taken,
     [](double number) {
         if (!(std::abs(number) <= std::numeric_limits<float>::max()))
             Raise(runtime::Overflow);
         return static_cast<float>(number);
     }},
    {"CDBL", Double, Nulls::Taken, Of<Finite>},
    {"CCUR", Currency, Nulls::Taken, [](const Value& value) { return value.Money(); }},
    {"CBOOL", Bit, Nulls::Taken, Of<Truth>},
    {"INT", Unknown, Nulls::Taken, Of<Cut<[](double x) { return std::floor(x); }, &Money::Floor>>},
    {"FIX", Unknown, Nulls::Taken, Of<Cut<[](double x) { return std::trunc(x); }, &Money::Truncated>>},
    {"ROUND", Unknown, Nulls::Taken, Of<Round>},
    {"ABS", Unknown, Nulls::First, Of<Abs>},
    {"SGN", Short, Nulls::First, [](double number) { return (number > 0 ? 1 : 0) - (number < 0 ? 1 : 0); }},
    {"SQR", Double, Nulls::Taken, [](double number) { return Finite(std::sqrt(number)); }},
    {"EXP", Double, Nulls::Taken, [](double number) { return Finite(std::exp(number)); }},
    {"LOG", Double, Nulls::Taken, [](double number) { return Finite(number > 0 ? std::log(number) : NAN); }},
    {"SIN", Double, Nulls::Taken, [](double number) { return Finite(std::sin(number)); }},
    {"COS", Double, Nulls::Taken, [](double number) { return Finite(std::cos(number)); }},
    {"TAN", Double, Nulls::Taken, [](double number) { return Finite(std::tan(number)); }},
    {"ATN", Double, Nulls::Taken, [](double number) { return Finite(std::atan(number)); }},
    {"RND", Single, Nulls::Taken, Of<Random>, Answers::Vary},
});

} // namespace

std::span<const ScalarFunction> NumberFunctions() {
    return functions;
}

} // namespace engine::functions
