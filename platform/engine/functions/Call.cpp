// The way of a call from SQLite to a function of ours and back.

#include "platform/engine/functions/Call.h"

#include "platform/engine/store/Cell.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"

#include <QByteArray>
#include <QHash>

#include <array>
#include <cmath>
#include <exception>
#include <new>

namespace engine::functions {

namespace {

/// What a function of ours has thrown, on its way round SQLite's frames.
thread_local std::exception_ptr thrown;

// Marks of types that SQLite does not know; they live from one function to the next around it.
constexpr unsigned moneyMark = 'c';
constexpr unsigned singleMark = 's';

/// Whether it is no wider than the dialect's whole numbers.
bool IsLong(std::int64_t whole) {
    return whole == static_cast<std::int32_t>(whole);
}

/// Hands a value to SQLite: dates as date numbers, truths as 0 and 1, amounts of money as marked
/// ten-thousandths.
void SetResult(sqlite3_context* context, const Value& value) {
    const auto* whole = value.As<std::int64_t>();
    if (const auto* date = value.As<QDateTime>())
        sqlite3_result_double(context, NumberOf(*date));
    else if (whole && !IsLong(*whole))
        sqlite3_result_double(context, static_cast<double>(*whole));
    else
        ResultCell(context, CellOf(value));
    if (value.As<Money>())
        sqlite3_result_subtype(context, moneyMark);
    else if (value.As<float>())
        sqlite3_result_subtype(context, singleMark);
}

Value Call(const ScalarFunction& function, const Arguments& arguments) {
    const bool isNull = function.nulls == Nulls::Any ? arguments.AnyNull()
                                                     : function.nulls != Nulls::Taken && arguments.IsNull(0);
    if (isNull && function.nulls == Nulls::Refused)
        runtime::Raise(runtime::InvalidUseOfNull);
    return isNull ? Value() : function.call(arguments);
}

void CallScalar(sqlite3_context* context, int count, sqlite3_value** values) {
    const auto* function = static_cast<const ScalarFunction*>(sqlite3_user_data(context));
    try {
        SetResult(context, Call(*function, Arguments(context, count, values)));
    } catch (...) { // no exception may pass through SQLite
        SetFailure(context);
    }
}

void Register(sqlite3* db, std::span<const ScalarFunction> functions) {
    for (const ScalarFunction& function : functions) {
        const QByteArray name = "zv_" + QByteArray(function.info.name).toLower();
        const int flags =
            SQLITE_UTF16 | SQLITE_DIRECTONLY | (function.answers == Answers::Stay ? SQLITE_DETERMINISTIC : 0);
        for (int count = function.info.minArguments; count <= function.info.maxArguments; ++count)
            CheckRegistered(sqlite3_create_function_v2(db, name.constData(), count, flags,
                                                       const_cast<ScalarFunction*>(&function), CallScalar,
                                                       nullptr, nullptr, nullptr));
    }
}

std::array<std::span<const ScalarFunction>, 3> DialectFunctions() {
    return {TextFunctions(), NumberFunctions(), DateFunctions()};
}

} // namespace

const FunctionInfo* FindFunction(QStringView name) {
    static const QHash<QString, const FunctionInfo*> byName = [] {
        QHash<QString, const FunctionInfo*> made;
        for (const auto functions : DialectFunctions()) {
            for (const ScalarFunction& function : functions)
                made.insert(QString::fromLatin1(function.info.name), &function.info);
        }
        return made;
    }();
    return byName.value(name.toString().toUpper());
}

void RegisterFunctions(sqlite3* db) {
    for (const auto functions : DialectFunctions())
        Register(db, functions);
    Register(db, OperatorFunctions());
    RegisterAggregates(db);
}

void CheckRegistered(int code) {
    if (code != SQLITE_OK)
        throw std::bad_alloc();
}

bool Arguments::AnyNull() const {
    for (int place = 0; place < m_count; ++place) {
        if (IsNull(place))
            return true;
    }
    return false;
}

QStringView Arguments::TextView(int place) const {
    return CellOf(m_values[place]).text;
}

QDateTime DateOf(const Value& value) {
    if (const auto* text = value.As<QString>())
        return runtime::TextToDate(*text);
    return runtime::DateFromNumber(value.Number());
}

double NumberOf(const QDateTime& date) {
    const double number = runtime::NumberFromDate(date);
    if (!date.isValid() || !runtime::IsDateNumber(number))
        runtime::Raise(runtime::InvalidCall);
    return number;
}

Value Finite(double number) {
    if (std::isnan(number))
        runtime::Raise(runtime::InvalidCall);
    if (std::isinf(number))
        runtime::Raise(runtime::Overflow);
    return number;
}

Value FromSqlite(sqlite3_value* value) {
    const Cell cell = CellOf(value);
    switch (cell.kind) {
    case Cell::Integer:
        if (sqlite3_value_subtype(value) == moneyMark)
            return Money{cell.integer};
        return IsLong(cell.integer) ? Value(cell.integer) : Value(static_cast<double>(cell.integer));
    case Cell::Real:
        return sqlite3_value_subtype(value) == singleMark ? Value(static_cast<float>(cell.real))
                                                          : Value(cell.real);
    case Cell::Text:
        return cell.text.toString();
    case Cell::Bytes:
        return cell.bytes.toByteArray();
    case Cell::Null:
        break;
    }
    return {};
}

void KeepFailure() noexcept {
    thrown = std::current_exception();
}

void SetFailure(sqlite3_context* context) noexcept {
    KeepFailure();
    sqlite3_result_error_code(context, SQLITE_ERROR);
}

void RethrowFailure() {
    if (thrown)
        std::rethrow_exception(std::exchange(thrown, nullptr));
}

} // namespace engine::functions
