#pragma once

#include "platform/engine/functions/Functions.h"

#include <QDateTime>
#include <QString>
#include <QStringView>
#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <span>

namespace engine::functions {

/// The arguments of one call from SQLite. A view: no longer than the call. Places count from 0.
class Arguments {
public:
    Arguments(sqlite3_context* context, int count, sqlite3_value** values)
        : m_context(context)
        , m_count(count)
        , m_values(values) {}

    int Count() const { return m_count; }
    /// Whether the argument was given at all.
    bool Has(int place) const { return place < m_count; }
    bool IsNull(int place) const;
    bool AnyNull() const;
    bool IsText(int place) const;
    bool IsWhole(int place) const;
    bool IsBytes(int place) const;

    Value At(int place) const;
    /// The decimal text of a number; the empty text for NULL.
    QString Text(int place) const;
    /// The text where it lies, without a copy; only of a text.
    QStringView TextView(int place) const;

    /// CURRENCY as SQLite keeps it, without a mark.
    std::optional<Money> Units(int place) const;

    // Conversions by regional settings. Failures: 94 on NULL, 13 on a text that is none, 6 out of range.
    double Number(int place) const;
    std::int32_t Long(int place) const;
    std::int32_t Long(int place, std::int32_t fallback) const { return Has(place) ? Long(place) : fallback; }
    QDateTime Date(int place) const;

    sqlite3_context* Context() const { return m_context; }

private:
    sqlite3_context* m_context;
    int m_count;
    sqlite3_value** m_values;
};

/// A value of SQLite's as ours: amounts of money and numbers of type SINGLE by the mark that a function has
/// put on them, whole numbers beyond 32 bits as fractions.
Value FromSqlite(sqlite3_value* value);

/// The date of a date number; failure 6 outside 1.1.100 to 31.12.9999.
QDateTime DateOf(double number);
/// The date number of a date; failure 5 outside the same range.
double NumberOf(const QDateTime& date);

/// Hands a value to SQLite: dates as date numbers, truths as 0 and 1, amounts of money as marked
/// ten-thousandths.
void SetResult(sqlite3_context* context, const Value& value);
/// Ends the statement and keeps the exception that is being handled for RethrowFailure. Only inside a
/// handler.
void SetFailure(sqlite3_context* context) noexcept;

/// A function of the dialect and what computes it.
struct ScalarFunction {
    FunctionInfo info;
    Value (*call)(const Arguments&);
    bool deterministic = true;
};

std::span<const ScalarFunction> TextFunctions();
std::span<const ScalarFunction> NumberFunctions();
std::span<const ScalarFunction> DateFunctions();
/// What the translator writes for operators and conversions; no name here is one of the dialect.
std::span<const ScalarFunction> OperatorFunctions();

void RegisterAggregates(sqlite3* db);

/// The result of registering something with SQLite; it fails for want of memory alone: std::bad_alloc.
void CheckRegistered(int code);

} // namespace engine::functions
