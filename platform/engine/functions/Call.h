#pragma once

#include "platform/engine/functions/Functions.h"
#include "platform/runtime/Failure.h"

#include <QDateTime>
#include <QString>
#include <QStringView>
#include <sqlite3.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>

namespace engine::functions {

/// The date of a value: texts by the regional settings, numbers as date numbers. Failures: 94 on NULL, 13 on
/// a text that is none, 6 outside 1.1.100 to 31.12.9999.
QDateTime DateOf(const Value& value);
/// The date number of a date; failure 5 outside the same range.
double NumberOf(const QDateTime& date);

/// A value of SQLite's as ours: amounts of money and numbers of type SINGLE by the mark that a function has
/// put on them, whole numbers beyond 32 bits as fractions. Never a date or a truth.
Value FromSqlite(sqlite3_value* value);

/// A result that must be a number: failure 6 beyond the largest one, 5 where there is none.
Value Finite(double number);

/// An argument that is a whole number (converted as Value::Long does); failure 5 outside its bounds.
template <std::int32_t Least, std::int32_t Most = std::numeric_limits<std::int32_t>::max()>
class Within {
public:
    explicit Within(const Value& value)
        : m_number(value.Long()) {
        if (m_number < Least || m_number > Most)
            runtime::Raise(runtime::InvalidCall);
    }
    operator std::int32_t() const { return m_number; } // NOLINT: it is a number

private:
    std::int32_t m_number;
};
using Length = Within<0>;
using Position = Within<1>;

template <class T>
constexpr bool isOptional = false;
template <class T>
constexpr bool isOptional<std::optional<T>> = true;

/// The arguments of one call from SQLite. A view: no longer than the call. Places count from 0.
class Arguments {
public:
    Arguments(sqlite3_context* context, int count, sqlite3_value** values)
        : m_context(context)
        , m_count(count)
        , m_values(values) {}

    int Count() const { return m_count; }
    bool IsNull(int place) const { return sqlite3_value_type(m_values[place]) == SQLITE_NULL; }
    bool AnyNull() const;
    bool IsText(int place) const { return sqlite3_value_type(m_values[place]) == SQLITE_TEXT; }
    Value At(int place) const { return FromSqlite(m_values[place]); }
    /// The text where it lies, without a copy; only of a text.
    QStringView TextView(int place) const;
    /// What lies there without a mark, whatever its width.
    std::int64_t Whole(int place) const { return sqlite3_value_int64(m_values[place]); }

    /// An argument as the parameter of a function takes it; an optional one is none where it was not given.
    template <class T>
    T As(int place) const {
        if constexpr (std::same_as<T, Value>)
            return At(place);
        else if constexpr (std::same_as<T, QString>)
            return At(place).Text();
        else if constexpr (std::same_as<T, double>)
            return At(place).Number();
        else if constexpr (std::same_as<T, std::int32_t>)
            return At(place).Long();
        else if constexpr (std::same_as<T, QDateTime>)
            return DateOf(At(place));
        else if constexpr (isOptional<T>)
            return place < m_count ? T(As<typename T::value_type>(place)) : T();
        else
            return T(At(place));
    }

    sqlite3_context* Context() const { return m_context; }

private:
    sqlite3_context* m_context;
    int m_count;
    sqlite3_value** m_values;
};

/// What a function does with NULL.
enum class Nulls : std::uint8_t {
    Taken,   ///< it is converted as any value, so that numbers and dates are failure 94
    Refused, ///< failure 94 if the first argument is NULL
    First,   ///< the result is NULL if the first argument is
    Any,     ///< the result is NULL if one of the arguments is
};

/// Whether a function answers the same for the same arguments. Texts of a day without a year mean the current
/// one, so whatever reads a date from a text depends on today.
enum class Answers : bool { Vary, Stay };

template <auto Function, class Signature = decltype(Function)>
struct Stateless;
template <auto Function, class Result, class... Parameters>
struct Stateless<Function, Result (*)(Parameters...)> {
    Result operator()(Parameters... parameters) const { return Function(parameters...); }
};
/// A plain function in the place of a lambda.
template <auto Function>
constexpr Stateless<Function> Of{};

/// A function of the dialect and what computes it.
struct ScalarFunction {
    FunctionInfo info;
    Nulls nulls;
    Answers answers;
    Value (*call)(const Arguments&);

    constexpr ScalarFunction(FunctionInfo known, Nulls takes, Value (*function)(const Arguments&),
                             Answers given = Answers::Stay)
        : info(known)
        , nulls(takes)
        , answers(given)
        , call(function) {}

    /// `function` is a lambda without captures. Its parameters tell how many arguments there are and how each
    /// is converted, from left to right: see Arguments::As.
    template <class Function>
    constexpr ScalarFunction(const char* name, DataType result, Nulls takes, Function function,
                             Answers given = Answers::Stay)
        : ScalarFunction(name, result, takes, given, function, &Function::operator()) {}

private:
    template <class Function, class Result, class... Parameters>
    constexpr ScalarFunction(const char* name, DataType result, Nulls takes, Answers given, Function,
                             Result (Function::*)(Parameters...) const)
        : info{name, ((isOptional<std::remove_cvref_t<Parameters>> ? 0 : 1) + ... + 0), sizeof...(Parameters),
               result}
        , nulls(takes)
        , answers(given)
        , call([](const Arguments& arguments) {
            return Call<Function, Result, std::remove_cvref_t<Parameters>...>(
                arguments, std::index_sequence_for<Parameters...>());
        }) {}

    template <class Function, class Result, class... Parameters, std::size_t... Places>
    static Value Call([[maybe_unused]] const Arguments& arguments, std::index_sequence<Places...>) {
        // A list in braces is computed from left to right.
        const std::tuple<Parameters...> taken{arguments.As<Parameters>(static_cast<int>(Places))...};
        if constexpr (std::integral<Result> && !std::same_as<Result, bool>)
            return std::int64_t{std::apply(Function(), taken)};
        else
            return std::apply(Function(), taken);
    }
};

std::span<const ScalarFunction> TextFunctions();
std::span<const ScalarFunction> NumberFunctions();
std::span<const ScalarFunction> DateFunctions();
/// What the translator writes for operators and conversions; no name here is one of the dialect.
std::span<const ScalarFunction> OperatorFunctions();

void RegisterAggregates(sqlite3* db);

/// Ends the statement and keeps the exception that is being handled for RethrowFailure. Only inside a
/// handler.
void SetFailure(sqlite3_context* context) noexcept;
/// The result of registering something with SQLite; it fails for want of memory alone: std::bad_alloc.
void CheckRegistered(int code);

} // namespace engine::functions
