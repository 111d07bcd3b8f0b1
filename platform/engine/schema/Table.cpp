#include "platform/engine/schema/Table.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"

#include <algorithm>
#include <utility>

namespace engine {

namespace {

constexpr std::size_t mostColumns = 255;

int PlaceOf(const auto& items, auto found) {
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

auto Named(auto& items, QStringView name) {
    return std::ranges::find_if(items, [name](const auto& item) { return SameName(item.name, name); });
}

ColumnInfo& ColumnOf(TableInfo& table, const QString& name) {
    const int place = table.Find(name);
    if (place < 0)
        RaiseEngine(ColumnNotFound, table.name, name);
    return table.At(place);
}

void CheckNewTable(TableInfo& table) {
    if (std::ranges::count(table.columns, DataType::Counter, &ColumnInfo::type) > 1)
        RaiseEngine(SyntaxInColumnDefinition);
    for (const IndexInfo& index : table.indexes)
        for (const QString& column : index.columns)
            ColumnOf(table, column);
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

void AddIndex(TableInfo& table, const IndexInfo& index) {
    for (const QString& column : index.columns)
        ColumnOf(table, column);
    if (table.FindIndex(index.name))
        RaiseEngine(IndexExistsInTable, table.name, index.name);
    if (index.primary && table.PrimaryKey())
        RaiseEngine(PrimaryKeyExists);
    table.indexes.push_back(index);
    for (const QString& name : index.columns)
        if (ColumnInfo& column = ColumnOf(table, name); index.disallowNull && !column.required)
            column.required = column.requiredLater = true;
}

void AddColumn(TableInfo& table, const ColumnInfo& column, const IndexInfo& unique) {
    if (table.Find(column.name) >= 0)
        RaiseEngine(ColumnExists, table.name, column.name);
    if (table.columns.size() >= mostColumns)
        RaiseEngine(SyntaxInAlterTable);
    table.columns.push_back(column);
    table.columns.back().requiredLater = column.required;
    if (!unique.columns.isEmpty())
        AddIndex(table, unique);
}

void AlterColumn(TableInfo& table, const ColumnInfo& column) {
    ColumnInfo& altered = ColumnOf(table, column.name);
    const ColumnInfo old = std::exchange(altered, column);
    altered.name = old.name;
    altered.unique = old.unique || column.unique;
    altered.allowZeroLength = old.allowZeroLength || column.allowZeroLength;
    altered.requiredLater = column.required;
}

void DropColumn(TableInfo& table, const QString& column) {
    const auto place = table.columns.begin() + (&ColumnOf(table, column) - table.columns.data());
    if (std::ranges::any_of(table.indexes, [&](auto& index) { return HasName(index.columns, column); }))
        RaiseEngine(ColumnInIndex);
    if (table.columns.size() == 1)
        RaiseEngine(SyntaxInAlterTable);
    table.columns.erase(place);
}

} // namespace

int TableInfo::Find(QStringView column) const {
    return PlaceOf(columns, Named(columns, column));
}

const IndexInfo* TableInfo::FindIndex(QStringView index) const {
    const auto found = Named(indexes, index);
    return found == indexes.end() ? nullptr : &*found;
}

const IndexInfo* TableInfo::PrimaryKey() const {
    const auto key = std::ranges::find_if(indexes, &IndexInfo::primary);
    return key == indexes.end() ? nullptr : &*key;
}

int TableInfo::KeyColumn() const {
    const IndexInfo* key = PrimaryKey();
    return key && key->columns.size() == 1 ? Find(key->columns.front()) : -1;
}

int TableInfo::CounterColumn() const {
    return PlaceOf(columns, std::ranges::find(columns, DataType::Counter, &ColumnInfo::type));
}

int TableInfo::RowNumberColumn() const {
    if (const int counter = CounterColumn(); counter >= 0)
        return counter;
    const int key = KeyColumn();
    return key >= 0 && IsWholeNumber(At(key).type) ? key : -1;
}

TableInfo Changed(const SchemaChange& change, const Catalog& catalog) {
    const TableInfo* old = catalog.FindTable(change.table.name);
    if (change.kind == SchemaChange::CreateTable) {
        if (old)
            RaiseEngine(TableExists, change.table.name);
        TableInfo table = change.table;
        CheckNewTable(table);
        return table;
    }
    if (!old && change.kind == SchemaChange::DropTable)
        RaiseEngine(TableNotFound, change.table.name);
    if (!old)
        RaiseEngine(TableOrConstraintNotFound);
    TableInfo table = *old;
    const ColumnInfo& column = change.column;
    const auto index = Named(table.indexes, change.index.name);
    switch (change.kind) {
    case SchemaChange::CreateTable:
    case SchemaChange::DropTable:
        break;
    case SchemaChange::AddColumn:
        AddColumn(table, column, change.index);
        break;
    case SchemaChange::DropColumn:
        DropColumn(table, column.name);
        break;
    case SchemaChange::AlterColumn:
        AlterColumn(table, column);
        break;
    case SchemaChange::AllowZeroLength:
        if (table.Find(column.name) < 0)
            RaiseEngine(ItemNotFound);
        ColumnOf(table, column.name).allowZeroLength = column.allowZeroLength;
        break;
    case SchemaChange::CreateIndex:
        AddIndex(table, change.index);
        break;
    case SchemaChange::DropIndex:
        if (index == table.indexes.end())
            RaiseEngine(IndexNotFound, table.name, change.index.name);
        table.indexes.erase(index);
        break;
    }
    if (column.type == DataType::Counter &&
        std::ranges::count(table.columns, DataType::Counter, &ColumnInfo::type) > 1)
        RaiseEngine(SyntaxInColumnDefinition);
    return table;
}

} // namespace engine
