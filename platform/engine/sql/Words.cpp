#include "platform/engine/sql/Words.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace engine::sql {

namespace {

// In order of the alphabet.
constexpr auto reserved = std::to_array<std::string_view>({
    "ALL",        "ALTER",  "AND",     "ANY",      "AS",          "ASC",    "BETWEEN", "BY",     "CONSTRAINT",
    "CREATE",     "DELETE", "DESC",    "DISTINCT", "DISTINCTROW", "DROP",   "EQV",     "EXISTS", "FALSE",
    "FROM",       "GROUP",  "HAVING",  "IMP",      "IN",          "INNER",  "INSERT",  "INTO",   "IS",
    "JOIN",       "LEFT",   "LIKE",    "MOD",      "NOT",         "NULL",   "ON",      "OR",     "ORDER",
    "PARAMETERS", "PIVOT",  "PRIMARY", "RIGHT",    "SELECT",      "SET",    "SOME",    "TABLE",  "TOP",
    "TRANSFORM",  "TRUE",   "UNION",   "UNIQUE",   "UPDATE",      "VALUES", "WHERE",   "WITH",   "XOR",
});
static_assert(std::ranges::is_sorted(reserved));
constexpr std::size_t longestReserved = 11;

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

/// The word in capitals, or nothing for one that no table can hold.
std::optional<std::string> Capitals(QStringView word, std::size_t longest) {
    if (static_cast<std::size_t>(word.size()) > longest)
        return {};
    std::string text;
    for (const QChar c : word) {
        if (c.unicode() >= 0x80)
            return {};
        text +=
            static_cast<char>(c.unicode() >= u'a' && c.unicode() <= u'z' ? c.unicode() - 0x20 : c.unicode());
    }
    return text;
}

} // namespace

bool IsReserved(QStringView word) {
    const auto text = Capitals(word, longestReserved);
    return text && std::ranges::binary_search(reserved, std::string_view(*text));
}

std::optional<DataType> TypeOfWord(QStringView word) {
    const auto text = Capitals(word, 16);
    if (!text)
        return {};
    const auto found = std::ranges::lower_bound(types, std::string_view(*text), {}, &TypeWord::word);
    if (found == types.end() || found->word != *text)
        return {};
    return found->type;
}

bool IsValidName(QStringView name) {
    constexpr qsizetype longestName = 64;
    const auto forbidden = [](QChar c) { return QStringView(u".![]`").contains(c) || c.unicode() < u' '; };
    return name.size() <= longestName && !name.startsWith(u' ') && std::ranges::none_of(name, forbidden);
}

bool SameName(QStringView a, QStringView b) {
    return a.size() == b.size() && a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace engine::sql
