#pragma once

#include "platform/engine/sql/Context.h"
#include "platform/engine/sql/Scope.h"

namespace engine::sql {

/// Whether the expressions of a query with groups or aggregates name only what a group decides.
class GroupingCheck {
public:
    GroupingCheck(const std::vector<NodePtr>& groups, const Scope& scope, const Context& context)
        : m_groups(groups)
        , m_scope(scope)
        , m_context(context) {}

    /// Failure 3122 for a column that is neither grouped nor aggregated.
    void Check(const Node& expression) const;
    /// Whether two expressions mean the same.
    bool Same(const Node& a, const Node& b) const;

private:
    bool IsDecided(const Node& node) const;

    const std::vector<NodePtr>& m_groups;
    const Scope& m_scope;
    const Context& m_context;
};

} // namespace engine::sql
