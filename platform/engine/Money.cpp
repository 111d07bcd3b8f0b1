#include "platform/engine/Money.h"

#include "platform/runtime/Failure.h"
#include "platform/runtime/Numbers.h"

#include <QString>
#include <QtNumeric>

#include <algorithm>
#include <array>
#include <limits>

namespace engine {

namespace {

constexpr int decimalsKept = 4;

/// Failure 6 where a calculation has overflown.
std::int64_t Checked(bool overflows, std::int64_t value) {
    if (overflows)
        runtime::Raise(runtime::Overflow);
    return value;
}

std::int64_t Times(std::int64_t a, std::int64_t b) {
    std::int64_t product = 0;
    const bool overflows = qMulOverflow(a, b, &product);
    return Checked(overflows, product);
}

std::int64_t Plus(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    const bool overflows = qAddOverflow(a, b, &sum);
    return Checked(overflows, sum);
}

/// `whole` and `rest` / `divisor`, rounded half to even; the rest has the sign of the result.
std::int64_t RoundedUp(std::int64_t whole, std::int64_t rest, std::int64_t divisor) {
    const std::int64_t twice = 2 * (rest < 0 ? -rest : rest);
    if (twice < divisor || (twice == divisor && whole % 2 == 0))
        return whole;
    return Plus(whole, rest < 0 ? -1 : 1);
}

} // namespace

Money Money::FromWhole(std::int64_t whole) {
    return {Times(whole, unitsOfOne)};
}

Money Money::FromNumber(double number) {
    constexpr double end = 9223372036854775808.0; // 2 to the power of 63
    const double scaled = runtime::RoundHalfEven(number * unitsOfOne);
    if (!(scaled >= -end && scaled < end))
        runtime::Raise(runtime::Overflow);
    return {static_cast<std::int64_t>(scaled)};
}

std::optional<Money> Money::FromDigits(QStringView text, char16_t point) {
    const bool negative = text.startsWith(u'-');
    if (negative || text.startsWith(u'+'))
        text = text.sliced(1);
    QString digits = text.toString();
    const qsizetype place = digits.indexOf(QChar(point));
    const qsizetype kept = (place < 0 ? digits.size() : place) + decimalsKept;
    if (place >= 0)
        digits.remove(place, 1);
    if (!std::ranges::all_of(digits, [](QChar c) { return c >= u'0' && c <= u'9'; }))
        return {};
    std::int64_t units = 0;
    for (const QChar c : digits.leftJustified(kept, u'0', true)) {
        const int digit = c.unicode() - u'0';
        units = Plus(Times(units, 10), negative ? -digit : digit);
    }
    const QString behind = digits.mid(kept);
    const bool more = std::ranges::any_of(behind.mid(1), [](QChar c) { return c != u'0'; });
    const int rest = behind.isEmpty() ? 0 : 10 * (behind.front().unicode() - u'0') + (more ? 1 : 0);
    return Money{RoundedUp(units, negative ? -rest : rest, 100)};
}

QString Money::Text() const {
    const bool negative = units < 0;
    const auto size = negative ? 0 - static_cast<std::uint64_t>(units) : static_cast<std::uint64_t>(units);
    constexpr std::uint64_t one = unitsOfOne;
    QString text = (negative ? QStringLiteral("-") : QString()) + QString::number(size / one);
    if (size % one == 0)
        return text;
    text += u',' + QString::number(size % one).rightJustified(decimalsKept, u'0');
    while (text.endsWith(u'0'))
        text.chop(1);
    return text;
}

Money Money::Rounded(int decimals) const {
    static constexpr std::array<std::int64_t, decimalsKept> scales{10000, 1000, 100, 10};
    if (decimals >= decimalsKept)
        return *this;
    const std::int64_t scale = scales.at(static_cast<std::size_t>(decimals));
    return {Times(RoundedUp(units / scale, units % scale, scale), scale)};
}

Money Money::Floor() const {
    const Money whole = Truncated();
    return units < whole.units ? whole - Money{unitsOfOne} : whole;
}

Money operator+(Money a, Money b) {
    return {Plus(a.units, b.units)};
}

Money operator-(Money a, Money b) {
    std::int64_t difference = 0;
    const bool overflows = qSubOverflow(a.units, b.units, &difference);
    return {Checked(overflows, difference)};
}

/// By parts, since the product of both does not fit.
Money operator*(Money a, Money b) {
    constexpr std::int64_t one = Money::unitsOfOne;
    const std::int64_t high = Plus(Times(a.units / one, b.units), Times(a.units % one, b.units / one));
    const std::int64_t low = (a.units % one) * (b.units % one); // with the sign of the product
    return {RoundedUp(Plus(high, low / one), low % one, one)};
}

} // namespace engine
