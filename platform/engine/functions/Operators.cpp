// What the translator writes for the dialect's operators and for assignments to columns.

#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Call.h"
#include "platform/engine/functions/LikePattern.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"

#include <QtNumeric>

#include <array>
#include <cmath>
#include <memory>

namespace engine::functions {

namespace {

/// The number that an operator sees; failure 3464 if the value is none.
struct Operand {
    double number;
    explicit Operand(const Value& value)
        : number(Read(value)) {}

private:
    static double Read(const Value& value) {
        try {
            return value.Number();
        } catch (const runtime::Failure& failure) {
            if (failure.number() == runtime::TypeMismatch)
                RaiseEngine(TypeMismatchInCriteria);
            throw;
        }
    }
};

/// An operand of `\` and MOD: rounded to a whole number of 32 bits.
struct WholeOperand {
    std::int64_t number;
    explicit WholeOperand(const Value& value)
        : number(runtime::RoundedTo<std::int32_t>(Operand(value).number)) {}
};

double NotZero(double divisor) {
    if (divisor == 0)
        runtime::Raise(runtime::DivisionByZero);
    return divisor;
}

std::int64_t NotZero(WholeOperand divisor) {
    if (divisor.number == 0)
        runtime::Raise(runtime::DivisionByZero);
    return divisor.number;
}

Value Power(Operand base, Operand exponent) {
    if (base.number == 0 && exponent.number < 0)
        runtime::Raise(runtime::InvalidCall);
    return Finite(std::pow(base.number, exponent.number));
}

/// `+` of values whose types only the rows tell: texts are joined, all else is added.
Value Add(const Value& a, const Value& b) {
    if (a.As<QString>() && b.As<QString>())
        return *a.As<QString>() + *b.As<QString>();
    if (a.As<std::int64_t>() && b.As<std::int64_t>())
        return *a.As<std::int64_t>() + *b.As<std::int64_t>(); // of 32 bits each
    const double augend = Operand(a).number;
    return Finite(augend + Operand(b).number);
}

/// A pattern stays taken apart for as long as the statement runs, where it is the same for all rows.
const LikePattern& PatternOf(const Arguments& arguments, std::optional<LikePattern>& own) {
    constexpr int place = 1;
    if (const auto* kept = static_cast<const LikePattern*>(sqlite3_get_auxdata(arguments.Context(), place)))
        return *kept;
    const QString text = arguments.As<QString>(place);
    sqlite3_set_auxdata(arguments.Context(), place, std::make_unique<LikePattern>(text).release(),
                        [](void* pattern) { delete static_cast<LikePattern*>(pattern); });
    if (const auto* kept = static_cast<const LikePattern*>(sqlite3_get_auxdata(arguments.Context(), place)))
        return *kept;
    return own.emplace(text); // SQLite was short of memory and has dropped it
}

Value Like(const Arguments& arguments) {
    std::optional<LikePattern> own;
    const LikePattern& pattern = PatternOf(arguments, own);
    return pattern.Matches(arguments.IsText(0) ? arguments.TextView(0) : arguments.As<QString>(0));
}

Value Order(const auto& a, const auto& b) {
    return a < b ? -1 : a > b ? 1 : 0;
}

/// -1, 0 or 1 for values whose types only the rows tell; failure 3464 for a text against anything else.
Value Compare(const Arguments& arguments) {
    if (arguments.IsText(0) != arguments.IsText(1))
        RaiseEngine(TypeMismatchInCriteria);
    if (arguments.IsText(0))
        return CompareSorted(arguments.TextView(0), arguments.TextView(1));
    const Value a = arguments.At(0);
    const Value b = arguments.At(1);
    if (a.As<QByteArray>() && b.As<QByteArray>())
        return Order(*a.As<QByteArray>(), *b.As<QByteArray>());
    const double left = Operand(a).number;
    return Order(left, Operand(b).number);
}

/// A value assigned to a column: see ToColumn. `name` is table.column; without it the statement passes over
/// what fails, and what does not fit becomes NULL.
Value To(std::int32_t number, std::int32_t size, const Value& name, const Value& value) {
    const auto type = static_cast<DataType>(number);
    if (!name.IsNull())
        return ToColumn(value, type, size);
    try {
        return ToColumn(value, type, size);
    } catch (const runtime::Failure& failure) {
        if (failure.number() != ValueTooLong)
            return ToColumn({}, type, size);
        // What is too long stays: the rule of its column then leaves the whole row out.
        return type == DataType::Binary ? ToColumn(value, type, 0) : value;
    }
}

/// The value; for NULL failure 3314, or 3058 without a name.
Value Required(const Value& name, const Value& value) {
    if (!value.IsNull())
        return value;
    if (name.IsNull())
        RaiseEngine(NullInKey);
    RaiseEngine(NullNotAllowed, name.Text());
}

/// A fraction that an older file keeps, held to the range of CURRENCY; the limits themselves lie a little
/// outside as fractions.
Money KeptMoney(double number) {
    constexpr double end = 922337203685477.5;
    if (std::abs(number) <= end)
        return Money::FromNumber(number);
    return {number < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max()};
}

/// A number in ten-thousandths to be compared with an amount: exact where it is one, else between two.
Value InUnits(const Value& value) {
    if (value.As<std::int64_t>() || value.As<Money>())
        return value.Money();
    const double number = Operand(value).number;
    constexpr double surelyWithin = 922337203685477;
    if (std::abs(number) <= surelyWithin) {
        const Money nearest = Money::FromNumber(number);
        if (nearest.Number() == number)
            return nearest;
    }
    return number * Money::unitsOfOne;
}

Money AmountAt(const Arguments& arguments, int place) {
    return {arguments.Whole(place)};
}

template <Money (*Compute)(Money, Money)>
Value OfAmounts(const Arguments& arguments) {
    return Compute(AmountAt(arguments, 0), AmountAt(arguments, 1));
}

using enum DataType;

constexpr auto functions = std::to_array<ScalarFunction>({
    // The operators. Failures: 3464 for a text that is no number, 11 for division by zero, 6 beyond the
    // range.
    {{"LIKE", 2, 2, Bit}, Nulls::Any, Like},
    {"DIV", Double, Nulls::Any, [](Operand a, Operand b) { return Finite(a.number / NotZero(b.number)); }},
    {"INTDIV", Long, Nulls::Any, [](WholeOperand a, WholeOperand b) { return a.number / NotZero(b); }},
    {"MOD", Long, Nulls::Any, [](WholeOperand a, WholeOperand b) { return a.number % NotZero(b); }},
    {"POW", Double, Nulls::Any, Of<Power>},
    {"ADD", Unknown, Nulls::Any, Of<Add>},
    {"CONCAT", Text, Nulls::Taken, [](const QString& a, const QString& b) { return a + b; }},
    {{"COMPARE", 2, 2, Short}, Nulls::Any, Compare},
    // Assignments to columns.
    {"TO", Unknown, Nulls::Taken, Of<To>, Answers::Vary},
    {"REQUIRED", Unknown, Nulls::Taken, Of<Required>},
    // A date number as the text of its date, for `&` and CSTR of what is known to be a date.
    {"DATETEXT", Text, Nulls::First, [](const QDateTime& date) { return runtime::DateToText(date); },
     Answers::Vary},
    // The value; whole numbers beyond 32 bits have become fractions on their way.
    {"WHOLE", Long, Nulls::Taken,
     [](const Value& value) { return value.As<double>() ? Finite(value.Number()) : value; }},
    // Amounts in ten-thousandths, and numbers of type SINGLE, marked for the function around them.
    {{"CUR", 1, 1, Currency}, Nulls::Any, [](const Arguments& a) { return Value(AmountAt(a, 0)); }},
    {"SNG", Single, Nulls::Any, [](double number) { return static_cast<float>(number); }},
    {"TOMONEY", Currency, Nulls::Any, [](const Value& value) { return value.Money(); }},
    {"KEPTMONEY", Currency, Nulls::Any, Of<KeptMoney>},
    {"UNITS", Double, Nulls::Any, Of<InUnits>},
    {{"MADD", 2, 2, Currency}, Nulls::Any, OfAmounts<[](Money a, Money b) { return a + b; }>},
    {{"MSUB", 2, 2, Currency}, Nulls::Any, OfAmounts<[](Money a, Money b) { return a - b; }>},
    {{"MMUL", 2, 2, Currency}, Nulls::Any, OfAmounts<[](Money a, Money b) { return a * b; }>},
});

} // namespace

std::span<const ScalarFunction> OperatorFunctions() {
    return functions;
}

} // namespace engine::functions
