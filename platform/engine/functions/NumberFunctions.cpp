#include "platform/engine/functions/Call.h"
#include "platform/runtime/Failure.h"
#include "platform/runtime/Numbers.h"

#include <bit>
#include <cmath>
#include <limits>

namespace engine::functions {

namespace {

using runtime::Raise;

/// A result that must be a number: failure 6 beyond the largest one, 5 where there is none.
Value Finite(double number) {
    if (std::isnan(number))
        Raise(runtime::InvalidCall);
    if (std::isinf(number))
        Raise(runtime::Overflow);
    return number;
}

Value WholeWithin(const Arguments& arguments, double least, double greatest) {
    const double rounded = runtime::RoundHalfEven(arguments.Number(0));
    if (!(rounded >= least && rounded <= greatest))
        Raise(runtime::Overflow);
    return static_cast<std::int64_t>(rounded);
}

Value CByte(const Arguments& arguments) {
    return WholeWithin(arguments, 0, 255);
}

Value CInt(const Arguments& arguments) {
    return WholeWithin(arguments, std::numeric_limits<std::int16_t>::min(),
                       std::numeric_limits<std::int16_t>::max());
}

Value CLng(const Arguments& arguments) {
    return WholeWithin(arguments, std::numeric_limits<std::int32_t>::min(),
                       std::numeric_limits<std::int32_t>::max());
}

Value CSng(const Arguments& arguments) {
    const double number = arguments.Number(0);
    if (!(std::abs(number) <= std::numeric_limits<float>::max()))
        Raise(runtime::Overflow);
    return static_cast<float>(number);
}

Value CDbl(const Arguments& arguments) {
    return Finite(arguments.Number(0));
}

Value CCur(const Arguments& arguments) {
    return arguments.At(0).Money();
}

Value CBool(const Arguments& arguments) {
    if (arguments.IsText(0)) {
        const QString text = arguments.Text(0);
        if (text.compare(u"true", Qt::CaseInsensitive) == 0)
            return true;
        if (text.compare(u"false", Qt::CaseInsensitive) == 0)
            return false;
    }
    return arguments.Number(0) != 0;
}

/// A function from number to number that leaves NULL and whole numbers as they are; `ChangeMoney` does the
/// same with amounts.
template <double (*Change)(double), Money (Money::*ChangeMoney)() const>
Value Rounded(const Arguments& arguments) {
    const Value value = arguments.At(0);
    if (value.IsNull() || value.As<std::int64_t>())
        return value;
    if (const auto* amount = value.As<Money>())
        return (amount->*ChangeMoney)();
    return Change(arguments.Number(0));
}

double Down(double number) {
    return std::floor(number);
}

double TowardsZero(double number) {
    return std::trunc(number);
}

Value Round(const Arguments& arguments) {
    constexpr int mostDigits = 22;
    const std::int32_t digits = arguments.Has(1) && !arguments.IsNull(1) ? arguments.Long(1) : 0;
    if (digits < 0 || digits > mostDigits)
        Raise(runtime::InvalidCall);
    const Value value = arguments.At(0);
    if (value.IsNull() || value.As<std::int64_t>())
        return value;
    if (const auto* amount = value.As<Money>())
        return amount->Rounded(digits);
    const double number = arguments.Number(0);
    const double scale = std::pow(10.0, digits);
    const double scaled = number * scale;
    // A number too large to be scaled has no such decimals.
    return std::abs(scaled) < 1e16 ? runtime::RoundHalfEven(scaled) / scale : number;
}

Value Abs(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    const Value value = arguments.At(0);
    if (const auto* whole = value.As<std::int64_t>())
        return *whole < 0 ? -*whole : *whole;
    if (const auto* amount = value.As<Money>())
        return amount->Abs();
    return std::abs(arguments.Number(0));
}

Value Sgn(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    const double number = arguments.Number(0);
    return number < 0 ? -1 : number > 0 ? 1 : 0;
}

template <double (*Function)(double)>
Value Computed(const Arguments& arguments) {
    return Finite(Function(arguments.Number(0)));
}

double SquareRoot(double number) {
    return std::sqrt(number);
}

double Exponential(double number) {
    return std::exp(number);
}

double Logarithm(double number) {
    if (!(number > 0))
        Raise(runtime::InvalidCall);
    return std::log(number);
}

double Sine(double number) {
    return std::sin(number);
}

double Cosine(double number) {
    return std::cos(number);
}

double Tangent(double number) {
    return std::tan(number);
}

double ArcTangent(double number) {
    return std::atan(number);
}

/// The next number of the one sequence, which starts the same in every run; 0 repeats the last, a negative
/// number starts from itself.
Value Rnd(const Arguments& arguments) {
    constexpr std::uint32_t mask = 0xFFFFFF;
    static std::uint32_t state = 0x50000;
    const float argument = arguments.Has(0) ? static_cast<float>(arguments.Number(0)) : 1.0F;
    if (argument < 0) {
        const auto bits = std::bit_cast<std::uint32_t>(argument);
        state = (bits + (bits >> 24)) & mask;
    }
    if (argument != 0)
        state = (state * 0x43FD43FDU + 0xC39EC3U) & mask;
    return state / static_cast<double>(mask + 1);
}

constexpr ScalarFunction functions[] = {
    {{"CBYTE", 1, 1, DataType::Byte}, CByte},
    {{"CINT", 1, 1, DataType::Short}, CInt},
    {{"CLNG", 1, 1, DataType::Long}, CLng},
    {{"CSNG", 1, 1, DataType::Single}, CSng},
    {{"CDBL", 1, 1, DataType::Double}, CDbl},
    {{"CCUR", 1, 1, DataType::Currency}, CCur},
    {{"CBOOL", 1, 1, DataType::Bit}, CBool},
    {{"INT", 1, 1, DataType::Unknown}, Rounded<Down, &Money::Floor>},
    {{"FIX", 1, 1, DataType::Unknown}, Rounded<TowardsZero, &Money::Truncated>},
    {{"ROUND", 1, 2, DataType::Unknown}, Round},
    {{"ABS", 1, 1, DataType::Unknown}, Abs},
    {{"SGN", 1, 1, DataType::Short}, Sgn},
    {{"SQR", 1, 1, DataType::Double}, Computed<SquareRoot>},
    {{"EXP", 1, 1, DataType::Double}, Computed<Exponential>},
    {{"LOG", 1, 1, DataType::Double}, Computed<Logarithm>},
    {{"SIN", 1, 1, DataType::Double}, Computed<Sine>},
    {{"COS", 1, 1, DataType::Double}, Computed<Cosine>},
    {{"TAN", 1, 1, DataType::Double}, Computed<Tangent>},
    {{"ATN", 1, 1, DataType::Double}, Computed<ArcTangent>},
    {{"RND", 0, 1, DataType::Single}, Rnd, false},
};

} // namespace

std::span<const ScalarFunction> NumberFunctions() {
    return functions;
}

} // namespace engine::functions
