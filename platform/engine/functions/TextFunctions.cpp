#include "platform/engine/functions/Call.h"
#include "platform/runtime/Codec1251.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"

#include <algorithm>
#include <array>

namespace engine::functions {

namespace {

using runtime::Raise;

/// The longest text that a function may make, in characters; more would only bring the machine down.
constexpr std::int32_t longestText = 16 * 1024 * 1024;

constexpr QChar blank = u' ';

/// How texts are compared: 0 by case; 1 as a text and 2 as the database does, both without case.
using CompareMode = Within<0, 2>;

bool ByCase(const std::optional<CompareMode>& mode) {
    return mode && *mode == 0;
}

/// A text as it is searched: without case, place by place, unless case counts.
QString Searched(const Arguments& arguments, int place, bool byCase) {
    const auto text = arguments.As<QString>(place);
    return byCase ? text : Fold(text);
}

/// INSTR([start,] text, sought [, mode]).
Value InStr(const Arguments& arguments) {
    const int first = arguments.Count() > 2 ? 1 : 0;
    const bool byCase = ByCase(arguments.As<std::optional<CompareMode>>(3));
    if (arguments.IsNull(first) || arguments.IsNull(first + 1))
        return {};
    const std::int32_t start = first == 1 ? arguments.As<Position>(0) : 1;
    const QString text = Searched(arguments, first, byCase);
    const QString sought = Searched(arguments, first + 1, byCase);
    return start > text.size() ? 0 : std::int64_t{text.indexOf(sought, start - 1) + 1};
}

/// INSTRREV(text, sought [, start [, mode]]); a start of -1 is the end.
Value InStrRev(const Arguments& arguments) {
    const bool byCase = ByCase(arguments.As<std::optional<CompareMode>>(3));
    if (arguments.IsNull(0) || arguments.IsNull(1))
        return {};
    const std::int32_t start = arguments.As<std::optional<Within<-1>>>(2).value_or(Within<-1>(-1));
    if (start == 0)
        Raise(runtime::InvalidCall);
    const QString text = Searched(arguments, 0, byCase);
    const QString sought = Searched(arguments, 1, byCase);
    const qsizetype end = start == -1 ? text.size() : start;
    if (text.isEmpty() || end > text.size())
        return 0;
    if (sought.isEmpty())
        return std::int64_t{end};
    if (sought.size() > end)
        return 0;
    return std::int64_t{text.lastIndexOf(sought, end - sought.size()) + 1};
}

QString TrimLeft(const QString& text) {
    const auto start = std::find_if(text.begin(), text.end(), [](QChar unit) { return unit != blank; });
    return text.sliced(start - text.begin());
}

QString TrimRight(const QString& text) {
    const auto end = std::find_if(text.rbegin(), text.rend(), [](QChar unit) { return unit != blank; });
    return text.first(text.rend() - end);
}

Value StrComp(const Value& a, const Value& b, const std::optional<CompareMode>& mode) {
    if (a.IsNull() || b.IsNull())
        return {};
    if (ByCase(mode))
        return a.Text() < b.Text() ? -1 : a.Text() == b.Text() ? 0 : 1;
    return CompareSorted(a.Text(), b.Text());
}

/// 1 capitals, 2 small letters, 3 a capital at the start of each word.
QString StrConv(const QString& text, std::int32_t conversion, const std::optional<Value>& /*locale*/) {
    if (conversion == 1)
        return ToUpper(text);
    QString converted = ToLower(text);
    if (conversion == 2)
        return converted;
    if (conversion != 3)
        Raise(runtime::InvalidCall);
    for (qsizetype i = 0; i < converted.size(); ++i) {
        if (i == 0 || converted[i - 1].isSpace())
            converted[i] = converted[i].toUpper();
    }
    return converted;
}

/// A blank stands in the place of a plus, and the zero before the point is left out.
QString Str(double number) {
    QString text = runtime::NumberToText(number).replace(u',', u'.');
    if (text.startsWith(u"0."))
        text.remove(0, 1);
    else if (text.startsWith(u"-0."))
        text.remove(1, 1);
    return number < 0 ? text : blank + text;
}

using Code = Within<0, 255>;

/// Failure 5 for the empty text.
QChar FirstCharacter(const QString& text) {
    if (text.isEmpty())
        Raise(runtime::InvalidCall);
    return text.front();
}

QString CharacterOfCode(Code code) {
    const char byte = static_cast<char>(code);
    return runtime::From1251(QByteArrayView(&byte, 1));
}

QString Repeated(std::int32_t count, QChar character) {
    if (count > longestText)
        Raise(runtime::OutOfMemory);
    return QString(count, character);
}

/// A text gives its first character, a number the one of its code.
Value String(Length count, const Value& character) {
    if (character.IsNull())
        return {};
    if (const auto* text = character.As<QString>())
        return Repeated(count, FirstCharacter(*text));
    return Repeated(count, CharacterOfCode(Code(character.Long() & 0xFF)).front());
}

QString InBase(std::int32_t number, int base) {
    return QString::number(static_cast<std::uint32_t>(number), base).toUpper();
}

using enum DataType;

constexpr auto functions = std::to_array<ScalarFunction>({
    {"LEFT", Text, Nulls::First, [](const QString& text, Length count) { return text.left(count); }},
    {"RIGHT", Text, Nulls::First, [](const QString& text, Length count) { return text.right(count); }},
    {"MID", Text, Nulls::First,
     [](const QString& text, Position start, std::optional<Length> length) {
         return text.mid(start - 1, length ? *length : -1);
     }},
    {"LEN", Long, Nulls::First, [](const QString& text) { return text.size(); }},
    {{"INSTR", 2, 4, Long}, Nulls::Taken, InStr},
    {{"INSTRREV", 2, 4, Long}, Nulls::Taken, InStrRev},
    {"TRIM", Text, Nulls::First, Of<runtime::Trim>},
    {"LTRIM", Text, Nulls::First, Of<TrimLeft>},
    {"RTRIM", Text, Nulls::First, Of<TrimRight>},
    {"UCASE", Text, Nulls::First, Of<ToUpper>},
    {"LCASE", Text, Nulls::First, Of<ToLower>},
    {"STRCOMP", Short, Nulls::Taken, Of<StrComp>},
    {"STRCONV", Text, Nulls::First, Of<StrConv>},
    {"STRREVERSE", Text, Nulls::Refused,
     [](QString text) {
         std::reverse(text.begin(), text.end());
         return text;
     }},
    {"VAL", Double, Nulls::Refused, Of<runtime::Val>},
    {"STR", Text, Nulls::Taken, Of<Str>},
    {"CSTR", Text, Nulls::Refused,
     [](const Value& value) {
         if (value.As<QByteArray>())
             Raise(runtime::TypeMismatch);
         return value.Text();
     }},
    {"ASC", Short, Nulls::Refused,
     [](const QString& text) {
         return static_cast<unsigned char>(runtime::To1251(QString(FirstCharacter(text))).front());
     }},
    // A whole number of 16 bits with its sign, as every code above 7FFF comes out.
    {"ASCW", Short, Nulls::Refused,
     [](const QString& text) { return static_cast<std::int16_t>(FirstCharacter(text).unicode()); }},
    {"CHR", Text, Nulls::Taken, Of<CharacterOfCode>},
    {"CHRW", Text, Nulls::Taken,
     [](Within<-0x8000, 0xFFFF> code) { return QString(QChar(static_cast<char16_t>(code))); }},
    {"SPACE", Text, Nulls::Taken, [](Length count) { return Repeated(count, blank); }},
    {"STRING", Text, Nulls::Taken, Of<String>},
    {"HEX", Text, Nulls::First, [](std::int32_t number) { return InBase(number, 16); }},
    {"OCT", Text, Nulls::First, [](std::int32_t number) { return InBase(number, 8); }},
    {"FORMAT", Text, Nulls::Taken,
     [](const Value& value, const std::optional<QString>& picture, std::optional<std::int32_t> first,
        std::optional<std::int32_t> rule) {
         return Format(value, picture.value_or(QString()), first.value_or(1), rule.value_or(1));
     }},
    {"ISNUMERIC", Bit, Nulls::Taken, [](const Value& value) { return value.IsNumeric(); }},
    {"ISDATE", Bit, Nulls::Taken,
     [](const Value& value) {
         const auto* text = value.As<QString>();
         return text && runtime::IsDate(*text);
     },
     Answers::Vary},
});

} // namespace

QString ToUpper(const QString& text) {
    QString capitals = text;
    for (QChar& unit : capitals)
        unit = unit.toUpper();
    return capitals;
}

QString ToLower(const QString& text) {
    QString small = text;
    for (QChar& unit : small)
        unit = unit.toLower();
    return small;
}

std::span<const ScalarFunction> TextFunctions() {
    return functions;
}

} // namespace engine::functions
