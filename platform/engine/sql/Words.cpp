#include "platform/engine/sql/Words.h"

#include "platform/engine/schema/Names.h"

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

} // namespace

bool IsReserved(QStringView word) {
    const auto text = Capitals(word, longestReserved);
    return text && std::ranges::binary_search(reserved, std::string_view(*text));
}

} // namespace engine::sql
