#include "platform/runtime/Numbers.h"

#include <QList>

#include <cmath>

namespace runtime {

namespace {

constexpr QChar Blank = u' ';
constexpr QChar NoBreakBlank = u'\x00A0';
constexpr QChar NarrowNoBreakBlank = u'\x202F';

bool IsDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

bool IsThousandsSign(QChar c) {
    return c == Blank || c == NoBreakBlank || c == NarrowNoBreakBlank;
}

/// Reads a text from left to right and collects its number with '.' as the point.
class Scanner {
public:
    explicit Scanner(QStringView text)
        : m_text(text) {}

    bool AtEnd() const { return m_place >= m_text.size(); }
    QChar Next(qsizetype ahead = 0) const {
        return m_place + ahead < m_text.size() ? m_text[m_place + ahead] : QChar();
    }
    void Skip() { ++m_place; }
    void Take() { m_number += m_text[m_place++].toLatin1(); }
    void Put(char c) { m_number += c; }
    const QByteArray& Number() const { return m_number; }

    void Sign() {
        if (Next() == u'+')
            Skip();
        else if (Next() == u'-')
            Take();
    }

    int Digits() {
        int count = 0;
        while (IsDigit(Next())) {
            Take();
            ++count;
        }
        return count;
    }

    /// Digits with single thousands signs between them.
    int GroupedDigits() {
        int count = Digits();
        while (count > 0 && IsThousandsSign(Next()) && IsDigit(Next(1))) {
            Skip();
            count += Digits();
        }
        return count;
    }

    /// An exponent counts only with digits behind its letter.
    void Exponent() {
        const QChar letter = Next().toUpper();
        if (letter != u'E' && letter != u'D')
            return;
        const bool sign = Next(1) == u'+' || Next(1) == u'-';
        if (!IsDigit(Next(sign ? 2 : 1)))
            return;
        Skip();
        Put('e');
        if (sign)
            Take();
        Digits();
    }

private:
    QStringView m_text;
    qsizetype m_place = 0;
    QByteArray m_number;
};

/// The digits behind &H or &O; how many characters were read in all, 0 if it is no such number.
qsizetype ReadPrefixed(QStringView text, double& value) {
    if (text.size() < 3 || text[0] != u'&')
        return 0;
    const QChar kind = text[1].toUpper();
    if (kind != u'H' && kind != u'O')
        return 0;
    const int base = kind == u'H' ? 16 : 8;
    value = 0;
    qsizetype place = 2;
    for (; place < text.size(); ++place) {
        const QChar c = text[place].toUpper();
        int digit = -1;
        if (IsDigit(c))
            digit = c.unicode() - u'0';
        else if (c >= u'A' && c <= u'F')
            digit = c.unicode() - u'A' + 10;
        if (digit < 0 || digit >= base)
            break;
        value = value * base + digit;
    }
    return place > 2 ? place : 0;
}

/// Texts of 16 or 32 whole bits stand for the signed number of these bits.
double AsSigned(double value) {
    constexpr double Bits15 = 0x7FFF;
    constexpr double Bits16 = 0xFFFF;
    constexpr double Bits31 = 0x7FFFFFFF;
    constexpr double Bits32 = 0xFFFFFFFF;
    if (value > Bits15 && value <= Bits16)
        return value - Bits16 - 1;
    if (value > Bits31 && value <= Bits32)
        return value - Bits32 - 1;
    return value;
}

/// The value of a well-formed decimal text; infinite if it is too large, 0 if it is too small.
double ParseDecimal(const QByteArray& number) {
    bool ok = false;
    const double value = number.toDouble(&ok);
    if (ok)
        return value;
    const QList<QByteArray> parts = number.split('e');
    QByteArray whole = parts[0].split('.')[0];
    while (whole.startsWith('-') || whole.startsWith('0'))
        whole.remove(0, 1);
    bool exponentOk = true;
    const int exponent = parts.size() > 1 ? parts[1].toInt(&exponentOk) : 0;
    const bool large = exponentOk ? exponent + whole.size() > 0 : !parts[1].startsWith('-');
    return large ? HUGE_VAL : 0;
}

} // namespace

double TextToNumber(const QString& text) {
    const QString trimmed = Trim(text);
    double prefixed = 0;
    const qsizetype read = ReadPrefixed(trimmed, prefixed);
    if (read > 0) {
        if (read != trimmed.size())
            Raise(TypeMismatch);
        if (std::isinf(prefixed))
            Raise(Overflow);
        return prefixed;
    }

    Scanner scanner(trimmed);
    scanner.Sign();
    int digits = scanner.GroupedDigits();
    if (scanner.Next() == u',') {
        scanner.Skip();
        scanner.Put('.');
        digits += scanner.Digits();
    }
    if (digits == 0)
        Raise(TypeMismatch);
    scanner.Exponent();
    if (!scanner.AtEnd())
        Raise(TypeMismatch);
    const double value = ParseDecimal(scanner.Number());
    if (std::isinf(value))
        Raise(Overflow);
    return value;
}

std::int32_t TextToLong(const QString& text) {
    return RoundedTo<std::int32_t>(TextToNumber(text));
}

double Val(const QString& text) {
    QString packed;
    packed.reserve(text.size());
    for (const QChar c : text) {
        if (c != Blank && c != u'\t' && c != u'\n')
            packed += c;
    }
    double prefixed = 0;
    if (ReadPrefixed(packed, prefixed) > 0)
        return AsSigned(prefixed);

    Scanner scanner(packed);
    scanner.Sign();
    int digits = scanner.Digits();
    if (scanner.Next() == u'.') {
        scanner.Take();
        digits += scanner.Digits();
    }
    if (digits == 0)
        return 0;
    scanner.Exponent();
    return ParseDecimal(scanner.Number());
}

double RoundHalfEven(double value) {
    const double floor = std::floor(value);
    const double rest = value - floor;
    constexpr double Half = 0.5;
    if (rest < Half)
        return floor;
    if (rest > Half)
        return floor + 1;
    return std::fmod(floor, 2) == 0 ? floor : floor + 1;
}

QString NumberToText(double value, int digits) {
    if (value == 0)
        return QStringLiteral("0");
    QString text = QString::number(value, 'g', digits).toUpper();
    text.replace(u'.', u',');
    return text;
}

QString Trim(const QString& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == Blank)
        ++first;
    while (last > first && text[last - 1] == Blank)
        --last;
    return text.mid(first, last - first);
}

} // namespace runtime
