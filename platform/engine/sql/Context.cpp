#include "platform/engine/sql/Context.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

QString QuotedText(const QString& text) {
    QString quoted = text;
    quoted = u'\'' + quoted.replace(u'\'', u"''"_s) + u'\'';
    // A NUL would end the statement.
    if (quoted.contains(QChar(u'\0')))
        quoted = u'(' + quoted.replace(QChar(u'\0'), u"' || char(0) || '"_s) + u')';
    return quoted;
}

QString InlineText(const Token& token) {
    const Value value = Lexer::LiteralValue(token);
    switch (token.kind) {
    case TokenKind::Text:
        return QuotedText(value.Text());
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

} // namespace

void Context::RaiseSyntax(const Node& node, const QString& reason) const {
    if (criteria)
        RaiseEngine(SyntaxInCriteria, reason);
    RaiseEngine(SyntaxInExpression, reason, Text(node).toString());
}

Written Context::WriteLiteral(const Node& literal) {
    Written written;
    written.nullable = false;
    written.text = literal.literal >= 0 ? ParameterOf(literal, {}, {}) : InlineText(literal.token);
    if (written.text.startsWith(u'-'))
        written.precedence = CollatePrecedence;
    switch (literal.token.kind) {
    case TokenKind::Text:
        written.type = DataType::Text;
        break;
    case TokenKind::Integer:
        written.type = DataType::Long;
        break;
    case TokenKind::Fraction:
        written.type = DataType::Double;
        if (Lexer::LiteralValue(literal.token).As<Money>())
            SetMoney(written, written.text);
        break;
    default:
        written.type = DataType::Date;
        break;
    }
    return written;
}

std::optional<Written> Context::WriteAssigned(const Node& literal, const ColumnInfo& column,
                                              const QString& table) {
    if (literal.literal < 0)
        return {};
    Written written;
    written.nullable = false;
    written.type = column.type;
    written.text = ParameterOf(literal, column, table);
    return written;
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
    if (!m_unknown.isEmpty())
        RaiseEngine(TooFewParameters, QString::number(m_unknown.size()));
    RaiseTypeMismatch();
}

void Context::RaiseTypeMismatch() const {
    if (m_mismatch)
        RaiseEngine(TypeMismatchInCriteria);
}

} // namespace engine::sql
