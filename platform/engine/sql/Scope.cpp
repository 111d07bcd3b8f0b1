#include "platform/engine/sql/Scope.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/ExpressionBinder.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

QString ScopeSource::RowId() const {
    for (const QString& rowNumber : {u"rowid"_s, u"_rowid_"_s, u"oid"_s}) {
        if (!table || table->Find(rowNumber) < 0)
            return alias + u'.' + rowNumber;
    }
    return alias + u".rowid"_s;
}

std::optional<ScopePlace> Scope::Find(const QString& qualifier, const QString& name, std::size_t first,
                                      std::size_t end) const {
    std::optional<ScopePlace> found;
    for (std::size_t i = first; i < std::min(end, sources.size()); ++i) {
        const ScopeSource& source = sources[i];
        if (!qualifier.isEmpty() && !SameName(source.name, qualifier))
            continue;
        const auto column = std::ranges::find_if(
            source.columns, [&](const ScopeColumn& c) { return SameName(c.name, name); });
        if (column == source.columns.end())
            continue;
        if (found)
            RaiseEngine(AmbiguousName, name);
        found = ScopePlace{i, static_cast<std::size_t>(column - source.columns.begin())};
    }
    return found;
}

bool Scope::Same(const Node& a, const Node& b) const {
    if (a.kind != b.kind || a.op != b.op || a.negated != b.negated || a.all != b.all || a.query || b.query)
        return false;
    if (a.kind == NodeKind::Literal)
        return a.token.kind == b.token.kind && Lexer::LiteralValue(a.token) == Lexer::LiteralValue(b.token);
    if (a.kind == NodeKind::Name) {
        const auto place = Find(a.qualifier, a.name);
        return place && place == Find(b.qualifier, b.name);
    }
    return SameName(a.name, b.name) &&
           std::ranges::equal(a.children, b.children,
                              [&](const NodePtr& x, const NodePtr& y) { return Same(*x, *y); });
}

bool Scope::IsDecided(const Node& node, const std::vector<NodePtr>& groups) const {
    if (std::ranges::any_of(groups, [&](const NodePtr& group) { return Same(*group, node); }))
        return true;
    if (node.kind == NodeKind::Name)
        return !Find(node.qualifier, node.name); // a column of a statement around this one, or an alias
    if (node.kind == NodeKind::Call && ExpressionBinder::IsAggregate(node.name))
        return true;
    return std::ranges::all_of(node.children,
                               [&](const NodePtr& child) { return IsDecided(*child, groups); });
}

} // namespace engine::sql
