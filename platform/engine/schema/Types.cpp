#include "platform/engine/schema/Types.h"

#include "platform/engine/schema/Names.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace engine {

namespace {

struct TypeRow {
    DataType type;
    TypeKind kind;
    const char* text; ///< in the file; %1 is the size
    const char* words;
    const char* storedAs;
    const char* check; ///< %c is the column, %1 the size; null for what has a range
    WholeRange range = {};
};

constexpr WholeRange longRange{INT32_MIN, INT32_MAX};
// Sizes are counted in UTF-16 units, two bytes each in the file's own text form.
constexpr auto anyText = "length(CAST(%c AS BLOB)) <= 2147483646";

using enum DataType;
using Kind = TypeKind;

// In the order of DataType, then the second forms. What has no form of its own is kept as text.
constexpr auto types = std::to_array<TypeRow>({
    {Unknown, Kind::Unknown, "LONGTEXT", "", "TEXT", anyText},
    {Bit, Kind::Number, "BIT", "BIT BOOLEAN LOGICAL LOGICAL1 YESNO", "INTEGER", nullptr, {0, 1}},
    {Byte, Kind::Number, "BYTE", "BYTE INTEGER1", "INTEGER", nullptr, {0, 255}},
    {Short, Kind::Number, "SHORT", "INTEGER2 SHORT SMALLINT", "INTEGER", nullptr, {INT16_MIN, INT16_MAX}},
    {Long, Kind::Number, "LONG", "INT INTEGER INTEGER4 LONG", "INTEGER", nullptr, longRange},
    {Counter, Kind::Number, "COUNTER", "AUTOINCREMENT COUNTER", "INTEGER", nullptr, longRange},
    {Single, Kind::Number, "SINGLE", "FLOAT4 REAL SINGLE", "REAL",
     "%c BETWEEN -3.4028235677973366e38 AND 3.4028235677973366e38"},
    {Double, Kind::Number, "DOUBLE", "DOUBLE FLOAT FLOAT8 NUMBER NUMERIC", "REAL",
     "%c BETWEEN -1.7976931348623157e308 AND 1.7976931348623157e308"},
    {Currency, Kind::Number, "MONEY", "CURRENCY MONEY", "INTEGER", nullptr, {INT64_MIN, INT64_MAX}},
    {Date, Kind::Date, "DATETIME", "DATE DATETIME TIME TIMESTAMP", "REAL",
     "%c > -657435.0 AND %c < 2958466.0"},
    {Text, Kind::Text, "TEXT(%1)", "ALPHANUMERIC CHAR CHARACTER STRING TEXT VARCHAR", "TEXT",
     "length(CAST(%c AS BLOB)) <= 2 * %1"},
    {Memo, Kind::Text, "LONGTEXT", "LONGCHAR LONGTEXT MEMO NOTE", "TEXT", anyText},
    {Binary, Kind::Bytes, "LONGBINARY", "BINARY LONGBINARY VARBINARY", "BLOB", "length(%c) <= 2147483646"},
    {Guid, Kind::Text, "GUID", "GUID", "TEXT", "length(CAST(%c AS BLOB)) <= 76"},
    {Binary, Kind::Bytes, "BINARY(%1)", "", "BLOB", "length(%c) <= %1"},
    // As the program kept it first.
    {Currency, Kind::Number, "CURRENCY", "", "REAL",
     "%c BETWEEN -922337203685477.5808 AND 922337203685477.5807"},
});
constexpr auto secondForms = types.begin() + 14;
constexpr int digitsOfFraction = 15;

const TypeRow& RowOf(DataType type) {
    return types[static_cast<std::size_t>(type)];
}

const TypeRow& RowOf(const SizedType& sized) {
    const auto second = std::ranges::find(secondForms, types.end(), sized.type, &TypeRow::type);
    return sized.size > 0 && second != types.end() ? *second : RowOf(sized.type);
}

QString Filled(const char* pattern, int size) {
    return QString::fromLatin1(pattern).replace(QLatin1String("%1"), QString::number(size));
}

} // namespace

std::optional<DataType> TypeOfWord(QStringView word) {
    const auto name = Capitals(word, 16);
    for (const TypeRow& row : types)
        for (const auto known : QLatin1String(row.words).tokenize(u' '))
            if (name && known == QLatin1String(name->c_str()))
                return row.type;
    return {};
}

TypeKind KindOf(DataType type) {
    return RowOf(type).kind;
}

WholeRange RangeOf(DataType type) {
    return RowOf(type).range;
}

bool IsText(DataType type) {
    return type == Text || type == Memo;
}

QString SizedType::TypeText() const {
    return Filled(RowOf(*this).text, size);
}

QString SizedType::StoredAs() const {
    return QString::fromLatin1(RowOf(*this).storedAs);
}

QString SizedType::TypeCheck(const QString& column) const {
    const TypeRow& row = RowOf(*this);
    if (!row.check)
        return QStringLiteral("%1 BETWEEN %2 AND %3")
            .arg(column, QString::number(row.range.least), QString::number(row.range.greatest));
    return Filled(row.check, size).replace(QLatin1String("%c"), column);
}

std::optional<SizedType> SizedType::FromText(const QString& text) {
    const qsizetype open = text.indexOf(u'(');
    const bool sized = open >= 0 && text.endsWith(u')');
    const QString pattern = sized ? text.first(open) + QStringLiteral("(%1)") : text;
    const int size = sized ? text.sliced(open + 1).chopped(1).toInt() : 0;
    const auto found = std::ranges::find(types.begin() + 1, types.end(), pattern,
                                         [](const TypeRow& row) { return QLatin1String(row.text); });
    if (found == types.end() || size < 0)
        return {};
    return SizedType{found->type, &*found == &types.back() ? digitsOfFraction : size};
}

SizedType SizedType::FromStored(const QString& declared) {
    constexpr std::pair<const char*, DataType> parts[] = {
        {"INT", Long},    {"CHAR", Memo},   {"CLOB", Memo},   {"TEXT", Memo},
        {"REAL", Double}, {"FLOA", Double}, {"DOUB", Double}, {"BLOB", Binary},
    };
    for (const auto& [part, type] : parts)
        if (declared.contains(QLatin1String(part), Qt::CaseInsensitive))
            return {type};
    return {};
}

bool IsWholeNumber(DataType type) {
    return type == Byte || type == Short || type == Long || type == Counter;
}

DataType CommonType(DataType a, DataType b) {
    if (a == b)
        return a;
    if (KindOf(a) != KindOf(b))
        return Unknown;
    if (KindOf(a) == TypeKind::Text)
        return a == Memo || b == Memo ? Memo : Text;
    const auto plain = [](DataType type) { return type == Counter ? Long : type == Bit ? Short : type; };
    const auto [least, most] = std::minmax({plain(a), plain(b)});
    const bool isWider = (least == Long && most == Single) ||
                         (most == Currency && (least == Single || least == Double)); // than both
    return isWider ? Double : most;
}

} // namespace engine
