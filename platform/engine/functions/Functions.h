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

/// The dialect's LIKE: * ? # [list] [!list], case ignored, the whole text has to match. Failure 93 for a `[`
/// left open or a descending range.
bool Like(QStringView text, QStringView pattern);
/// Whether a pattern holds a wildcard; without one LIKE is an equality.
bool HasWildcards(QStringView pattern);

/// Whether Like takes it without a failure.
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

/// Registers the scalar functions, the aggregates zv_first, zv_last, zv_stdev, zv_stdevp, zv_var, zv_varp,
/// and what the translator writes for operators and conversions:
///   zv_like(text, pattern)      LIKE, NULL if either is NULL, numbers as their decimal text
///   zv_div(a, b)                /, failure 11 on division by zero
///   zv_intdiv(a, b), zv_mod(a, b)  operands rounded half to even first; failure 11
///   zv_pow(a, b), zv_add(a, b)  ^ and the + of values whose types only the rows tell
///   zv_concat(a, b)             &, NULL as empty text
///   zv_xor, zv_eqv, zv_imp      the logical operators with three values
///   zv_compare(a, b)            -1, 0, 1 of values whose types only the rows tell; failure 3464 for a text
///   against a number zv_to(type, size, name, value)  a value assigned to a column of a DataType: its form in
///   the file; failures 3464,
///                               3349, 3163; `name` is table.column for the message
///                               (with NULL for `name`: no failure, what does not fit becomes NULL)
///   zv_datetext(number)         a date number as the text of its date, for & and CSTR of what is known to be
///   a date zv_required(name, value)    the value, failure 3314 if it is NULL; with NULL for `name` 3058
///   zv_whole(value)             the value; whole numbers beyond 32 bits become fractions
///   zv_cur(units), zv_sng(n)    marked as an amount of money in ten-thousandths, a number of type SINGLE,
///   for the
///                               function around it
///   zv_tomoney(value)           in ten-thousandths; failure 6 beyond the range of CURRENCY
///   zv_keptmoney(fraction)      the same of a column of an older file, held to the range
///   zv_units(number)            in ten-thousandths, to be compared with them: no whole number if it is no
///   amount zv_madd, zv_msub, zv_mmul   the operators for two amounts in ten-thousandths; failure 6
///   zv_sum(units)               aggregate: the sum of amounts in ten-thousandths; failure 6
///   zv_single(value)            aggregate: the value of the only row, NULL of none, failure 3354 of several
/// A failure inside a function reaches the caller through RethrowFailure.
/// Date values are date numbers (days since 30.12.1899) inside SQLite; truths are 0 and 1 there and -1 when
/// written out.
void RegisterFunctions(sqlite3* db);

/// Keeps the exception that is being handled in a function that SQLite has called: none may pass through its
/// frames.
void KeepFailure() noexcept;
/// Behind a step: throws what was kept, whatever it is.
void RethrowFailure();

/// Characters of a GUID in braces.
inline constexpr int guidSize = 38;

/// A value converted to a column's form in the file, as zv_to does it.
Value ToColumn(const Value& value, DataType type, int size, const QString& name);

/// FORMAT of the dialect, Russian regional settings. `first` day of the week and `rule` of the first week of
/// the year as in DATEPART; failure 5 for others where the picture asks for them.
QString Format(const Value& value, const QString& picture, int first = 1, int rule = 1);

} // namespace engine::functions
