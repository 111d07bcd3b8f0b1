#pragma once

#include "platform/engine/sql/Context.h"
#include "platform/engine/sql/Scope.h"

#include <span>

namespace engine::sql {

/// Writes the expressions of one clause: `a01last LIKE 'и*' AND a01clid <> 3` becomes
/// `zv_like(q1."a01last", ?1) AND q1."a01clid" <> ?2`. Sub-queries go through QueryWriter.
class ExpressionWriter {
public:
    /// `aggregateFailure`: the failure that an aggregate is in this clause, 0 where it may stand.
    ExpressionWriter(Context& context, const Scope& scope, int aggregateFailure)
        : m_context(context)
        , m_scope(scope)
        , m_aggregateFailure(aggregateFailure)
        , m_used(scope.sources.size(), false) {}

    /// Only the sources of one join can be named (failure 3082 for others of the same FROM).
    void LimitSources(std::size_t first, std::size_t end);
    /// Aliases of the list, which its expressions can use.
    void OfferAliases(std::span<const SelectItem> items) { m_items = items; }

    /// Aggregates take in only the rows that meet this condition.
    void FilterAggregates(const QString& condition) { m_filter = condition; }

    /// As it comes: a value or a condition.
    Written Write(const Node& node);
    /// A value: a condition becomes -1 or 0.
    Written Value(const Node& node) { return AsNumber(Write(node)); }
    /// What a column delivers: a condition becomes -1 or 0.
    Written ColumnValue(const Node& node);
    /// A condition: a number stands for its not being 0.
    Written Condition(const Node& node);
    /// A comparison of two values; `op` is one of the six.
    Written Compare(Op op, const Written& left, const Written& right);

    bool SawAggregate() const { return m_sawAggregate; }
    /// Whether a column of a statement around this one was named.
    bool SawOuter() const { return m_sawOuter; }
    /// Sources of the own scope that were named.
    const std::vector<bool>& UsedSources() const { return m_used; }

    /// Whether a literal behind LIKE holds no wildcard, so that LIKE is an equality.
    static bool IsPlainPattern(const Node& literal);
    static bool IsAggregate(const QString& name);

private:
    Written WriteKind(const Node& node);
    Written WriteName(const Node& node);
    std::optional<Written> WriteAlias(const QString& name);
    Written WriteNegate(const Node& node);
    Written WriteBinary(const Node& node);
    Written WriteLogical(const Node& node);
    Written WriteArithmetic(const Operator& op, Written left, Written right);
    Written WriteLike(const Node& node);
    Written WriteBetween(const Node& node);
    Written WriteInList(const Node& node);
    Written WriteInQuery(const Written& value, const Query& query, bool negated);
    Written WriteIsNull(const Node& value, bool negated);
    Written WriteSubquery(const Node& node);
    Written WriteQuantified(const Node& node);
    void CheckComparable(const Written& left, const Written& right);

    Written WriteCall(const Node& node);
    Written WriteAggregate(const Node& node);
    Written WriteAggregated(const Node& node);
    Written WriteIif(const Node& node);
    Written WriteSwitch(const Node& node);
    Written WriteChoose(const Node& node);
    Written WriteFunction(const Node& node);
    [[noreturn]] void FailArguments(const Node& node) const;

    Context& m_context;
    const Scope& m_scope;
    int m_aggregateFailure;
    std::size_t m_first = 0;
    std::size_t m_end = 0; ///< 0: all sources
    std::span<const SelectItem> m_items;
    std::vector<const SelectItem*> m_openAliases;
    std::vector<bool> m_used;
    QString m_filter;
    bool m_sawAggregate = false;
    bool m_sawOwn = false; ///< a column of the own scope was named
    bool m_sawOuter = false;
    int m_depth = 0;
};

} // namespace engine::sql
