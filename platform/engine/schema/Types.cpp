#include "platform/engine/schema/Types.h"

#include "platform/engine/schema/Names.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace engine {

namespace {

struct TypeWord {
    std::string_view word;
    DataType type;
};

constexpr auto types = std::to_array<TypeWord>({
    {"ALPHANUMERIC", DataType::Text}, {"AUTOINCREMENT", DataType::Counter},
    {"BINARY", DataType::Binary},     {"BIT", DataType::Bit},
    {"BOOLEAN", DataType::Bit},       {"BYTE", DataType::Byte},
    {"CHAR", DataType::Text},         {"CHARACTER", DataType::Text},
    {"COUNTER", DataType::Counter},   {"CURRENCY", DataType::Currency},
    {"DATE", DataType::Date},         {"DATETIME", DataType::Date},
    {"DOUBLE", DataType::Double},     {"FLOAT", DataType::Double},
    {"FLOAT4", DataType::Single},     {"FLOAT8", DataType::Double},
    {"GUID", DataType::Guid},         {"INT", DataType::Long},
    {"INTEGER", DataType::Long},      {"INTEGER1", DataType::Byte},
    {"INTEGER2", DataType::Short},    {"INTEGER4", DataType::Long},
    {"LOGICAL", DataType::Bit},       {"LOGICAL1", DataType::Bit},
    {"LONG", DataType::Long},         {"LONGBINARY", DataType::Binary},
    {"LONGCHAR", DataType::Memo},     {"LONGTEXT", DataType::Memo},
    {"MEMO", DataType::Memo},         {"MONEY", DataType::Currency},
    {"NOTE", DataType::Memo},         {"NUMBER", DataType::Double},
    {"NUMERIC", DataType::Double},    {"REAL", DataType::Single},
    {"SHORT", DataType::Short},       {"SINGLE", DataType::Single},
    {"SMALLINT", DataType::Short},    {"STRING", DataType::Text},
    {"TEXT", DataType::Text},         {"TIME", DataType::Date},
    {"TIMESTAMP", DataType::Date},    {"VARBINARY", DataType::Binary},
    {"VARCHAR", DataType::Text},      {"YESNO", DataType::Bit},
});
static_assert(std::ranges::is_sorted(types, {}, &TypeWord::word));

} // namespace

std::optional<DataType> TypeOfWord(QStringView word) {
    const auto text = Capitals(word, 16);
    if (!text)
        return {};
    const auto found = std::ranges::lower_bound(types, std::string_view(*text), {}, &TypeWord::word);
    if (found == types.end() || found->word != *text)
        return {};
    return found->type;
}

TypeKind KindOf(DataType type) {
    switch (type) {
    case DataType::Unknown:
        return TypeKind::Unknown;
    case DataType::Date:
        return TypeKind::Date;
    case DataType::Text:
    case DataType::Memo:
    case DataType::Guid:
        return TypeKind::Text;
    case DataType::Binary:
        return TypeKind::Bytes;
    default:
        return TypeKind::Number;
    }
}

bool IsWholeNumber(DataType type) {
    return type == DataType::Byte || type == DataType::Short || type == DataType::Long ||
           type == DataType::Counter;
}

DataType CommonType(DataType a, DataType b) {
    if (a == b)
        return a;
    if (KindOf(a) != KindOf(b))
        return DataType::Unknown;
    if (KindOf(a) == TypeKind::Text)
        return a == DataType::Memo || b == DataType::Memo ? DataType::Memo : DataType::Text;
    const auto plain = [](DataType type) {
        if (type == DataType::Counter)
            return DataType::Long;
        return type == DataType::Bit ? DataType::Short : type;
    };
    const DataType left = plain(a);
    const DataType right = plain(b);
    if ((left == DataType::Single && right == DataType::Long) ||
        (right == DataType::Single && left == DataType::Long))
        return DataType::Double;
    if ((left == DataType::Currency && right < DataType::Currency && right >= DataType::Single) ||
        (right == DataType::Currency && left < DataType::Currency && left >= DataType::Single))
        return DataType::Double;
    return std::max(left, right);
}

} // namespace engine
