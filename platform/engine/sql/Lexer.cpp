#include "platform/engine/sql/Lexer.h"

#include "platform/engine/schema/Names.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Failure.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace engine::sql {

namespace {

/// The inside of #...#: three whole numbers joined by one sign, a time, or both.
std::optional<QDateTime> ReadMoment(QStringView text) {
    enum Part { First = 1, Sign, Second, Third, Hour, Minute, Seconds, Half };
    static const QRegularExpression form(
        uR"(^(?:(\d{1,4}+)([/-])(\d{1,4}+)\2(\d{1,4}+)[ \t\r\n]*)?)"
        uR"((?:(\d{1,4}+)(?::(\d{1,4}+)(?::(\d{1,4}+))?+)?+\s*(AM|PM)?+)?$)"_s,
        QRegularExpression::CaseInsensitiveOption);
    const auto match = form.match(text.trimmed().toString());
    const auto has = [&](Part part) { return match.capturedLength(part) > 0; };
    const auto number = [&](Part part) { return match.capturedView(part).toInt(); };
    const bool timed = has(Minute) || has(Half); // an hour alone is no time
    if (has(Hour) ? !timed : !has(First))
        return {};
    QDate date = runtime::DayZero();
    if (has(First) && match.capturedLength(First) > 2) {
        date = QDate(number(First), number(Second), number(Third));
    } else if (has(First)) {
        const bool isShort = match.capturedLength(Third) <= 2;
        const int year = isShort ? runtime::FullYear(number(Third)) : number(Third);
        // Month first; a month that cannot be one is the day.
        date = QDate(year, number(First), number(Second));
        if (!date.isValid())
            date = QDate(year, number(Second), number(First));
    }
    int hour = number(Hour);
    if (has(Half)) {
        const bool evening = match.capturedView(Half).startsWith(u'P', Qt::CaseInsensitive);
        hour = hour >= 1 && hour <= 12 ? hour % 12 + (evening ? 12 : 0) : -1;
    }
    const QTime time(hour, number(Minute), number(Seconds));
    if (!date.isValid() || date.year() < 100 || !time.isValid())
        return {};
    return QDateTime(date, time, Qt::UTC);
}

QString WithoutDoubled(QStringView inside, char16_t quote) {
    QString text = inside.toString();
    if (inside.contains(quote))
        text.replace(QString(2, QChar(quote)), QString(QChar(quote)));
    return text;
}

// Keywords that stand for a name only in brackets, in order of the alphabet.
constexpr auto reserved = std::to_array<std::string_view>({
    "ALL",        "ALTER",  "AND",     "ANY",      "AS",          "ASC",    "BETWEEN", "BY",     "CONSTRAINT",
    "CREATE",     "DELETE", "DESC",    "DISTINCT", "DISTINCTROW", "DROP",   "EQV",     "EXISTS", "FALSE",
    "FROM",       "GROUP",  "HAVING",  "IMP",      "IN",          "INNER",  "INSERT",  "INTO",   "IS",
    "JOIN",       "LEFT",   "LIKE",    "MOD",      "NOT",         "NULL",   "ON",      "OR",     "ORDER",
    "PARAMETERS", "PIVOT",  "PRIMARY", "RIGHT",    "SELECT",      "SET",    "SOME",    "TABLE",  "TOP",
    "TRANSFORM",  "TRUE",   "UNION",   "UNIQUE",   "UPDATE",      "VALUES", "WHERE",   "WITH",   "XOR",
});
static_assert(std::ranges::is_sorted(reserved));
constexpr std::size_t longestReserved = 11;

std::int64_t WholeOf(QStringView digits) {
    std::int64_t value = 0;
    for (const QChar digit : digits)
        value = value * 10 + (digit.unicode() - u'0');
    return value;
}

Value FractionValue(QStringView text) {
    constexpr qsizetype decimals = 4;
    constexpr std::int64_t most = 999'999'999'999'999;
    const qsizetype point = text.indexOf(u'.');
    if (point >= 0 && text.size() - point - 1 <= decimals) {
        try {
            const auto amount = Money::FromDigits(text, u'.');
            std::int64_t digits = amount ? amount->units : 0;
            while (digits > most && digits % 10 == 0)
                digits /= 10;
            if (digits > most)
                return *amount;
        } catch (const runtime::Failure&) {
            // beyond all amounts
        }
    }
    return text.toDouble();
}

Value HexadecimalValue(QStringView digits) {
    // 32 bits with a sign, as the engine has no wider whole number.
    std::uint32_t value = 0;
    for (const QChar digit : digits)
        value = value * 16 + static_cast<std::uint32_t>(QString(digit).toInt(nullptr, 16));
    return Value(static_cast<int>(value));
}

} // namespace

bool Token::IsWord(std::string_view keyword) const {
    const auto same = [](QChar c, char k) {
        return c.unicode() == static_cast<char16_t>(k) ||
               (c.unicode() >= u'a' && c.unicode() <= u'z' && c.unicode() - 0x20 == k);
    };
    return kind == TokenKind::Word && std::ranges::equal(text, keyword, same);
}

bool Token::IsReserved() const {
    const auto capitals = Capitals(text, longestReserved);
    return kind == TokenKind::Word && capitals &&
           std::ranges::binary_search(reserved, std::string_view(*capitals));
}

Token Lexer::ReadOther() {
    const char16_t c = At(m_position);
    const char16_t next = At(m_position + 1);
    switch (c) {
    case u'\'':
    case u'"':
        return ReadQuoted(c);
    case u'[':
        return ReadName(u']');
    case u'`':
        return ReadName(u'`');
    case u'#':
        return ReadDate();
    case u'&':
        if ((next == u'H' || next == u'h') && Is(At(m_position + 2), HexDigit))
            return ReadHexadecimal();
        break;
    case u'.':
        if (!m_afterName && Is(next, Digit))
            return ReadNumber();
        break;
    case u'<':
        if (next == u'>' || next == u'=')
            return MakeSign(next == u'>' ? NotEqual : LessEqual, m_position + 2);
        break;
    case u'>':
        if (next == u'=')
            return MakeSign(GreaterEqual, m_position + 2);
        break;
    default:
        return Is(c, Digit) ? ReadNumber() : Make(TokenKind::BadSign, m_position + 1);
    }
    return MakeSign(c, m_position + 1);
}

Token Lexer::ReadQuoted(char16_t quote) {
    for (qsizetype from = m_position + 1;;) {
        const qsizetype close = m_text.indexOf(QChar(quote), from);
        if (close < 0)
            return Make(TokenKind::OpenText, m_text.size());
        if (At(close + 1) != quote)
            return Make(TokenKind::Text, close + 1);
        from = close + 2;
    }
}

Token Lexer::ReadName(char16_t close) {
    const qsizetype end = m_text.indexOf(QChar(close), m_position + 1);
    if (end < 0)
        return Make(TokenKind::OpenName, m_text.size());
    if (end == m_position + 1)
        return Make(TokenKind::BadSign, end + 1);
    return Make(TokenKind::Name, end + 1);
}

Token Lexer::ReadNumber() {
    qsizetype end = m_position;
    while (Is(At(end), Digit))
        ++end;
    const qsizetype wholeEnd = end;
    if (At(end) == u'.') {
        ++end;
        while (Is(At(end), Digit))
            ++end;
    }
    // An E without digits behind it begins a word: 5EQV.
    if (At(end) == u'E' || At(end) == u'e') {
        qsizetype digits = end + 1;
        if (At(digits) == u'+' || At(digits) == u'-')
            ++digits;
        if (Is(At(digits), Digit)) {
            end = digits;
            while (Is(At(end), Digit))
                ++end;
        }
    }
    const QStringView text(m_text.data() + m_position, end - m_position);
    if (end == wholeEnd && text.size() <= 10 && WholeOf(text) <= std::numeric_limits<std::int32_t>::max())
        return Make(TokenKind::Integer, end);
    bool valid = false;
    const double value = text.toDouble(&valid);
    return Make(valid && std::isfinite(value) ? TokenKind::Fraction : TokenKind::BadNumber, end);
}

Token Lexer::ReadHexadecimal() {
    qsizetype end = m_position + 2;
    while (Is(At(end), HexDigit))
        ++end;
    return Make(end - m_position - 2 <= 8 ? TokenKind::Integer : TokenKind::BadNumber, end);
}

Token Lexer::ReadDate() {
    const qsizetype end = m_text.indexOf(u'#', m_position + 1);
    if (end < 0)
        return Make(TokenKind::BadDate, m_text.size());
    const bool valid = ReadMoment(m_text.mid(m_position + 1, end - m_position - 1)).has_value();
    return Make(valid ? TokenKind::Date : TokenKind::BadDate, end + 1);
}

Value Lexer::LiteralValue(const Token& token) {
    switch (token.kind) {
    case TokenKind::Text:
        return Value(WithoutDoubled(token.text.mid(1, token.text.size() - 2), token.text.front().unicode()));
    case TokenKind::Integer:
        if (token.text.startsWith(u'&'))
            return HexadecimalValue(token.text.mid(2));
        return Value(WholeOf(token.text));
    case TokenKind::Fraction:
        return FractionValue(token.text);
    case TokenKind::Date:
        return Value(*ReadMoment(token.text.mid(1, token.text.size() - 2)));
    default:
        return {};
    }
}

QStringView Lexer::NameOf(const Token& token) {
    return token.kind == TokenKind::Name ? token.text.mid(1, token.text.size() - 2) : token.text;
}

} // namespace engine::sql
