#include "platform/engine/sql/Plan.h"

#include "platform/engine/sql/Words.h"

#include <algorithm>

namespace engine::sql {

int TableInfo::Find(QStringView column) const {
    const auto found =
        std::ranges::find_if(columns, [&](const ColumnInfo& c) { return SameName(c.name, column); });
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

int TableInfo::RowIdColumn() const {
    const auto key = std::ranges::find_if(indexes, &IndexInfo::primary);
    if (key == indexes.end() || key->columns.size() != 1)
        return -1;
    const int column = Find(key->columns.front());
    if (column < 0)
        return -1;
    // SQLite keeps a primary key as the row number only if it is a 32-bit whole number.
    const DataType type = columns[static_cast<std::size_t>(column)].type;
    return type == DataType::Long || type == DataType::Counter ? column : -1;
}

} // namespace engine::sql
