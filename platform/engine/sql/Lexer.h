#pragma once

#include "platform/engine/Value.h"

#include <QStringView>

#include <cstdint>
#include <string_view>

namespace engine::sql {

enum class TokenKind : std::uint8_t {
    End,
    Word,     ///< a bare name or a keyword
    Name,     ///< [any text] or `any text`
    Text,     ///< 'text' or "text"
    Integer,  ///< a whole number of 32 bits
    Fraction, ///< any other number
    Date,     ///< #...#
    Sign,     ///< an operator or a punctuation mark
    // What cannot be read; a parser reports it only where it would have to use it.
    OpenText,
    OpenName,
    BadNumber,
    BadDate,
    BadSign,
};

/// One token: a view of the statement, no longer than its text.
struct Token {
    TokenKind kind = TokenKind::End;
    char16_t sign = 0; ///< Sign: the character; LessEqual, GreaterEqual and NotEqual for the double ones
    QStringView text;  ///< as written, quotes included
    qsizetype start = 0;
    qsizetype end = 0;

    bool Is(char16_t character) const { return kind == TokenKind::Sign && sign == character; }
    /// Whether it is this keyword; `keyword` in capitals.
    bool IsWord(std::string_view keyword) const;
    /// Whether it is a keyword that no bare name can be.
    bool IsReserved() const;
    bool IsLiteral() const { return kind >= TokenKind::Text && kind <= TokenKind::Date; }
    bool IsBroken() const { return kind >= TokenKind::OpenText; }
};

inline constexpr char16_t LessEqual = u'\u2264';
inline constexpr char16_t GreaterEqual = u'\u2265';
inline constexpr char16_t NotEqual = u'\u2260';

/// Cuts a statement into tokens, one at a call.
class Lexer {
public:
    explicit Lexer(QStringView text, qsizetype position = 0)
        : m_text(text)
        , m_position(position) {}

    Token Next();

    /// The value of a literal token. A fraction that is an amount of money is one where a double has too few
    /// digits.
    static Value LiteralValue(const Token& token);
    /// The name that a Word or Name token stands for.
    static QStringView NameOf(const Token& token);

private:
    char16_t At(qsizetype place) const { return place < m_text.size() ? m_text[place].unicode() : u'\0'; }
    Token Make(TokenKind kind, qsizetype end);
    Token ReadWord();
    Token ReadQuoted(char16_t quote);
    Token ReadName(char16_t close);
    Token ReadNumber();
    Token ReadHexadecimal();
    Token ReadDate();
    Token ReadSign();

    QStringView m_text;
    qsizetype m_position = 0;
    qsizetype m_start = 0;
    bool m_afterName = false; ///< a `.` next belongs to a name, not to a number
};

} // namespace engine::sql
