#include "platform/engine/sql/SchemaCheck.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"

#include <algorithm>

namespace engine::sql {

namespace {

bool HasIndex(const TableInfo& table, const QString& name) {
    return std::ranges::any_of(table.indexes,
                               [&](const IndexInfo& index) { return SameName(index.name, name); });
}

void CheckColumns(const TableInfo& table, const QStringList& columns) {
    for (const QString& column : columns) {
        if (table.Find(column) < 0)
            RaiseEngine(ColumnNotFound, table.name, column);
    }
}

void CheckNewTable(const TableInfo& table, const Catalog& catalog) {
    if (catalog.FindTable(table.name))
        RaiseEngine(TableExists, table.name);
    int counters = 0;
    for (const ColumnInfo& column : table.columns)
        counters += column.type == DataType::Counter ? 1 : 0;
    if (counters > 1)
        RaiseEngine(SyntaxInColumnDefinition);
    for (const IndexInfo& index : table.indexes)
        CheckColumns(table, index.columns);
}

void CheckNewIndex(const TableInfo& table, const IndexInfo& index) {
    CheckColumns(table, index.columns);
    if (HasIndex(table, index.name))
        RaiseEngine(IndexExistsInTable, table.name, index.name);
    if (index.primary && std::ranges::any_of(table.indexes, &IndexInfo::primary))
        RaiseEngine(PrimaryKeyExists);
}

} // namespace

void CheckSchemaChange(const SchemaChange& change, const Catalog& catalog) {
    if (change.kind == SchemaChange::CreateTable) {
        CheckNewTable(change.table, catalog);
        return;
    }
    const TableInfo* table = catalog.FindTable(change.table.name);
    if (!table && change.kind == SchemaChange::DropTable)
        RaiseEngine(TableNotFound, change.table.name);
    if (!table)
        RaiseEngine(TableOrConstraintNotFound);
    switch (change.kind) {
    case SchemaChange::AddColumn:
        if (table->Find(change.column.name) >= 0)
            RaiseEngine(ColumnExists, table->name, change.column.name);
        break;
    case SchemaChange::DropColumn:
    case SchemaChange::AlterColumn:
        CheckColumns(*table, {change.column.name});
        break;
    case SchemaChange::CreateIndex:
        CheckNewIndex(*table, change.index);
        break;
    case SchemaChange::DropIndex:
        if (!HasIndex(*table, change.index.name))
            RaiseEngine(IndexNotFound, table->name, change.index.name);
        break;
    default:
        break;
    }
}

} // namespace engine::sql
