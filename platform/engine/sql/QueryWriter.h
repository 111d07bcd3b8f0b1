#pragma once

#include "platform/engine/sql/ExpressionWriter.h"

namespace engine::sql {

/// A column that a query delivers.
struct WrittenColumn {
    QString name;
    Written value;                        ///< what is known of it; its text is that of the expression
    std::optional<ScopePlace> place = {}; ///< of a column that bears its own name
};

struct WrittenQuery {
    QString text;
    std::vector<WrittenColumn> columns; ///< called c0, c1 ... in the text
    bool singleRow = false;             ///< never more than one row
};

/// A term of ORDER BY.
struct OrderTerm {
    Written value;
    bool descending = false;

    QString Text() const;
};

/// One SELECT in parts, each as SQLite text.
struct SelectParts {
    std::vector<WrittenColumn> columns;
    QString from;
    const ScopeSource* table = nullptr; ///< the only source, if that is a table
    Written where;
    QString groupBy;
    QString having;
    std::vector<OrderTerm> orderBy;
    bool distinct = false;
    bool aggregated = false;
    bool groups = false;
    int top = 0;
    bool percent = false;

    /// Whether each row is that of one row of one table.
    bool IsPlain() const { return table && !distinct && !aggregated && !groups && top == 0; }
    /// `rowNumber`: one more column.
    QString Assemble(const QString& rowNumber = {}) const;

private:
    QStringList ColumnTexts() const;
    QString Body(const QStringList& columnTexts) const;
    QString AssembleTop() const;
};

/// Writes the sources of a FROM and adds them to the scope:
/// `a01 LEFT JOIN a02 AS p ON a01clid = a02clid` becomes
/// `"a01" AS q1 LEFT JOIN "a02" AS q2 ON q1."a01clid" = q2."a02clid"`.
QString WriteFrom(Context& context, Scope& scope, const std::vector<SourcePtr>& from);
/// The only source of a scope, if that is a table; else null.
const ScopeSource* OnlyTable(const Scope& scope);

/// Writes SELECT and UNION: `SELECT DISTINCT a01last FROM a01` becomes
/// `SELECT DISTINCT q1."a01last" AS c0 FROM "a01" AS q1`.
class QueryWriter {
public:
    QueryWriter(Context& context, const Scope* outer)
        : m_context(context)
        , m_outer(outer) {}

    WrittenQuery Write(const Query& query);
    /// The same; failure 3306 if it has not exactly one column.
    WrittenQuery WriteOneColumn(const Query& query);
    /// The parts of a SELECT over `scope`, which is filled.
    SelectParts WriteParts(const Select& select, const std::vector<OrderItem>& orderBy, Scope& scope);

private:
    WrittenQuery WriteUnion(const Query& query);
    SelectParts WriteUnionPart(const QueryPart& part);
    QString WriteUnionOrder(const Query& query, const std::vector<WrittenColumn>& columns);
    void WriteColumns(const Select& select, const Scope& scope, SelectParts& parts);
    void WriteGroups(const Select& select, const Scope& scope, SelectParts& parts);
    void WriteOrder(const Select& select, const std::vector<OrderItem>& orderBy, const Scope& scope,
                    SelectParts& parts);
    void CheckGrouped(const Select& select, const std::vector<OrderItem>& orderBy, const Scope& scope) const;

    Context& m_context;
    const Scope* m_outer;
};

/// Writes TRANSFORM: one row for each group, one column for each value of the pivot, which is an aggregate
/// with FILTER. `headings`: the values that the rows have told, null if they have not been asked yet; the
/// plan then holds the query for them.
void WriteTransform(Context& context, const Transform& transform, const Query& query,
                    const std::vector<Heading>* headings, Plan& plan);

} // namespace engine::sql
