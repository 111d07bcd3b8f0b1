// What the translator writes for the dialect's operators and for assignments to columns.

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Call.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/functions/LikePattern.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"

#include <QtNumeric>

#include <cmath>
#include <limits>
#include <memory>
#include <optional>

namespace engine::functions {

namespace {

/// The number that an operator sees; failure 3464 if the value is none.
double Operand(const Value& value) {
    try {
        return value.Number();
    } catch (const runtime::Failure& failure) {
        if (failure.number() == runtime::TypeMismatch)
            RaiseEngine(TypeMismatchInCriteria);
        throw;
    }
}

double Operand(const Arguments& arguments, int place) {
    return Operand(arguments.At(place));
}

Value Finite(double number) {
    if (std::isnan(number))
        runtime::Raise(runtime::InvalidCall);
    if (std::isinf(number))
        runtime::Raise(runtime::Overflow);
    return number;
}

/// A pattern stays taken apart for as long as the statement runs, where it is the same for all rows.
const LikePattern& PatternOf(const Arguments& arguments, std::optional<LikePattern>& own) {
    constexpr int place = 1;
    if (const auto* kept = static_cast<const LikePattern*>(sqlite3_get_auxdata(arguments.Context(), place)))
        return *kept;
    auto made = std::make_unique<LikePattern>(arguments.IsText(place) ? arguments.TextView(place)
                                                                      : arguments.Text(place));
    sqlite3_set_auxdata(arguments.Context(), place, made.release(),
                        [](void* pattern) { delete static_cast<LikePattern*>(pattern); });
    if (const auto* kept = static_cast<const LikePattern*>(sqlite3_get_auxdata(arguments.Context(), place)))
        return *kept;
    return own.emplace(arguments.Text(place)); // SQLite was short of memory and has dropped it
}

Value LikeOperator(const Arguments& arguments) {
    if (arguments.AnyNull())
        return {};
    std::optional<LikePattern> own;
    const LikePattern& pattern = PatternOf(arguments, own);
    if (arguments.IsText(0))
        return pattern.Matches(arguments.TextView(0));
    return pattern.Matches(arguments.Text(0));
}

Value Divide(const Arguments& arguments) {
    if (arguments.AnyNull())
        return {};
    const double dividend = Operand(arguments, 0);
    const double divisor = Operand(arguments, 1);
    if (divisor == 0)
        runtime::Raise(runtime::DivisionByZero);
    return Finite(dividend / divisor);
}

/// An operand of `\` and MOD: rounded to a whole number of 32 bits.
std::int64_t WholeOperand(const Arguments& arguments, int place) {
    const double rounded = runtime::RoundHalfEven(Operand(arguments, place));
    if (!(rounded >= std::numeric_limits<std::int32_t>::min() &&
          rounded <= std::numeric_limits<std::int32_t>::max()))
        runtime::Raise(runtime::Overflow);
    return static_cast<std::int64_t>(rounded);
}

std::int64_t Divisor(const Arguments& arguments) {
    const std::int64_t divisor = WholeOperand(arguments, 1);
    if (divisor == 0)
        runtime::Raise(runtime::DivisionByZero);
    return divisor;
}

Value DivideWhole(const Arguments& arguments) {
    if (arguments.AnyNull())
        return {};
    const std::int64_t dividend = WholeOperand(arguments, 0);
    return dividend / Divisor(arguments);
}

Value Modulo(const Arguments& arguments) {
    if (arguments.AnyNull())
        return {};
    const std::int64_t dividend = WholeOperand(arguments, 0);
    return dividend % Divisor(arguments);
}

Value Power(const Arguments& arguments) {
    if (arguments.AnyNull())
        return {};
    const double base = Operand(arguments, 0);
    const double exponent = Operand(arguments, 1);
    if (base == 0 && exponent < 0)
        runtime::Raise(runtime::InvalidCall);
    return Finite(std::pow(base, exponent));
}

Value Add(const Arguments& arguments) {
    if (arguments.AnyNull())
        return {};
    if (arguments.IsText(0) && arguments.IsText(1))
        return arguments.Text(0) + arguments.Text(1);
    if (arguments.IsWhole(0) && arguments.IsWhole(1)) {
        std::int64_t sum = 0;
        if (!qAddOverflow(*arguments.At(0).As<std::int64_t>(), *arguments.At(1).As<std::int64_t>(), &sum))
            return sum;
    }
    return Finite(Operand(arguments, 0) + Operand(arguments, 1));
}

Value Concatenate(const Arguments& arguments) {
    return arguments.Text(0) + arguments.Text(1);
}

/// One of three truths; none for NULL.
std::optional<bool> Truth(const Arguments& arguments, int place) {
    if (arguments.IsNull(place))
        return std::nullopt;
    return Operand(arguments, place) != 0;
}

Value ExclusiveOr(const Arguments& arguments) {
    const auto a = Truth(arguments, 0);
    const auto b = Truth(arguments, 1);
    return a && b ? Value(*a != *b) : Value();
}

Value Equivalent(const Arguments& arguments) {
    const auto a = Truth(arguments, 0);
    const auto b = Truth(arguments, 1);
    return a && b ? Value(*a == *b) : Value();
}

Value Implies(const Arguments& arguments) {
    const auto a = Truth(arguments, 0);
    const auto b = Truth(arguments, 1);
    if ((a && !*a) || (b && *b))
        return true;
    return a && b ? Value(false) : Value();
}

Value Compare(const Arguments& arguments) {
    if (arguments.AnyNull())
        return {};
    if (arguments.IsText(0) != arguments.IsText(1))
        RaiseEngine(TypeMismatchInCriteria);
    if (arguments.IsText(0))
        return CompareSorted(arguments.TextView(0), arguments.TextView(1));
    if (arguments.IsWhole(0) && arguments.IsWhole(1)) {
        const std::int64_t a = *arguments.At(0).As<std::int64_t>();
        const std::int64_t b = *arguments.At(1).As<std::int64_t>();
        return a < b ? -1 : a > b ? 1 : 0;
    }
    if (arguments.IsBytes(0) && arguments.IsBytes(1)) {
        const QByteArray a = *arguments.At(0).As<QByteArray>();
        const QByteArray b = *arguments.At(1).As<QByteArray>();
        return a < b ? -1 : a == b ? 0 : 1;
    }
    const double a = Operand(arguments, 0);
    const double b = Operand(arguments, 1);
    return a < b ? -1 : a > b ? 1 : 0;
}

/// Without a name for messages the statement passes over what fails: what does not fit becomes NULL.
Value To(const Arguments& arguments) {
    const auto type = static_cast<DataType>(arguments.Long(0));
    const std::int32_t size = arguments.Long(1);
    if (!arguments.IsNull(2))
        return ToColumn(arguments.At(3), type, size, arguments.Text(2));
    try {
        return ToColumn(arguments.At(3), type, size, QString());
    } catch (const runtime::Failure& failure) {
        if (failure.number() != ValueTooLong)
            return ToColumn({}, type, size, QString());
        // What is too long stays: the rule of its column then leaves the whole row out.
        return type == DataType::Binary ? ToColumn(arguments.At(3), type, 0, QString()) : arguments.At(3);
    }
}

Value Required(const Arguments& arguments) {
    if (!arguments.IsNull(1))
        return arguments.At(1);
    if (arguments.IsNull(0))
        RaiseEngine(NullInKey);
    RaiseEngine(NullNotAllowed, arguments.Text(0));
}

/// A date number as the text of its date, for `&` and CSTR of what the translator knows to be a date.
Value DateText(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    return runtime::DateToText(arguments.Date(0));
}

/// The same value; whole numbers beyond 32 bits have become fractions on their way.
Value Whole(const Arguments& arguments) {
    Value value = arguments.At(0);
    return value.As<double>() ? Finite(*value.As<double>()) : value;
}

Value MarkedMoney(const Arguments& arguments) {
    const auto amount = arguments.Units(0);
    return amount ? Value(*amount) : Value();
}

Value MarkedSingle(const Arguments& arguments) {
    return arguments.IsNull(0) ? Value() : Value(static_cast<float>(arguments.Number(0)));
}

Value ToMoney(const Arguments& arguments) {
    return arguments.IsNull(0) ? Value() : arguments.At(0).Money();
}

/// A fraction that an older file keeps; the limits themselves lie a little outside as fractions.
Value KeptMoney(const Arguments& arguments) {
    constexpr double end = 922337203685477.5;
    if (arguments.IsNull(0))
        return {};
    const double number = arguments.Number(0);
    if (std::abs(number) <= end)
        return Money::FromNumber(number);
    return Money{number < 0 ? std::numeric_limits<std::int64_t>::min()
                            : std::numeric_limits<std::int64_t>::max()};
}

/// A number in ten-thousandths to be compared with an amount: exact where it is one, else between two.
Value InUnits(const Arguments& arguments) {
    const Value value = arguments.At(0);
    if (value.IsNull())
        return value;
    if (value.As<std::int64_t>() || value.As<Money>())
        return value.Money();
    const double number = Operand(value);
    constexpr double surelyWithin = 922337203685477;
    if (std::abs(number) <= surelyWithin) {
        const Money nearest = Money::FromNumber(number);
        if (nearest.Number() == number)
            return nearest;
    }
    return number * Money::unitsOfOne;
}

enum class Step { Add, Subtract, Multiply };

template <Step step>
Value OfAmounts(const Arguments& arguments) {
    const auto a = arguments.Units(0);
    const auto b = arguments.Units(1);
    if (!a || !b)
        return {};
    if constexpr (step == Step::Add)
        return *a + *b;
    else if constexpr (step == Step::Subtract)
        return *a - *b;
    else
        return *a * *b;
}

constexpr ScalarFunction functions[] = {
    {{"WHOLE", 1, 1, DataType::Long}, Whole},
    {{"CUR", 1, 1, DataType::Currency}, MarkedMoney},
    {{"SNG", 1, 1, DataType::Single}, MarkedSingle},
    {{"TOMONEY", 1, 1, DataType::Currency}, ToMoney},
    {{"KEPTMONEY", 1, 1, DataType::Currency}, KeptMoney},
    {{"UNITS", 1, 1, DataType::Double}, InUnits},
    {{"MADD", 2, 2, DataType::Currency}, OfAmounts<Step::Add>},
    {{"MSUB", 2, 2, DataType::Currency}, OfAmounts<Step::Subtract>},
    {{"MMUL", 2, 2, DataType::Currency}, OfAmounts<Step::Multiply>},
    {{"LIKE", 2, 2, DataType::Bit}, LikeOperator},
    {{"DIV", 2, 2, DataType::Double}, Divide},
    {{"INTDIV", 2, 2, DataType::Long}, DivideWhole},
    {{"MOD", 2, 2, DataType::Long}, Modulo},
    {{"POW", 2, 2, DataType::Double}, Power},
    {{"ADD", 2, 2, DataType::Unknown}, Add},
    {{"CONCAT", 2, 2, DataType::Text}, Concatenate},
    {{"XOR", 2, 2, DataType::Bit}, ExclusiveOr},
    {{"EQV", 2, 2, DataType::Bit}, Equivalent},
    {{"IMP", 2, 2, DataType::Bit}, Implies},
    {{"COMPARE", 2, 2, DataType::Short}, Compare},
    {{"TO", 4, 4, DataType::Unknown}, To, false}, // a day without a year depends on today
    {{"REQUIRED", 2, 2, DataType::Unknown}, Required},
    {{"DATETEXT", 1, 1, DataType::Text}, DateText, false},
};

} // namespace

std::span<const ScalarFunction> OperatorFunctions() {
    return functions;
}

} // namespace engine::functions
