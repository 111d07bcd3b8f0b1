#include "platform/engine/sql/Keys.h"

#include "platform/engine/schema/LookUps.h"
#include "platform/engine/schema/Types.h"
#include "platform/engine/sql/Binder.h"

using namespace Qt::StringLiterals;

namespace engine::sql {

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

TermPtr LookUpTerm(const Node* where, const Scope& scope) {
    if (where == nullptr || !scope.OneTable())
        return nullptr;
    if (where->kind == NodeKind::Binary && where->op == Op::And) {
        const TermPtr left = LookUpTerm(where->children[0].get(), scope);
        return left ? left : LookUpTerm(where->children[1].get(), scope);
    }
    const auto key = KeyOf(*where, scope);
    const ScopeSource& source = scope.sources.front();
    if (!key || !BeginsLookUp(*source.table, source.table->At(key->column)))
        return nullptr;
    const TermPtr column = source.columns[static_cast<std::size_t>(key->column)].value.term;
    return MakeTerm(u"% = %", {column, column}, EqualPrecedence);
}

} // namespace engine::sql
