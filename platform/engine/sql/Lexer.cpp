#include "platform/engine/sql/Lexer.h"

#include "platform/engine/functions/Functions.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Failure.h"

#include <cmath>
#include <limits>
#include <optional>

namespace engine::sql {

namespace {

bool IsBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

bool IsHexDigit(char16_t c) {
    return IsDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

bool IsNameStart(char16_t c) {
    if (c < 0x80)
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
    return QChar(c).isLetter();
}

bool IsNamePart(char16_t c) {
    return IsNameStart(c) || IsDigit(c) || c == u'_';
}

/// Reads the inside of #...#: three whole numbers joined by one sign, a time, or both.
class DateReader {
public:
    explicit DateReader(QStringView text)
        : m_text(text.trimmed()) {}

    std::optional<QDateTime> Read() {
        QDate date(1899, 12, 30);
        QTime time(0, 0);
        const bool hasDate = m_text.contains(u'/') || m_text.contains(u'-');
        if (hasDate && !ReadDay(date))
            return {};
        SkipBlanks();
        if ((!hasDate || m_at < m_text.size()) && !ReadTime(time))
            return {};
        SkipBlanks();
        if (m_at != m_text.size())
            return {};
        return QDateTime(date, time, Qt::UTC);
    }

private:
    void SkipBlanks() {
        while (m_at < m_text.size() && IsBlank(m_text[m_at].unicode()))
            ++m_at;
    }

    std::optional<int> ReadWhole() {
        const qsizetype start = m_at;
        int value = 0;
        while (m_at < m_text.size() && IsDigit(m_text[m_at].unicode()) && m_at - start < 4)
            value = value * 10 + (m_text[m_at++].unicode() - u'0');
        if (m_at == start)
            return {};
        return value;
    }

    bool Skip(char16_t sign) {
        if (m_at >= m_text.size() || m_text[m_at] != sign)
            return false;
        ++m_at;
        return true;
    }

    static int FullYear(int year, bool fourDigits) {
        if (fourDigits || year > 99)
            return year;
        return year < 30 ? 2000 + year : 1900 + year;
    }

    bool ReadDay(QDate& date) {
        const auto first = ReadWhole();
        const qsizetype firstDigits = m_at;
        const char16_t sign = m_text.contains(u'/') ? u'/' : u'-';
        if (!first || !Skip(sign))
            return false;
        const auto second = ReadWhole();
        if (!second || !Skip(sign))
            return false;
        const qsizetype thirdStart = m_at;
        const auto third = ReadWhole();
        if (!third)
            return false;
        if (firstDigits > 2) {
            date = QDate(*first, *second, *third);
        } else {
            // Month first; a month that cannot be one is the day.
            const int year = FullYear(*third, m_at - thirdStart > 2);
            date = QDate(year, *first, *second);
            if (!date.isValid())
                date = QDate(year, *second, *first);
        }
        return date.isValid() && date.year() >= 100;
    }

    bool ReadTime(QTime& time) {
        const auto hour = ReadWhole();
        if (!hour)
            return false;
        int hours = *hour;
        int minutes = 0;
        int seconds = 0;
        const bool hasMinutes = Skip(u':');
        if (hasMinutes) {
            const auto minute = ReadWhole();
            if (!minute)
                return false;
            minutes = *minute;
            if (Skip(u':')) {
                const auto second = ReadWhole();
                if (!second)
                    return false;
                seconds = *second;
            }
        }
        SkipBlanks();
        const bool hasHalf = ReadHalfOfDay(hours);
        time = QTime(hours, minutes, seconds);
        return (hasMinutes || hasHalf) && time.isValid();
    }

    bool ReadHalfOfDay(int& hours) {
        const QStringView rest = m_text.mid(m_at).trimmed();
        const bool morning = rest.compare(QLatin1String("AM"), Qt::CaseInsensitive) == 0;
        const bool evening = rest.compare(QLatin1String("PM"), Qt::CaseInsensitive) == 0;
        if (!morning && !evening)
            return false;
        m_at = m_text.size();
        if (hours < 1 || hours > 12)
            hours = 24; // no time
        else
            hours = hours % 12 + (evening ? 12 : 0);
        return true;
    }

    QStringView m_text;
    qsizetype m_at = 0;
};

QString WithoutDoubled(QStringView inside, char16_t quote) {
    QString text = inside.toString();
    if (inside.contains(quote))
        text.replace(QString(2, QChar(quote)), QString(QChar(quote)));
    return text;
}

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
    if (kind != TokenKind::Word || text.size() != static_cast<qsizetype>(keyword.size()))
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        char16_t c = text[i].unicode();
        if (c >= u'a' && c <= u'z')
            c = static_cast<char16_t>(c - 0x20);
        if (c != static_cast<char16_t>(keyword[static_cast<std::size_t>(i)]))
            return false;
    }
    return true;
}

bool IsPattern(const Token& literal) {
    return literal.kind != TokenKind::Text || functions::IsPattern(Lexer::LiteralValue(literal).Text());
}

Token Lexer::Make(TokenKind kind, qsizetype end) {
    Token token;
    token.kind = kind;
    token.text = m_text.mid(m_start, end - m_start);
    token.start = m_start;
    token.end = end;
    m_position = end;
    m_afterName = kind == TokenKind::Word || kind == TokenKind::Name;
    return token;
}

Token Lexer::Next() {
    while (m_position < m_text.size() && IsBlank(At(m_position)))
        ++m_position;
    m_start = m_position;
    if (m_position >= m_text.size())
        return Make(TokenKind::End, m_text.size());
    const char16_t c = At(m_position);
    if (IsNameStart(c))
        return ReadWord();
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
        if ((At(m_position + 1) == u'H' || At(m_position + 1) == u'h') && IsHexDigit(At(m_position + 2)))
            return ReadHexadecimal();
        return ReadSign();
    case u'.':
        if (!m_afterName && IsDigit(At(m_position + 1)))
            return ReadNumber();
        return ReadSign();
    default:
        return IsDigit(c) ? ReadNumber() : ReadSign();
    }
}

Token Lexer::ReadWord() {
    qsizetype end = m_position + 1;
    while (end < m_text.size() && IsNamePart(At(end)))
        ++end;
    return Make(TokenKind::Word, end);
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
    while (IsDigit(At(end)))
        ++end;
    const qsizetype wholeEnd = end;
    if (At(end) == u'.') {
        ++end;
        while (IsDigit(At(end)))
            ++end;
    }
    // An E without digits behind it begins a word: 5EQV.
    if (At(end) == u'E' || At(end) == u'e') {
        qsizetype digits = end + 1;
        if (At(digits) == u'+' || At(digits) == u'-')
            ++digits;
        if (IsDigit(At(digits))) {
            end = digits;
            while (IsDigit(At(end)))
                ++end;
        }
    }
    const bool whole =
        end == wholeEnd && end - m_position <= 10 &&
        WholeOf(m_text.mid(m_position, end - m_position)) <= std::numeric_limits<std::int32_t>::max();
    if (whole)
        return Make(TokenKind::Integer, end);
    bool valid = false;
    const double value = m_text.mid(m_position, end - m_position).toDouble(&valid);
    return Make(valid && std::isfinite(value) ? TokenKind::Fraction : TokenKind::BadNumber, end);
}

Token Lexer::ReadHexadecimal() {
    qsizetype end = m_position + 2;
    while (IsHexDigit(At(end)))
        ++end;
    return Make(end - m_position - 2 <= 8 ? TokenKind::Integer : TokenKind::BadNumber, end);
}

Token Lexer::ReadDate() {
    const qsizetype end = m_text.indexOf(u'#', m_position + 1);
    if (end < 0)
        return Make(TokenKind::BadDate, m_text.size());
    const bool valid = DateReader(m_text.mid(m_position + 1, end - m_position - 1)).Read().has_value();
    return Make(valid ? TokenKind::Date : TokenKind::BadDate, end + 1);
}

Token Lexer::ReadSign() {
    const char16_t c = At(m_position);
    const char16_t next = At(m_position + 1);
    char16_t sign = c;
    qsizetype end = m_position + 1;
    if (c == u'<' && next == u'>')
        sign = NotEqual;
    else if (c == u'<' && next == u'=')
        sign = LessEqual;
    else if (c == u'>' && next == u'=')
        sign = GreaterEqual;
    if (sign != c)
        ++end;
    else if (QStringView(u"()+-*/\\^&=<>,.;!").indexOf(QChar(c)) < 0)
        return Make(TokenKind::BadSign, end);
    Token token = Make(TokenKind::Sign, end);
    token.sign = sign;
    return token;
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
        return Value(*DateReader(token.text.mid(1, token.text.size() - 2)).Read());
    default:
        return {};
    }
}

QStringView Lexer::NameOf(const Token& token) {
    return token.kind == TokenKind::Name ? token.text.mid(1, token.text.size() - 2) : token.text;
}

} // namespace engine::sql
