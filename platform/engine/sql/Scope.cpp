#include "platform/engine/sql/Scope.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Binder.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

QString InlineText(const Token& token) {
    const Value value = Lexer::LiteralValue(token);
    switch (token.kind) {
    case TokenKind::Text:
        return QuoteText(value.Text());
    case TokenKind::Integer:
        return QString::number(value.Long());
    case TokenKind::Fraction: {
        if (const auto* amount = value.As<Money>())
            return QString::number(amount->units);
        const QString text = token.text.toString();
        return text.contains(u'.') || text.contains(u'e', Qt::CaseInsensitive) ? text : text + u".0"_s;
    }
    default:
        return QString::number(value.Number(), 'g', 17);
    }
}

DataType TypeOf(const Token& literal) {
    switch (literal.kind) {
    case TokenKind::Text:
        return DataType::Text;
    case TokenKind::Integer:
        return DataType::Long;
    case TokenKind::Fraction:
        return Lexer::LiteralValue(literal).As<Money>() ? DataType::Currency : DataType::Double;
    default:
        return DataType::Date;
    }
}

} // namespace

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
            source.columns, [&](const BoundColumn& c) { return SameName(c.name, name); });
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

void Context::RaiseSyntax(const Node& node, const QString& reason) const {
    if (!m_catalog)
        RaiseEngine(SyntaxInCriteria, reason);
    RaiseEngine(SyntaxInExpression, reason, Text(node).toString());
}

Bound Context::BindLiteral(const Node& literal) {
    const QString text = literal.literal >= 0 ? ParameterOf(literal, {}) : InlineText(literal.token);
    Bound value = StoredValue(text, TypeOf(literal.token));
    value.nullable = false;
    if (text.startsWith(u'-'))
        value.term = MakeTerm(text, {}, CollatePrecedence);
    return value;
}

TermPtr Context::BindAssigned(const Node& literal, const ColumnInfo& column) {
    if (literal.kind != NodeKind::Literal || literal.literal < 0)
        return {};
    return MakeTerm(ParameterOf(literal, column));
}

QString Context::ParameterOf(const Node& literal, const std::optional<ColumnInfo>& column) {
    const auto [place, isNew] = m_numbers.try_emplace(literal.literal, ParameterCount() + 1);
    if (isNew)
        m_parameters.push_back({literal.literal, column});
    return u'?' + QString::number(place->second);
}

void Context::AddUnknownName(const QString& name) {
    const auto same = [&](const QString& known) { return SameName(known, name); };
    if (std::ranges::none_of(m_unknown, same))
        m_unknown.push_back(name);
}

void Context::RaiseMistakes() const {
    if (!m_unknown.isEmpty() && !m_catalog)
        RaiseEngine(UnknownNameInFind, m_unknown.front());
    if (!m_unknown.isEmpty())
        RaiseEngine(TooFewParameters, QString::number(m_unknown.size()));
    if (m_mismatch)
        RaiseEngine(TypeMismatchInCriteria);
}

} // namespace engine::sql
