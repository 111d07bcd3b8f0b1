#include "platform/engine/functions/Call.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/functions/Picture.h"
#include "platform/engine/schema/Types.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Failure.h"
#include "platform/runtime/Numbers.h"

#include <array>
#include <cmath>
#include <optional>

namespace engine::functions {

namespace {

/// By their names.
constexpr std::array<std::pair<QStringView, QStringView>, 16> namedPictures{{
    {u"Currency", u"#,##0.00\u00A0\\\u20BD"},
    {u"Fixed", u"0.00"},
    {u"Standard", u"#,##0.00"},
    {u"Percent", u"0.00%"},
    {u"Scientific", u"0.00E+00"},
    {u"Yes/No", u"\"Да\";\"Да\";\"Нет\""},
    {u"True/False", u"\"Истина\";\"Истина\";\"Ложь\""},
    {u"On/Off", u"\"Вкл\";\"Вкл\";\"Выкл\""},
    {u"General Date", u"c"},
    {u"Long Date", u"dddddd"},
    {u"Medium Date", u"dd-mmm-yy"},
    {u"Short Date", u"ddddd"},
    {u"Long Time", u"ttttt"},
    {u"Medium Time", u"hh:nn AM/PM"},
    {u"Short Time", u"hh:nn"},
    {u"General Number", u""},
}};

QStringView Unnamed(QStringView picture) {
    for (const auto& [name, named] : namedPictures)
        if (name.compare(picture, Qt::CaseInsensitive) == 0)
            return named;
    return picture;
}

std::optional<Value> NumberOfValue(const Value& value) {
    try {
        const double number = value.Number();
        return value.As<Money>() || value.As<float>() ? value : Value(number);
    } catch (const runtime::Failure&) {
        return std::nullopt;
    }
}

/// The number that a number picture shows; a date counts by its number. None for other texts.
std::optional<Value> NumberToShow(const Value& value) {
    if (const auto number = NumberOfValue(value))
        return number;
    const auto* text = value.As<QString>();
    const auto date = text ? runtime::TryTextToDate(*text) : std::nullopt;
    return date ? std::optional(Value(runtime::NumberFromDate(*date))) : std::nullopt;
}

/// The date that a date picture shows; failure 6 for a number that is none. None for other texts.
std::optional<QDateTime> DateToShow(const Value& value) {
    if (const auto* date = value.As<QDateTime>())
        return *date;
    if (const auto* text = value.As<QString>()) {
        if (auto date = runtime::TryTextToDate(*text))
            return date;
    }
    const auto number = NumberOfValue(value);
    return number ? std::optional(runtime::DateFromNumber(number->Number())) : std::nullopt;
}

QString FormatNull(const Picture& picture, Picture::Kind kind) {
    if (kind == Picture::Number || kind == Picture::Literal)
        return Plain(picture.At(3));
    if (kind == Picture::Text && picture.Count() > 1)
        return FormatText(QString(), picture);
    return {};
}

} // namespace

QString FormatText(const QString& text, const Picture& picture) {
    const bool second = text.isEmpty() && !picture.At(1).empty();
    const Section section = picture.At(second ? 1 : 0);
    qsizetype places = 0;
    bool leftToRight = false;
    QString shown = text;
    for (const Sign& sign : section) {
        if (sign.Is(u'@') || sign.Is(u'&'))
            ++places;
        else if (sign.Is(u'!'))
            leftToRight = true;
        else if (sign.Is(u'<'))
            shown = ToLower(text);
        else if (sign.Is(u'>'))
            shown = ToUpper(text);
    }
    // Texts fill the places from the right; what has no place stands at the first one, or behind the last one
    // where they are filled from the left.
    const qsizetype shift = leftToRight ? 0 : shown.size() - places;
    QString result;
    qsizetype place = 0;
    for (const Sign& sign : section) {
        if (sign.Is(u'@') || sign.Is(u'&')) {
            const qsizetype from = place + shift;
            if (place == 0 && shift > 0)
                result += QStringView(shown).first(shift);
            if (from >= 0 && from < shown.size())
                result += shown[from];
            else if (sign.Is(u'@'))
                result += u' ';
            ++place;
            if (place == places && from + 1 < shown.size())
                result += QStringView(shown).sliced(from + 1);
        } else if (sign.literal || !QStringView(u"<>!").contains(sign.character)) {
            result += sign.character;
        }
    }
    return places == 0 ? result + shown : result;
}

QString Format(const Value& value, const QString& given, int first, int rule) {
    const QStringView unnamed = Unnamed(given);
    if (unnamed.isEmpty())
        return value.Text();
    const Picture picture(unnamed);
    const Picture::Kind kind = picture.KindOf();
    if (value.IsNull())
        return FormatNull(picture, kind);
    if (kind == Picture::Date) {
        const auto date = DateToShow(value);
        return date ? FormatDate(*date, picture.At(0), {first, rule}) : value.Text();
    }
    if (kind == Picture::Text)
        return FormatText(value.Text(), picture);
    const auto number = NumberToShow(value);
    return number && std::isfinite(number->Number()) ? FormatNumber(*number, picture) : value.Text();
}

} // namespace engine::functions
