#include "platform/engine/sql/Keys.h"

#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Binder.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

TermPtr KeyTerm(const ScopeSource& source, int number, Rows rows) {
    return MakeTerm(rows == Rows::One ? u"% = %" : u"% IN (SELECT value FROM json_each(%))",
                    {MakeTerm(source.RowId()), MakeTerm(u'?' + QString::number(number))}, EqualPrecedence);
}

std::optional<KeyCondition> KeyOf(const Node& node, const Scope& scope) {
    if (node.kind != NodeKind::Binary || node.negated || (node.op != Op::Equal && node.op != Op::Like))
        return {};
    const Node* name = node.children[0].get();
    const Node* literal = node.children[1].get();
    if (node.op == Op::Equal && name->kind == NodeKind::Literal)
        std::swap(name, literal);
    if (name->kind != NodeKind::Name || literal->kind != NodeKind::Literal || literal->literal < 0)
        return {};
    const auto place = scope.Find(name->qualifier, name->name);
    if (!place)
        return {};
    const DataType type = scope.Column(*place).value.type;
    const bool text = literal->token.kind == TokenKind::Text && KindOf(type) == TypeKind::Text;
    const bool number =
        literal->token.kind == TokenKind::Integer && IsWholeNumber(type) && node.op == Op::Equal;
    if (!text && !number)
        return {};
    if (node.op == Op::Like && !ExpressionBinder::IsPlainPattern(*literal))
        return {};
    return KeyCondition{static_cast<int>(place->column), literal->literal};
}

namespace {

/// Whether the column alone decides the row, through an index of SQLite's own.
bool IsUnique(const TableInfo& table, int column) {
    if (table.columns[static_cast<std::size_t>(column)].unique || table.RowNumberColumn() == column)
        return true;
    return std::ranges::any_of(table.indexes, [&](const IndexInfo& index) {
        return !index.columns.isEmpty() &&
               SameName(index.columns.front(), table.columns[static_cast<std::size_t>(column)].name);
    });
}

void CollectKeys(const Node& node, const Scope& scope, std::vector<KeyCondition>& keys) {
    if (node.kind == NodeKind::Binary && node.op == Op::And) {
        CollectKeys(*node.children[0], scope, keys);
        CollectKeys(*node.children[1], scope, keys);
    } else if (const auto key = KeyOf(node, scope)) {
        keys.push_back(*key);
    }
}

} // namespace

bool FindKeys(const Node* where, const Scope& scope, Plan& plan) {
    if (where)
        CollectKeys(*where, scope, plan.keys);
    const TableInfo& table = *scope.sources.front().table;
    if (std::ranges::any_of(plan.keys, [&](const KeyCondition& key) { return IsUnique(table, key.column); }))
        plan.keys.clear();
    if (!plan.keys.empty())
        plan.keyTable = table.name;
    return !plan.keys.empty();
}

} // namespace engine::sql
