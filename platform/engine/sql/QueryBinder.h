#pragma once

#include "platform/engine/sql/ExpressionBinder.h"

namespace engine::sql {

/// A column that a query delivers.
struct BoundColumn {
    QString name;
    Bound value;
    std::optional<ScopePlace> place = {}; ///< of a column that bears its own name
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

/// Settles the sources of a FROM and adds them to the scope. Null if there are none.
TermPtr BindFrom(Context& context, Scope& scope, const std::vector<SourcePtr>& from);

/// Settles SELECT and UNION: sources, columns and their names, groups, order.
class QueryBinder {
public:
    QueryBinder(Context& context, const Scope* outer)
        : m_context(context)
        , m_outer(outer) {}

    QueryPtr Bind(const Query& query);
    /// The same; failure 3306 if it has not exactly one column.
    QueryPtr BindOneColumn(const Query& query);
    /// A SELECT over `scope`, which is filled.
    BoundSelect BindSelect(const Select& select, const std::vector<OrderItem>& orderBy, Scope& scope);

private:
    QueryPtr BindUnion(const Query& query);
    BoundSelect BindUnionPart(const QueryPart& part);
    std::vector<OrderTerm> BindUnionOrder(const Query& query, const std::vector<BoundColumn>& columns);
    void BindColumns(const Select& select, const Scope& scope, BoundSelect& bound);
    void BindGroups(const Select& select, const Scope& scope, BoundSelect& bound);
    void BindOrder(const Select& select, const std::vector<OrderItem>& orderBy, const Scope& scope,
                   BoundSelect& bound);
    void CheckGrouped(const Select& select, const std::vector<OrderItem>& orderBy, const Scope& scope) const;

    Context& m_context;
    const Scope* m_outer;
};

/// Settles TRANSFORM: one row for each group, one column for each value of the pivot, which is an aggregate
/// with FILTER. `headings`: the values that the rows have told, null if they have not been asked yet; the
/// query for them is bound then, and `asks` set.
BoundSelect BindTransform(Context& context, const Transform& transform, const Query& query,
                          const std::vector<Heading>* headings, bool& asks);

} // namespace engine::sql
