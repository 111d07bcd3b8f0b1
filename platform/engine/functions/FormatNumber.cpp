#include "platform/engine/functions/Picture.h"

#include <QByteArray>

#include <algorithm>
#include <cmath>

namespace engine::functions {

namespace {

constexpr QChar decimalComma = u',';
constexpr QChar thousandsSign = u'\u00A0';

void ChopZeros(QByteArray& digits, int forced) {
    while (digits.size() > forced && digits.endsWith('0'))
        digits.chop(1);
}

/// The digits that a number is shown by, without its sign: 0.digits times ten to the power of `point`.
class Decimal {
public:
    explicit Decimal(const Value& value) {
        const double number = value.Number();
        if (number == 0)
            return;
        if (const auto* amount = value.As<Money>()) {
            // A whole number of ten-thousandths.
            m_digits = QByteArray::number(qlonglong{amount->units}).replace("-", "");
            m_point = static_cast<int>(m_digits.size()) - 4;
        } else {
            const QByteArray text = QByteArray::number(std::abs(number), 'e', value.As<float>() ? 6 : 14);
            const qsizetype exponent = text.indexOf('e');
            m_digits = text.first(exponent).replace(".", "");
            m_point = text.sliced(exponent + 1).toInt() + 1;
        }
        ChopZeros(m_digits, 0);
    }

    bool IsZero() const { return m_digits.isEmpty(); }
    int Point() const { return m_point; }
    void Shift(int places) { m_point += IsZero() ? 0 : places; }

    /// Rounds half away from nought.
    void RoundTo(int decimals) {
        const int keep = m_point + decimals;
        if (keep >= m_digits.size())
            return;
        const bool up = keep >= 0 && m_digits[keep] >= '5';
        m_digits.truncate(std::max(keep, 0));
        while (up && m_digits.endsWith('9'))
            m_digits.chop(1);
        if (up && m_digits.isEmpty()) {
            m_digits = "1";
            ++m_point;
        } else if (up) {
            m_digits.back() = static_cast<char>(m_digits.back() + 1);
        }
        ChopZeros(m_digits, 0);
    }

    QByteArray Whole() const {
        return IsZero() || m_point <= 0 ? QByteArray() : m_digits.leftJustified(m_point, '0', true);
    }

    QByteArray Fraction(int decimals) const {
        if (IsZero())
            return QByteArray(decimals, '0');
        const QByteArray behind = m_point >= 0 ? m_digits.mid(m_point) : QByteArray(-m_point, '0') + m_digits;
        return behind.leftJustified(decimals, '0', true);
    }

private:
    QByteArray m_digits;
    int m_point = 0;
};

bool IsDigitSign(const Sign& sign) {
    return sign.Is(u'0') || sign.Is(u'#');
}

/// One section of a number picture: what its characters ask for, and the number written by them.
class NumberWriter {
public:
    explicit NumberWriter(Section section)
        : m_section(section) {
        for (std::size_t i = 0; i < section.size(); ++i)
            Take(i);
    }

    bool HasDigits() const { return m_wholes + m_decimals > 0; }

    QString Write(const Value& number) {
        Decimal decimal(number);
        decimal.Shift(2 * m_percents - 3 * m_scales);
        const bool hasExponent = m_exponentAt < m_section.size() && !decimal.IsZero();
        if (hasExponent)
            m_exponent = decimal.Point() - m_wholes;
        decimal.Shift(-m_exponent);
        decimal.RoundTo(m_decimals);
        if (hasExponent && decimal.Point() > m_wholes) {
            decimal.Shift(-1); // rounding has made one digit more
            ++m_exponent;
        }
        m_isZero = decimal.IsZero();
        FillPlaces(decimal);
        for (std::size_t i = 0; i < m_section.size(); ++i)
            i = WriteSign(i);
        return m_text;
    }

    /// Whether the number last written came out as nought.
    bool IsZero() const { return m_isZero; }

private:
    static constexpr auto nowhere = static_cast<std::size_t>(-1);

    bool HasPoint() const { return m_pointAt != nowhere; }

    void Take(std::size_t place) {
        const Sign& sign = m_section[place];
        if (place >= m_exponentAt)
            return;
        if (IsDigitSign(sign)) {
            TakeDigit(sign);
        } else if (sign.Is(u'.') && !HasPoint()) {
            m_pointAt = place;
        } else if (sign.Is(u'%')) {
            ++m_percents;
        } else if (sign.Is(u',') && !HasPoint() && m_wholes > 0) {
            if (DigitFollows(place))
                m_grouped = true;
            else
                ++m_scales;
        } else if (sign.Is(u'e') && HasDigits() && place + 2 < m_section.size() &&
                   (m_section[place + 1].Is(u'+') || m_section[place + 1].Is(u'-')) &&
                   IsDigitSign(m_section[place + 2])) {
            m_exponentAt = place;
        }
    }

    void TakeDigit(const Sign& sign) {
        if (HasPoint()) {
            ++m_decimals;
            if (sign.Is(u'0'))
                m_decimalsForced = m_decimals;
            return;
        }
        ++m_wholes;
        if (m_wholesForced > 0 || sign.Is(u'0'))
            ++m_wholesForced;
    }

    /// Whether digits of the whole part stand behind that place.
    bool DigitFollows(std::size_t place) const {
        for (std::size_t i = place + 1; i < m_section.size() && !m_section[i].Is(u'.'); ++i) {
            if (IsDigitSign(m_section[i]))
                return true;
        }
        return false;
    }

    /// Settles what stands at each digit sign. The first one takes the digits that have none of their own;
    /// where there is none in front of the point, they stand at the point.
    void FillPlaces(const Decimal& decimal) {
        const QByteArray whole = decimal.Whole().rightJustified(m_wholesForced, '0');
        QByteArray fraction = decimal.Fraction(m_decimals);
        ChopZeros(fraction, m_decimalsForced);
        m_places.resize(m_wholes + m_decimals);
        for (qsizetype i = 0; i < whole.size(); ++i) {
            const qsizetype left = whole.size() - 1 - i;
            QString& place =
                m_wholes == 0 ? m_atPoint : m_places[std::max<qsizetype>(m_wholes - 1 - left, 0)];
            place += QLatin1Char(whole[i]);
            if (m_grouped && left > 0 && left % 3 == 0)
                place += thousandsSign;
        }
        for (qsizetype i = 0; i < fraction.size(); ++i)
            m_places[m_wholes + i] = QLatin1Char(fraction[i]);
    }

    std::size_t WriteSign(std::size_t place) {
        const Sign& sign = m_section[place];
        if (place == m_exponentAt)
            return WriteExponent(place);
        if (place == m_pointAt)
            m_text += m_atPoint + decimalComma;
        else if (IsDigitSign(sign) && place < m_exponentAt)
            m_text += m_places.takeFirst();
        else if (!sign.Is(u',') || m_wholes == 0)
            m_text += sign.character;
        return place;
    }

    /// Writes the power of ten; returns the place of its last sign.
    std::size_t WriteExponent(std::size_t place) {
        std::size_t end = place + 2;
        while (end < m_section.size() && IsDigitSign(m_section[end]))
            ++end;
        m_text += m_section[place].character;
        if (m_exponent < 0)
            m_text += u'-';
        else if (m_section[place + 1].Is(u'+'))
            m_text += u'+';
        m_text += QString::number(std::abs(m_exponent))
                      .rightJustified(static_cast<qsizetype>(end - place - 2), u'0');
        return end - 1;
    }

    Section m_section;
    int m_wholes = 0; ///< places in front of the point
    int m_wholesForced = 0;
    int m_decimals = 0;
    int m_decimalsForced = 0;
    int m_percents = 0;
    int m_scales = 0; ///< divisions by 1000
    bool m_grouped = false;
    std::size_t m_pointAt = nowhere;
    std::size_t m_exponentAt = nowhere;

    int m_exponent = 0;
    bool m_isZero = false;
    QStringList m_places; ///< what the digit signs show
    QString m_atPoint;
    QString m_text;
};

} // namespace

QString FormatNumber(const Value& value, const Picture& picture) {
    const double number = value.Number();
    const bool zero = number == 0;
    const std::size_t wanted = zero ? 2 : number < 0 ? 1 : 0;
    const std::size_t chosen = picture.At(wanted).empty() ? 0 : wanted;
    NumberWriter writer(picture.At(chosen));
    const QString text = writer.Write(value);
    const bool signShown = number < 0 && chosen == 0 && writer.HasDigits() && !writer.IsZero();
    return signShown ? u'-' + text : text;
}

} // namespace engine::functions
