#include "platform/engine/schema/Table.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"

#include <algorithm>

namespace engine {

namespace {

constexpr std::size_t mostColumns = 255;

template <class Items>
auto Named(Items& items, QStringView name) {
    return std::ranges::find_if(items, [&](const auto& item) { return SameName(item.name, name); });
}

void CheckColumns(const TableInfo& table, const QStringList& columns) {
    for (const QString& column : columns)
        if (table.Find(column) < 0)
            RaiseEngine(ColumnNotFound, table.name, column);
}

void CheckNewTable(const TableInfo& table, const Catalog& catalog) {
    if (catalog.FindTable(table.name))
        RaiseEngine(TableExists, table.name);
    if (std::ranges::count(table.columns, DataType::Counter, &ColumnInfo::type) > 1)
        RaiseEngine(SyntaxInColumnDefinition);
    for (const IndexInfo& index : table.indexes)
        CheckColumns(table, index.columns);
    if (table.columns.size() > mostColumns)
        RaiseEngine(SyntaxInCreateTable);
    // Those of a copied table may come out of a strange file.
    for (const ColumnInfo& column : table.columns)
        if ((column.type == DataType::Text && column.size > longestText) ||
            (column.type == DataType::Binary && column.size > longestBinary))
            RaiseEngine(ColumnTooWide, column.name);
    for (const IndexInfo& index : table.indexes)
        if (!index.name.isEmpty() && table.FindIndex(index.name) != &index)
            RaiseEngine(IndexExistsInTable, table.name, index.name);
}

void CheckNewIndex(const TableInfo& table, const IndexInfo& index) {
    CheckColumns(table, index.columns);
    if (table.FindIndex(index.name))
        RaiseEngine(IndexExistsInTable, table.name, index.name);
    if (index.primary && table.PrimaryKey())
        RaiseEngine(PrimaryKeyExists);
}

void CheckNewColumn(const TableInfo& table, const SchemaChange& change) {
    if (table.Find(change.column.name) >= 0)
        RaiseEngine(ColumnExists, table.name, change.column.name);
    if (table.columns.size() >= mostColumns)
        RaiseEngine(SyntaxInAlterTable);
    if (!change.index.columns.isEmpty() && table.FindIndex(change.index.name))
        RaiseEngine(IndexExistsInTable, table.name, change.index.name);
}

void CheckGoingColumn(const TableInfo& table, const QString& column) {
    const auto holds = [&](const IndexInfo& index) { return HasName(index.columns, column); };
    if (std::ranges::any_of(table.indexes, holds))
        RaiseEngine(ColumnInIndex);
    if (table.columns.size() == 1)
        RaiseEngine(SyntaxInAlterTable);
}

} // namespace

int TableInfo::Find(QStringView column) const {
    const auto found = Named(columns, column);
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

const IndexInfo* TableInfo::FindIndex(QStringView index) const {
    const auto found = Named(indexes, index);
    return found == indexes.end() ? nullptr : &*found;
}

const IndexInfo* TableInfo::PrimaryKey() const {
    const auto key = std::ranges::find_if(indexes, &IndexInfo::primary);
    return key == indexes.end() ? nullptr : &*key;
}

bool TableInfo::IsKey(int column) const {
    const IndexInfo* key = PrimaryKey();
    return key && key->columns.size() == 1 && Find(key->columns.front()) == column;
}

int TableInfo::CounterColumn() const {
    const auto found = std::ranges::find(columns, DataType::Counter, &ColumnInfo::type);
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

int TableInfo::RowNumberColumn() const {
    if (const int counter = CounterColumn(); counter >= 0)
        return counter;
    const auto isKey = [&](const ColumnInfo& column) {
        return IsWholeNumber(column.type) && IsKey(static_cast<int>(&column - columns.data()));
    };
    const auto found = std::ranges::find_if(columns, isKey);
    return found == columns.end() ? -1 : static_cast<int>(found - columns.begin());
}

void CheckChange(const SchemaChange& change, const Catalog& catalog) {
    if (change.kind == SchemaChange::CreateTable)
        return CheckNewTable(change.table, catalog);
    const TableInfo* table = catalog.FindTable(change.table.name);
    if (!table && change.kind == SchemaChange::DropTable)
        RaiseEngine(TableNotFound, change.table.name);
    if (!table)
        RaiseEngine(TableOrConstraintNotFound);
    const int counter = table->CounterColumn();
    const int place = table->Find(change.column.name);
    const bool secondCounter = change.column.type == DataType::Counter && counter >= 0 && counter != place;
    switch (change.kind) {
    case SchemaChange::AddColumn:
        CheckNewColumn(*table, change);
        break;
    case SchemaChange::DropColumn:
        CheckColumns(*table, {change.column.name});
        CheckGoingColumn(*table, change.column.name);
        break;
    case SchemaChange::AlterColumn:
        CheckColumns(*table, {change.column.name});
        break;
    case SchemaChange::AllowZeroLength:
        if (place < 0)
            RaiseEngine(ItemNotFound);
        break;
    case SchemaChange::CreateIndex:
        CheckNewIndex(*table, change.index);
        break;
    case SchemaChange::DropIndex:
        if (!table->FindIndex(change.index.name))
            RaiseEngine(IndexNotFound, table->name, change.index.name);
        break;
    default:
        break;
    }
    if (secondCounter)
        RaiseEngine(SyntaxInColumnDefinition);
}

} // namespace engine
