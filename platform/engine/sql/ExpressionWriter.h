#pragma once

#include "platform/engine/sql/Context.h"
#include "platform/engine/sql/Scope.h"

#include <span>

namespace engine::sql {

/// Where an expression stands, as far as aggregates are concerned.
enum class AggregateRule : std::uint8_t { Allowed, InExpression, InWhere, InOrderBy, InGroupBy, InJoin };

/// Writes the expressions of one clause in SQLite's words. Sub-queries go through QueryWriter.
class ExpressionWriter {
public:
    ExpressionWriter(Context& context, const Catalog* catalog, const Scope& scope, AggregateRule rule);

    /// Only the sources of one join can be named (failure 3082 for others of the same FROM).
    void LimitSources(int first, int last);
    /// Aliases of the list, which its expressions can use.
    void OfferAliases(std::span<const SelectItem> items) { m_items = items; }

    /// Aggregates take in only the rows that meet this condition.
    void FilterAggregates(const QString& condition) { m_filter = condition; }

    /// As it comes: a value or a condition.
    Written Write(const Node& node);
    /// A value: a condition becomes -1 or 0.
    Written Value(const Node& node);
    /// A condition: a number stands for its not being 0.
    Written Condition(const Node& node);
    /// A comparison of two values; `op` is one of the six.
    Written Compare(Op op, const Written& left, const Written& right);

    bool SawAggregate() const { return m_sawAggregate; }
    /// Whether a column of a statement around this one was named.
    bool SawOuter() const { return m_sawOuter; }
    /// Sources of the own scope that were named.
    const std::vector<bool>& UsedSources() const { return m_used; }

    /// Conditions and yes-or-no columns as the dialect's numbers, -1 and 0.
    static Written AsNumber(Written value);
    /// Whether a literal behind LIKE holds no wildcard, so that LIKE is an equality.
    static bool IsPlainPattern(const Node& literal);
    static bool IsAggregate(const QString& name);

    /// A text in the form in which equal texts meet in DISTINCT, GROUP BY and UNION.
    static QString Folded(const Written& value);
    /// A text in the form in which it is sorted.
    static QString Sorted(const Written& value);

private:
    Written WriteName(const Node& node);
    std::optional<Written> WriteAlias(const QString& name);
    Written WriteNot(const Node& node);
    Written WriteNegate(const Node& node);
    Written WriteBinary(const Node& node);
    Written WriteLogical(const Node& node);
    Written WriteArithmetic(const Node& node);
    std::optional<Written> WriteAmount(Op op, const Written& left, const Written& right);
    Written WriteAdd(const Written& left, const Written& right);
    Written WriteConcat(const Written& left, const Written& right);
    Written WriteLike(const Node& node);
    Written WriteBetween(const Node& node);
    Written WriteInList(const Node& node);
    Written WriteInQuery(const Node& node);
    Written WriteIsNull(const Node& node);
    Written WriteSubquery(const Node& node);
    Written WriteExists(const Node& node);
    Written WriteQuantified(const Node& node);
    Written WriteIn(const Written& value, const Query& query, bool negated);
    bool CheckComparable(const Written& left, const Written& right);

    Written WriteCall(const Node& node);
    std::optional<Written> WriteAggregate(const Node& node);
    Written WriteAggregated(const Node& node);
    std::optional<Written> WriteChoice(const Node& node);
    Written WriteIif(const Node& node);
    Written WriteSwitch(const Node& node);
    Written WriteChoose(const Node& node);
    Written WriteFunction(const Node& node);
    [[noreturn]] void FailArguments(const Node& node) const;

    Context& m_context;
    const Catalog* m_catalog;
    const Scope& m_scope;
    AggregateRule m_rule;
    int m_first = 0;
    int m_last = -1; ///< -1: all sources
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
