#pragma once

#include "platform/engine/EngineError.h"
#include "platform/engine/sql/Scope.h"

#include <span>

namespace engine::sql {

/// Settles the expressions of one clause: which column a name means, what type a value has, and by which term
/// SQLite gets it. `a01last LIKE 'и*' AND a01clid <> 3` becomes
/// `zv_like(q1."a01last", ?1) AND q1."a01clid" <> ?2`. Sub-queries go through QueryBinder.
class ExpressionBinder {
public:
    /// `aggregateFailure`: the failure that an aggregate is in this clause, null where it may stand.
    ExpressionBinder(Context& context, const Scope& scope, const EngineError* aggregateFailure)
        : m_context(context)
        , m_scope(scope)
        , m_aggregateFailure(aggregateFailure)
        , m_used(scope.sources.size(), false) {}

    /// Only the sources of one join can be named (failure 3082 for others of the same FROM).
    void LimitSources(std::size_t first, std::size_t end);
    /// Aliases of the list, which its expressions can use.
    void OfferAliases(std::span<const SelectItem> items) { m_items = items; }

    /// Aggregates take in only the rows that meet this condition.
    void FilterAggregates(const TermPtr& condition) { m_filter = condition; }

    /// As it comes: a value or a condition.
    Bound Bind(const Node& node);
    /// A value: a condition becomes -1 or 0.
    Bound Value(const Node& node) { return AsNumber(Bind(node)); }
    /// What a column delivers: a condition becomes -1 or 0.
    Bound ColumnValue(const Node& node);
    /// A condition: a number stands for its not being 0.
    Bound Condition(const Node& node);
    /// A comparison of two values; `op` is one of the six.
    Bound Compare(Op op, const Bound& left, const Bound& right);

    bool SawAggregate() const { return m_sawAggregate; }
    /// Whether a column of a statement around this one was named.
    bool SawOuter() const { return m_sawOuter; }
    /// Sources of the own scope that were named.
    const std::vector<bool>& UsedSources() const { return m_used; }

    /// Whether a literal behind LIKE holds no wildcard, so that LIKE is an equality.
    static bool IsPlainPattern(const Node& literal);
    static bool IsAggregate(const QString& name);

private:
    Bound BindKind(const Node& node);
    Bound BindName(const Node& node);
    std::optional<Bound> BindAlias(const QString& name);
    Bound BindNegate(const Node& node);
    Bound BindBinary(const Node& node);
    Bound BindLogical(const Node& node);
    Bound BindArithmetic(const Operator& op, Bound left, Bound right);
    Bound BindLike(const Node& node);
    Bound BindBetween(const Node& node);
    Bound BindInList(const Node& node);
    Bound BindInQuery(const Bound& value, const Query& query, bool negated);
    Bound BindIsNull(const Node& value, bool negated);
    Bound BindSubquery(const Node& node);
    Bound BindQuantified(const Node& node);
    void CheckComparable(const Bound& left, const Bound& right);

    Bound BindCall(const Node& node);
    Bound BindAggregate(const Node& node);
    Bound BindAggregated(const Node& node);
    TermPtr Filtered(const QString& form, std::vector<Operand> operands) const;
    Bound BindIif(const Node& node);
    Bound BindSwitch(const Node& node);
    Bound BindChoose(const Node& node);
    Bound BindFunction(const Node& node);
    /// Failure 3075 unless their number is right.
    void ExpectArguments(const Node& node, bool right) const;

    Context& m_context;
    const Scope& m_scope;
    const EngineError* m_aggregateFailure;
    std::size_t m_first = 0;
    std::size_t m_end = 0; ///< 0: all sources
    std::span<const SelectItem> m_items;
    std::vector<const SelectItem*> m_openAliases;
    std::vector<bool> m_used;
    TermPtr m_filter;
    bool m_sawAggregate = false;
    bool m_sawOwn = false; ///< a column of the own scope was named
    bool m_sawOuter = false;
    int m_depth = 0;
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
/// with FILTER. `headings`: the values that the rows have told, null if they have not been asked yet.
BoundTransform BindTransform(Context& context, const Transform& transform, const Query& query,
                             const std::vector<Heading>* headings);

// Each tells the plan its verb and its target.
BoundInsert BindInsert(Context& context, const Insert& insert, Plan& plan);
BoundChange BindUpdate(Context& context, Scope& scope, const Update& update, Plan& plan);
BoundChange BindDelete(Context& context, Scope& scope, const Delete& remove, Plan& plan);
/// A table made of a query: the columns keep their types, and no keys. A counter goes on counting in the copy
/// of one table; in any other query its numbers may be missing or repeated.
BoundInsert BindInto(Context& context, const Query& query, Plan& plan);

} // namespace engine::sql
