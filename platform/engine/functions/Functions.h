#pragma once

#include "platform/engine/Value.h"

#include <QStringView>

struct sqlite3;

namespace engine::functions {

/// Collations, given to SQLite in the file's own text form (UTF-16):
/// ZV_FOLD: equality, UNIQUE, DISTINCT, GROUP BY. Simple case folding over Latin and Cyrillic by a frozen
/// table of our own, code units otherwise; indexes of the file persist its order, so it never changes.
/// ZV_SORT: ORDER BY, comparisons by order, MIN and MAX. The Russian alphabet without regard to case, the
/// same on every system; texts are equal where ZV_FOLD has them equal. Used in queries alone, never in an
/// index.
void RegisterCollations(sqlite3* db);

/// Folds a text as ZV_FOLD compares it: equal results are equal texts.
QString Fold(QStringView text);
int CompareFolded(QStringView a, QStringView b);
int CompareSorted(QStringView a, QStringView b);

/// Capitals and small letters, character by character, so that the length stays.
QString ToUpper(const QString& text);
QString ToLower(const QString& text);

/// Whether a pattern of LIKE holds a wildcard; without one LIKE is an equality.
bool HasWildcards(QStringView pattern);
/// Whether LikePattern takes it without a failure.
bool IsPattern(QStringView pattern);

/// A scalar function of the dialect. In SQLite it bears the name `zv_` + name in small letters.
struct FunctionInfo {
    const char* name; ///< capitals
    int minArguments;
    int maxArguments;
    DataType result; ///< Unknown: as its arguments
};

/// By name, case ignored; null for a name that the dialect does not know. IIF, CHOOSE and SWITCH are not here
/// (they compute only what they need, so the translator writes them as CASE), nor are the aggregates.
const FunctionInfo* FindFunction(QStringView name);

/// Registers the scalar functions (zv_ and the name), the aggregates zv_first, zv_last, zv_stdev, zv_stdevp,
/// zv_var, zv_varp, zv_sum and zv_single, and what the translator writes for operators and conversions: see
/// the table in Operators.cpp. A failure inside a function reaches the caller through RethrowFailure. Inside
/// SQLite dates are date numbers (days since 30.12.1899), amounts of money ten-thousandths, truths 0 and 1
/// (-1 when they are written out).
void RegisterFunctions(sqlite3* db);

/// Keeps the exception that is being handled in a function that SQLite has called: none may pass through its
/// frames.
void KeepFailure() noexcept;
/// Behind a step: throws what was kept, whatever it is.
void RethrowFailure();

/// Characters of a GUID in braces.
inline constexpr int guidSize = 38;

/// A value converted to a column's form in the file. `size`: the most characters of a text or bytes, 0
/// without limit; the digits of a CURRENCY column that keeps fractions, else 0. Failures: 3464 if the type
/// does not fit, 3349 beyond the column's range, 3163 beyond its size.
Value ToColumn(const Value& value, DataType type, int size);

/// FORMAT of the dialect, Russian regional settings. `first` day of the week and `rule` of the first week of
/// the year as in DATEPART; failure 5 for others where the picture asks for them.
QString Format(const Value& value, const QString& picture, int first = 1, int rule = 1);

} // namespace engine::functions
