#include "platform/engine/schema/Table.h"

#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Types.h"

#include <algorithm>

namespace engine {

int TableInfo::Find(QStringView column) const {
    const auto found =
        std::ranges::find_if(columns, [&](const ColumnInfo& c) { return SameName(c.name, column); });
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

const IndexInfo* TableInfo::PrimaryKey() const {
    const auto key = std::ranges::find_if(indexes, &IndexInfo::primary);
    return key == indexes.end() ? nullptr : &*key;
}

int TableInfo::CounterColumn() const {
    const auto found = std::ranges::find(columns, DataType::Counter, &ColumnInfo::type);
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

int TableInfo::RowNumberColumn() const {
    if (const int counter = CounterColumn(); counter >= 0)
        return counter;
    const IndexInfo* key = PrimaryKey();
    if (!key || key->columns.size() != 1)
        return -1;
    const int column = Find(key->columns.front());
    return column >= 0 && IsWholeNumber(columns[static_cast<std::size_t>(column)].type) ? column : -1;
}

} // namespace engine
