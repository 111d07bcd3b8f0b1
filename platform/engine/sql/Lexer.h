#pragma once

#include "platform/engine/Value.h"

#include <QStringView>

#include <array>
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

/// Cuts a statement into tokens, one at a call. What each statement is made of nearly alone, words and single
/// signs, is read in place.
class Lexer {
public:
    explicit Lexer(QStringView text, qsizetype position = 0)
        : m_text(text)
        , m_position(position) {}

    Token Next() {
        while (Is(At(m_position), Blank))
            ++m_position;
        m_start = m_position;
        if (m_position >= m_text.size())
            return Make(TokenKind::End, m_text.size());
        const char16_t c = At(m_position);
        if (Is(c, NameStart)) {
            qsizetype end = m_position + 1;
            while (Is(At(end), NamePart))
                ++end;
            return Make(TokenKind::Word, end);
        }
        return Is(c, PlainSign) ? MakeSign(c, m_position + 1) : ReadOther();
    }

    /// The value of a literal token. A fraction that is an amount of money is one where a double has too few
    /// digits.
    static Value LiteralValue(const Token& token);
    /// The name that a Word or Name token stands for.
    static QStringView NameOf(const Token& token);

private:
    enum : std::uint8_t { Blank = 1, Digit = 2, HexDigit = 4, NameStart = 8, NamePart = 16, PlainSign = 32 };
    static constexpr std::size_t asciiSize = 0x80;
    /// What the characters of ASCII can be.
    static const std::array<std::uint8_t, asciiSize> kinds;

    static bool Is(char16_t c, int kind) {
        return c < asciiSize ? (kinds[c] & kind) != 0
                             : (kind & (NameStart | NamePart)) != 0 && QChar(c).isLetter();
    }
    char16_t At(qsizetype place) const { return place < m_text.size() ? m_text.utf16()[place] : u'\0'; }
    Token Make(TokenKind kind, qsizetype end) {
        m_position = end;
        m_afterName = kind == TokenKind::Word || kind == TokenKind::Name;
        return {kind, 0, QStringView(m_text.utf16() + m_start, end - m_start), m_start, end};
    }
    Token MakeSign(char16_t sign, qsizetype end) {
        Token token = Make(TokenKind::Sign, end);
        token.sign = sign;
        return token;
    }
    Token ReadOther();
    Token ReadQuoted(char16_t quote);
    Token ReadName(char16_t close);
    Token ReadNumber();
    Token ReadHexadecimal();
    Token ReadDate();

    QStringView m_text;
    qsizetype m_position = 0;
    qsizetype m_start = 0;
    bool m_afterName = false; ///< a `.` next belongs to a name, not to a number
};

inline constexpr std::array<std::uint8_t, Lexer::asciiSize> Lexer::kinds = [] {
    std::array<std::uint8_t, asciiSize> table{};
    const auto mark = [&table](std::string_view characters, int kind) {
        for (const char c : characters)
            table[static_cast<unsigned char>(c)] |= static_cast<std::uint8_t>(kind);
    };
    mark(" \t\r\n", Blank);
    mark("0123456789", Digit | HexDigit | NamePart);
    mark("abcdefABCDEF", HexDigit);
    mark("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", NameStart | NamePart);
    mark("_", NamePart);
    mark("()+-*/\\^=,;!", PlainSign);
    return table;
}();

} // namespace engine::sql
