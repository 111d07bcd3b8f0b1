#pragma once

#include "platform/engine/schema/Table.h"
#include "platform/engine/sql/Lexer.h"

#include <optional>

namespace engine::sql {

/// A literal as it stands in a statement: a view of its text.
class Literal {
public:
    /// What of it tells how the statement is translated: its kind alone; that it is a pattern of LIKE, with
    /// or without wildcards; or every character.
    enum class Role : std::uint8_t { Value, Pattern, Fixed };

    /// A literal token.
    Literal(const Token& token, Role role);

    QStringView Text() const { return m_text; }
    /// A whole number.
    const std::int64_t* Whole() const { return m_kind == TokenKind::Integer ? &m_whole : nullptr; }
    /// The characters of a text, if they stand there as they are; null if a quote among them is doubled, or
    /// if it is no text.
    QStringView Plain() const { return m_plain; }
    Value ToValue() const;

    /// The literal at this place of a text, if it can stand for this one in a statement with the same plan.
    std::optional<Literal> Likeness(QStringView text, qsizetype place) const;
    void Fix() { m_role = Role::Fixed; }

private:
    bool IsLike(const Literal& other) const;

    TokenKind m_kind;
    Role m_role;
    std::int64_t m_whole = 0;
    QStringView m_text;
    QStringView m_plain;
};

/// A statement text taken apart. Two texts that differ in literals alone, and in those not in what their
/// roles keep, translate to the same plan and differ only in what is bound to it.
struct Scanned {
    QString text;
    std::vector<Literal> literals; ///< views of the text
    bool cacheable =
        true; ///< false for schema statements and very long lists: their literals are written out
};

/// Failure 3360 for a text over 1,000,000 characters. A text that cannot be read to its end is not cacheable
/// and fails at Translate.
Scanned Scan(const QString& text);
/// Takes a text apart that has the plan of another, by that one. False if it has not, or is written in
/// another way; only the room of `scanned` can be used then.
bool ScanLike(const Scanned& known, const QString& text, Scanned& scanned);

/// How a literal is converted before it is bound.
struct Parameter {
    int literal = 0; ///< place in Scanned::literals
    /// Assignment to a column: converted to its type, with the column's failures (3464, 3349, 3163).
    std::optional<ColumnInfo> column;
};

struct ResultColumn {
    QString name;
    DataType type = DataType::Unknown;
};

/// A top-level AND condition `column = literal` (or LIKE a literal without wildcards): number columns against
/// whole numbers and text columns against texts alone.
struct KeyCondition {
    int column = 0;
    int literal = 0; ///< place in Scanned::literals
};

enum class Verb { Select, Insert, Update, Delete, SelectInto, Schema };

/// What a statement becomes. SQLite texts take ?1, ?2, ... for `parameters` in order. SQLite's own "parser
/// stack overflow" and "Expression tree is too large" at preparing one of them mean failure 3360.
struct Plan {
    Verb verb = Verb::Select;
    QString text;       ///< SQLite text; empty for Schema
    QString ignoreText; ///< action statements: the form in which failing rows are left out (OR IGNORE)
    std::vector<Parameter> parameters;
    std::vector<ResultColumn> columns; ///< Select
    QString target;                    ///< table that an action statement changes
    bool setsCounter = false;          ///< INSERT that names the counter column

    /// Select on one table without grouping, DISTINCT, TOP and UNION: the text of one row with the same
    /// columns, for rows changed since they were read. Its row number is ?n, n being the number of parameters
    /// plus 1; the parameters of `text` are bound to it as well, since its columns may hold literals. `text`
    /// then delivers the row number as one more, last column. Empty for results that are fixed copies.
    QString rowText;
    QString rowTable; ///< the table of rowText

    /// TRANSFORM whose column headings its rows tell: the query that delivers the headings, as SQLite writes
    /// them and by name. Its result goes into a second call of Translate. Else empty.
    QString headingsText;

    SchemaChange change; ///< Schema
    TableInfo intoTable; ///< SelectInto: the table to make first; `text` is then the INSERT ... SELECT
};

/// A heading of a TRANSFORM: its value in SQLite's words, and the name of its column.
struct Heading {
    QString literal;
    QString name;
};

enum class Purpose { OpenRecordset, Execute };

/// Parses and resolves. Failures: those of the engine's dialect, in its order (syntax first, then names, then
/// the kind of statement: 3219 and 3065).
Plan Translate(const Scanned& scanned, const Catalog& catalog, Purpose purpose,
               const std::vector<Heading>* headings = nullptr);

/// Criteria of FindFirst over a result with these columns: a SELECT of one truth in which column i of the
/// result is parameter i + 1 and the literals follow. Only a row for which all `equalities` hold can meet
/// them.
struct CriteriaPlan {
    QString text;
    std::vector<Parameter> parameters;
    std::vector<KeyCondition> equalities;
};
/// Failures 3077 (with the reason of the syntax error) and 3070 (unknown name).
CriteriaPlan TranslateCriteria(const Scanned& scanned, const std::vector<ResultColumn>& columns);

} // namespace engine::sql
