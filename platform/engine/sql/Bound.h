#pragma once

#include "platform/engine/schema/Table.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace engine::sql {

/// How tight the outermost operator of a SQLite text binds.
enum Precedence : int {
    JoinPrecedence,
    OrPrecedence,
    AndPrecedence,
    NotPrecedence,
    EqualPrecedence,
    AddPrecedence,
    MultiplyPrecedence,
    ConcatPrecedence,
    CollatePrecedence,
    PrimaryPrecedence,
};

struct Bound;
struct BoundQuery;
struct Term;
using QueryPtr = std::shared_ptr<const BoundQuery>;
using TermPtr = std::shared_ptr<const Term>;

/// What stands at a % of a form: a term or a query.
struct Operand {
    TermPtr term = {};
    QueryPtr query = {};
    int least = 0; ///< a term that binds less tight is written in parentheses

    Operand(TermPtr part, int tightness = 0) // NOLINT: a term is an operand
        : term(std::move(part))
        , least(tightness) {}
    Operand(QueryPtr part) // NOLINT: so is a query
        : query(std::move(part)) {}
    Operand(const Bound& value); // NOLINT
};

/// An expression of SQLite, to be written later: `coalesce(%, '')` over one operand. Without operands the
/// form is the text, whatever signs it holds.
struct Term {
    QString form;
    std::vector<Operand> operands;
    int precedence = PrimaryPrecedence;
    qsizetype size = 0; ///< about as many characters as its text
    /// What stands here instead in a statement that leaves failing rows out; null: the same.
    TermPtr ignoring = {};
};

/// Failure 3360 for what would become longer than SQLite takes.
TermPtr MakeTerm(QStringView form, std::vector<Operand> operands = {}, int precedence = PrimaryPrecedence);

/// An expression of a statement when all of it is settled: what is written, and what is known of its values.
struct Bound {
    TermPtr term;
    DataType type = DataType::Unknown;
    int size = 0;           ///< of a text column
    bool condition = false; ///< 0, 1 or NULL, while the dialect's truth is -1
    bool nullable = true;
    bool collated = false; ///< a column that compares by ZV_FOLD of itself
    bool null = false;     ///< the constant NULL
    bool wide = false;     ///< a whole number that may have grown beyond 32 bits, and is a fraction then
    /// Of CURRENCY: the same value as a whole number of ten-thousandths, as it is kept and calculated with.
    /// `term` is this divided, for all to whom it is a number like others.
    TermPtr money;

    TypeKind Kind() const { return KindOf(type); }
    bool IsText() const { return Kind() == TypeKind::Text; }
    bool IsDate() const { return Kind() == TypeKind::Date; }
    /// A number or a date, which is one inside SQLite.
    bool IsNumber() const { return Kind() == TypeKind::Number || IsDate(); }
    /// Whether only the rows tell the type.
    bool IsUnknown() const { return Kind() == TypeKind::Unknown && !null; }
    bool IsAmount() const { return money != nullptr; }

    /// As an operand, in parentheses if it binds less tight.
    Operand At(int least) const { return {term, least}; }
    /// The same value in another form, as a number or text of `asType`.
    Bound As(DataType asType, TermPtr changed) const;
};

Bound MakeBound(DataType type, TermPtr term);
Bound MakeNull();
Bound MakeCondition(TermPtr term);
Bound MakeCondition(QStringView form, std::vector<Operand> operands = {}, int precedence = PrimaryPrecedence);
/// An amount of money; `units` is its term in ten-thousandths.
Bound MakeAmount(const TermPtr& units);
/// A column of a table, of a sub-query or among parameters: its value as it is kept there.
Bound StoredValue(const QString& text, DataType type, int size = 0);
/// The same of a column of a bound query, now `term`.
Bound DeliveredValue(const Bound& column, TermPtr term);
/// In the form in which queries deliver it: amounts of money in ten-thousandths.
Bound Delivered(Bound value);
/// A text in the form in which equal texts meet in DISTINCT, GROUP BY, UNION and IN.
Bound Folded(const Bound& value);
/// A text in the form in which it is sorted.
Bound Sorted(const Bound& value);
/// A condition or the value of a yes-or-no column as the dialect's number, -1 or 0.
Bound AsNumber(Bound value);
/// A number as an amount of money in ten-thousandths, rounded.
TermPtr Units(const Bound& value);
/// A number in ten-thousandths, for a comparison with an amount.
TermPtr ComparedUnits(const Bound& value);
/// As an argument of a function, which could not tell amounts of money and numbers of type SINGLE from
/// others.
TermPtr Argument(const Bound& value);

/// Place of a column in a scope.
struct ScopePlace {
    std::size_t source = 0;
    std::size_t column = 0;

    friend bool operator==(const ScopePlace&, const ScopePlace&) = default;
};

/// A column that a query delivers or a source offers.
struct BoundColumn {
    QString name;
    Bound value;
    std::optional<ScopePlace> place = {}; ///< of a column that bears its own name
};

/// A table or sub-query of a FROM.
struct ScopeSource {
    QString name = {};                ///< by which columns are qualified
    QString alias = {};               ///< in SQLite's text
    const TableInfo* table = nullptr; ///< null for a sub-query
    std::vector<BoundColumn> columns = {};

    /// SQLite's row number under that of its three names that no column of the table bears.
    QString RowId() const;
};

/// A term of ORDER BY.
struct OrderTerm {
    Bound value;
    bool descending = false;
};

/// One SELECT. Its columns are called c0, c1 ... for the query around it.
struct BoundSelect {
    std::vector<BoundColumn> columns;
    TermPtr from;          ///< null: no FROM
    bool oneTable = false; ///< the only source is a table
    TermPtr where;
    std::vector<TermPtr> groupBy;
    TermPtr having;
    std::vector<OrderTerm> orderBy;
    bool all = false; ///< joined to the SELECT before it by UNION ALL
    bool distinct = false;
    bool aggregated = false;
    bool groups = false;
    int top = 0;
    bool percent = false;

    /// Whether each row is that of one row of one table.
    bool IsPlain() const { return oneTable && !distinct && !aggregated && !groups && top == 0; }
};

/// One SELECT, or several joined by UNION.
struct BoundQuery {
    std::vector<BoundColumn> columns = {};
    std::vector<BoundSelect> parts = {};
    std::vector<OrderTerm> orderBy = {}; ///< of a UNION, by the numbers of columns
    bool singleRow = false;              ///< never more than one row
};

/// TRANSFORM, or the query for its headings where only the rows tell them.
struct BoundTransform {
    BoundSelect select;
    bool asks = false; ///< it is the query for the headings
};

/// A value on its way into a column, converted to its type.
struct NewValue {
    int column = 0; ///< place in the table
    TermPtr value;
    bool key = false; ///< without it the row cannot stand
};

/// INSERT, and the second half of SELECT ... INTO.
struct BoundInsert {
    const TableInfo* table = nullptr;
    std::vector<NewValue> row = {};
    QueryPtr from = {}; ///< where the rows come from; null for one row
};

/// UPDATE and DELETE.
struct BoundChange {
    const ScopeSource* target = nullptr;
    bool joins = false; ///< the rows to change are found by a query over more than the target
    TermPtr from;
    std::vector<NewValue> values = {};    ///< UPDATE
    std::vector<Operand> conditions = {}; ///< each of them is to hold
};

} // namespace engine::sql
