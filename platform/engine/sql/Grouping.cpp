#include "platform/engine/sql/Grouping.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/ExpressionWriter.h"

#include <algorithm>

namespace engine::sql {

void GroupingCheck::Check(const Node& expression) const {
    if (!IsDecided(expression))
        RaiseEngine(NotInAggregate, m_context.Text(expression).toString());
}

bool GroupingCheck::IsDecided(const Node& node) const {
    if (std::ranges::any_of(m_groups, [&](const NodePtr& group) { return Same(*group, node); }))
        return true;
    if (node.kind == NodeKind::Name)
        return !m_scope.Find(node.qualifier,
                             node.name); // a column of a statement around this one, or an alias
    if (node.kind == NodeKind::Call && ExpressionWriter::IsAggregate(node.name))
        return true;
    return std::ranges::all_of(node.children, [&](const NodePtr& child) { return IsDecided(*child); });
}

bool GroupingCheck::Same(const Node& a, const Node& b) const {
    if (a.kind != b.kind || a.op != b.op || a.negated != b.negated || a.all != b.all || a.query || b.query ||
        a.children.size() != b.children.size())
        return false;
    if (a.kind == NodeKind::Literal)
        return a.token.kind == b.token.kind && Lexer::LiteralValue(a.token) == Lexer::LiteralValue(b.token);
    if (a.kind == NodeKind::Name) {
        const auto place = m_scope.Find(a.qualifier, a.name);
        return place && place == m_scope.Find(b.qualifier, b.name);
    }
    if (a.kind == NodeKind::Call && !SameName(a.name, b.name))
        return false;
    for (std::size_t i = 0; i < a.children.size(); ++i) {
        if (!Same(*a.children[i], *b.children[i]))
            return false;
    }
    return true;
}

} // namespace engine::sql
