#include "platform/engine/sql/Context.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"

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

void Context::RaiseSyntax(const Node& node, const QString& reason) const {
    if (!m_catalog)
        RaiseEngine(SyntaxInCriteria, reason);
    RaiseEngine(SyntaxInExpression, reason, Text(node).toString());
}

Bound Context::BindLiteral(const Node& literal) {
    const QString text = literal.literal >= 0 ? ParameterOf(literal, {}, {}) : InlineText(literal.token);
    Bound value = StoredValue(text, TypeOf(literal.token));
    value.nullable = false;
    if (text.startsWith(u'-'))
        value.term = MakeTerm(text, {}, CollatePrecedence);
    return value;
}

TermPtr Context::BindAssigned(const Node& literal, const ColumnInfo& column, const QString& table) {
    if (literal.kind != NodeKind::Literal || literal.literal < 0)
        return {};
    return MakeTerm(ParameterOf(literal, column, table));
}

QString Context::ParameterOf(const Node& literal, const std::optional<ColumnInfo>& column,
                             const QString& table) {
    const auto [place, isNew] = m_numbers.try_emplace(literal.literal, ParameterCount() + 1);
    if (isNew)
        m_parameters.push_back({literal.literal, column, table});
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
