// Criteria of a search over a result set.
#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Binder.h"
#include "platform/engine/sql/Keys.h"
#include "platform/engine/sql/Parser.h"
#include "platform/engine/sql/Writer.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

/// The columns of the result as one source, whose values come as parameters.
ScopeSource ResultSource(const std::vector<ResultColumn>& columns) {
    ScopeSource source;
    for (const ResultColumn& column : columns) {
        const QString number = QString::number(source.columns.size() + 1);
        source.columns.push_back({column.name, StoredValue(u'?' + number, column.type)});
    }
    return source;
}

/// A name with a table in front is that of a column of the same full name, or of a column of the plain name.
void ResolveFullNames(Node& node, const std::vector<ResultColumn>& columns) {
    if (node.kind == NodeKind::Name && !node.qualifier.isEmpty()) {
        const QString full = node.qualifier + u'.' + node.name;
        if (std::ranges::any_of(columns,
                                [&](const ResultColumn& column) { return SameName(column.name, full); }))
            node.name = full;
        node.qualifier.clear();
    }
    for (const auto& child : node.children)
        ResolveFullNames(*child, columns);
}

bool HasQuery(const Node& node) {
    return node.query ||
           std::ranges::any_of(node.children, [](const NodePtr& child) { return HasQuery(*child); });
}

/// The equalities among the conditions that are joined by AND.
void CollectEqualities(const Node& node, const Scope& scope, std::vector<KeyCondition>& equalities) {
    if (node.kind == NodeKind::Binary && node.op == Op::And) {
        CollectEqualities(*node.children[0], scope, equalities);
        CollectEqualities(*node.children[1], scope, equalities);
    } else if (const auto key = KeyOf(node, scope)) {
        equalities.push_back(*key);
    }
}

} // namespace

CriteriaPlan TranslateCriteria(const Scanned& scanned, const std::vector<ResultColumn>& columns) {
    const NodePtr criteria = Parser(scanned.text, scanned.cacheable).ParseCriteria();
    if (HasQuery(*criteria))
        RaiseEngine(SyntaxInCriteria, u"Ошибка синтаксиса"_s);
    ResolveFullNames(*criteria, columns);
    const Scope scope{nullptr, {ResultSource(columns)}};
    Context context(scanned, static_cast<int>(columns.size()));
    const Bound condition = ExpressionBinder(context, scope, &AggregateInExpression).Condition(*criteria);
    context.RaiseMistakes();
    CriteriaPlan plan;
    // The last parameter is named even if nothing else needs it, so that all of them can be bound.
    plan.text = u"SELECT "_s + Writer().Text(condition.term) + u" FROM (SELECT ?"_s +
                QString::number(context.ParameterCount()) + u')';
    plan.parameters = context.Parameters();
    CollectEqualities(*criteria, scope, plan.equalities);
    return plan;
}

} // namespace engine::sql
