#pragma once

#include "platform/engine/schema/Table.h"

namespace engine {

class Sqlite;

// How a table stands in the file. What the dialect declares and SQLite has no word for (SHORT, TEXT(50), the
// refusal of the empty text) is a named CHECK constraint, which enforces it and from which it is read back.

/// The text that makes the table under `name`. The secondary indexes are not in it.
QString CreateTableText(const TableInfo& table, const QString& name);
/// The definition of one column that is no part of a key, as ALTER TABLE ADD COLUMN takes it.
QString ColumnText(const TableInfo& table, int column);
QString CreateIndexText(const TableInfo& table, const IndexInfo& index);

/// A table of the file, whoever made it; `text` is its CREATE TABLE there.
TableInfo ReadTable(const Sqlite& db, const QString& name, const QString& text);

} // namespace engine
