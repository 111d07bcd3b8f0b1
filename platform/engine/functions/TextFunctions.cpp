#include "platform/engine/functions/Call.h"
#include "platform/engine/functions/Functions.h"
#include "platform/engine/functions/Text.h"
#include "platform/runtime/Codec1251.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"

#include <algorithm>
#include <cmath>

namespace engine::functions {

namespace {

using runtime::Raise;

/// The longest text that a function may make; more would only bring the machine down.
constexpr std::int32_t longestText = 16 * 1024 * 1024;

constexpr QChar blank = u' ';

enum CompareMode { BinaryCompare = 0, TextCompare = 1, DatabaseCompare = 2 };

/// Whether an optional argument asks for the comparison by case; by default it is ignored.
bool ByCase(const Arguments& arguments, int place) {
    const std::int32_t mode = arguments.Long(place, DatabaseCompare);
    if (mode < BinaryCompare || mode > DatabaseCompare)
        Raise(runtime::InvalidCall);
    return mode == BinaryCompare;
}

/// A length or count; failure 5 if it is below the least one allowed.
std::int32_t Count(const Arguments& arguments, int place, std::int32_t least = 0) {
    const std::int32_t count = arguments.Long(place);
    if (count < least)
        Raise(runtime::InvalidCall);
    return count;
}

Value Left(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    return arguments.Text(0).left(Count(arguments, 1));
}

Value Right(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    return arguments.Text(0).right(Count(arguments, 1));
}

Value Mid(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    const std::int32_t start = Count(arguments, 1, 1);
    const std::int32_t length = arguments.Has(2) ? Count(arguments, 2) : longestText;
    return arguments.Text(0).mid(start - 1, length);
}

Value Len(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    return std::int64_t{arguments.Text(0).size()};
}

Value InStr(const Arguments& arguments) {
    const int first = arguments.Count() > 2 ? 1 : 0;
    const bool byCase = ByCase(arguments, 3);
    if (arguments.IsNull(first) || arguments.IsNull(first + 1))
        return {};
    const std::int32_t start = first == 1 ? Count(arguments, 0, 1) : 1;
    QString text = arguments.Text(first);
    QString sought = arguments.Text(first + 1);
    if (start > text.size())
        return 0;
    if (!byCase) {
        text = Fold(text);
        sought = Fold(sought);
    }
    return std::int64_t{text.indexOf(sought, start - 1) + 1};
}

Value InStrRev(const Arguments& arguments) {
    const bool byCase = ByCase(arguments, 3);
    if (arguments.IsNull(0) || arguments.IsNull(1))
        return {};
    const std::int32_t start = arguments.Long(2, -1);
    if (start == 0 || start < -1)
        Raise(runtime::InvalidCall);
    QString text = arguments.Text(0);
    QString sought = arguments.Text(1);
    const qsizetype end = start == -1 ? text.size() : start;
    if (text.isEmpty() || end > text.size())
        return 0;
    if (sought.isEmpty())
        return std::int64_t{end};
    if (!byCase) {
        text = Fold(text);
        sought = Fold(sought);
    }
    if (sought.size() > end)
        return 0;
    return std::int64_t{text.lastIndexOf(sought, end - sought.size()) + 1};
}

template <Value (*Change)(const QString&)>
Value OfText(const Arguments& arguments) {
    return arguments.IsNull(0) ? Value() : Change(arguments.Text(0));
}

Value TrimBoth(const QString& text) {
    return runtime::Trim(text);
}

Value TrimLeft(const QString& text) {
    const auto start = std::find_if(text.begin(), text.end(), [](QChar unit) { return unit != blank; });
    return text.sliced(start - text.begin());
}

Value TrimRight(const QString& text) {
    const auto end = std::find_if(text.rbegin(), text.rend(), [](QChar unit) { return unit != blank; });
    return text.first(text.rend() - end);
}

Value Upper(const QString& text) {
    return ToUpper(text);
}

Value Lower(const QString& text) {
    return ToLower(text);
}

Value StrComp(const Arguments& arguments) {
    const bool byCase = ByCase(arguments, 2);
    if (arguments.IsNull(0) || arguments.IsNull(1))
        return {};
    const QString a = arguments.Text(0);
    const QString b = arguments.Text(1);
    if (byCase)
        return a < b ? -1 : a == b ? 0 : 1;
    return CompareSorted(a, b);
}

Value StrConv(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    const QString text = arguments.Text(0);
    switch (arguments.Long(1)) {
    case 1:
        return ToUpper(text);
    case 2:
        return ToLower(text);
    case 3: {
        QString proper = ToLower(text);
        for (qsizetype i = 0; i < proper.size(); ++i) {
            if (i == 0 || proper[i - 1].isSpace())
                proper[i] = proper[i].toUpper();
        }
        return proper;
    }
    default:
        Raise(runtime::InvalidCall);
    }
}

Value StrReverse(const Arguments& arguments) {
    if (arguments.IsNull(0))
        Raise(runtime::InvalidUseOfNull);
    QString text = arguments.Text(0);
    std::reverse(text.begin(), text.end());
    return text;
}

Value Val(const Arguments& arguments) {
    if (arguments.IsNull(0))
        Raise(runtime::InvalidUseOfNull);
    return runtime::Val(arguments.Text(0));
}

Value Str(const Arguments& arguments) {
    const double number = arguments.Number(0);
    QString text = runtime::NumberToText(number).replace(u',', u'.');
    // The nought before the point is left out.
    if (text.startsWith(u"0."))
        text.remove(0, 1);
    else if (text.startsWith(u"-0."))
        text.remove(1, 1);
    return number < 0 ? text : blank + text;
}

Value CStr(const Arguments& arguments) {
    if (arguments.IsNull(0))
        Raise(runtime::InvalidUseOfNull);
    if (arguments.IsBytes(0))
        Raise(runtime::TypeMismatch);
    return arguments.Text(0);
}

/// The first character of a text that must have one; failures 94 and 5.
QString FirstCharacter(const Arguments& arguments) {
    if (arguments.IsNull(0))
        Raise(runtime::InvalidUseOfNull);
    const QString text = arguments.Text(0);
    if (text.isEmpty())
        Raise(runtime::InvalidCall);
    return text.first(1);
}

Value Asc(const Arguments& arguments) {
    return static_cast<int>(static_cast<unsigned char>(runtime::To1251(FirstCharacter(arguments)).at(0)));
}

Value AscW(const Arguments& arguments) {
    // A whole number of 16 bits with its sign, as every code above 7FFF comes out.
    return static_cast<int>(static_cast<std::int16_t>(FirstCharacter(arguments).at(0).unicode()));
}

QString CharacterOfCode(std::int32_t code) {
    if (code < 0 || code > 255)
        Raise(runtime::InvalidCall);
    const char byte = static_cast<char>(code);
    return runtime::From1251(QByteArrayView(&byte, 1));
}

Value Chr(const Arguments& arguments) {
    return CharacterOfCode(arguments.Long(0));
}

Value ChrW(const Arguments& arguments) {
    const std::int32_t code = arguments.Long(0);
    if (code < -32768 || code > 65535)
        Raise(runtime::InvalidCall);
    return QString(QChar(static_cast<char16_t>(code)));
}

QString Repeated(std::int32_t count, QChar character) {
    if (count > longestText)
        Raise(runtime::OutOfMemory);
    return QString(count, character);
}

Value Space(const Arguments& arguments) {
    return Repeated(Count(arguments, 0), blank);
}

Value String(const Arguments& arguments) {
    const std::int32_t count = Count(arguments, 0);
    if (arguments.IsNull(1))
        return {};
    QString character;
    if (arguments.IsText(1))
        character = arguments.Text(1);
    else
        character = CharacterOfCode(arguments.Long(1) & 0xFF);
    if (character.isEmpty())
        Raise(runtime::InvalidCall);
    return Repeated(count, character.at(0));
}

template <int Base>
Value InBase(const Arguments& arguments) {
    if (arguments.IsNull(0))
        return {};
    return QString::number(static_cast<std::uint32_t>(arguments.Long(0)), Base).toUpper();
}

Value FormatFunction(const Arguments& arguments) {
    const QString picture = arguments.Has(1) ? arguments.Text(1) : QString();
    return Format(arguments.At(0), picture, arguments.Long(2, 1), arguments.Long(3, 1));
}

Value IsNullFunction(const Arguments& arguments) {
    return arguments.IsNull(0);
}

Value IsNumericFunction(const Arguments& arguments) {
    return arguments.At(0).IsNumeric();
}

Value IsDateFunction(const Arguments& arguments) {
    return arguments.IsText(0) && runtime::IsDate(arguments.Text(0));
}

constexpr ScalarFunction functions[] = {
    {{"LEFT", 2, 2, DataType::Text}, Left},
    {{"RIGHT", 2, 2, DataType::Text}, Right},
    {{"MID", 2, 3, DataType::Text}, Mid},
    {{"LEN", 1, 1, DataType::Long}, Len},
    {{"INSTR", 2, 4, DataType::Long}, InStr},
    {{"INSTRREV", 2, 4, DataType::Long}, InStrRev},
    {{"TRIM", 1, 1, DataType::Text}, OfText<TrimBoth>},
    {{"LTRIM", 1, 1, DataType::Text}, OfText<TrimLeft>},
    {{"RTRIM", 1, 1, DataType::Text}, OfText<TrimRight>},
    {{"UCASE", 1, 1, DataType::Text}, OfText<Upper>},
    {{"LCASE", 1, 1, DataType::Text}, OfText<Lower>},
    {{"STRCOMP", 2, 3, DataType::Short}, StrComp},
    {{"STRCONV", 2, 3, DataType::Text}, StrConv},
    {{"STRREVERSE", 1, 1, DataType::Text}, StrReverse},
    {{"VAL", 1, 1, DataType::Double}, Val},
    {{"STR", 1, 1, DataType::Text}, Str},
    {{"CSTR", 1, 1, DataType::Text}, CStr},
    {{"ASC", 1, 1, DataType::Short}, Asc},
    {{"ASCW", 1, 1, DataType::Short}, AscW},
    {{"CHR", 1, 1, DataType::Text}, Chr},
    {{"CHRW", 1, 1, DataType::Text}, ChrW},
    {{"SPACE", 1, 1, DataType::Text}, Space},
    {{"STRING", 2, 2, DataType::Text}, String},
    {{"HEX", 1, 1, DataType::Text}, InBase<16>},
    {{"OCT", 1, 1, DataType::Text}, InBase<8>},
    {{"FORMAT", 1, 4, DataType::Text}, FormatFunction},
    {{"ISNULL", 1, 1, DataType::Bit}, IsNullFunction},
    {{"ISNUMERIC", 1, 1, DataType::Bit}, IsNumericFunction},
    {{"ISDATE", 1, 1, DataType::Bit}, IsDateFunction, false}, // a day without a year depends on today
};

} // namespace

std::span<const ScalarFunction> TextFunctions() {
    return functions;
}

} // namespace engine::functions
