#pragma once

#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/Table.h"

#include <optional>

namespace engine {

/// How a table stands in the file. What the dialect declares and SQLite has no word for (SHORT, TEXT(50), the
/// refusal of the empty text) is a named CHECK constraint, which enforces it and from which it is read back.
struct Layout {
    TableInfo info;
    /// For each column: NOT NULL came after rows without a value, and is a CHECK that new values have to
    /// meet.
    std::vector<bool> requiredLater;

    explicit Layout(TableInfo table = {});
};

/// The text that makes the table under `name`. The secondary indexes are not in it.
QString CreateTableText(const Layout& layout, const QString& name);
/// The definition of one column that is no part of a key, as ALTER TABLE ADD COLUMN takes it.
QString ColumnText(const Layout& layout, int column);
/// CREATE INDEX; names of indexes are unique within the table alone, so the table stands in front.
QString CreateIndexText(const TableInfo& table, const IndexInfo& index);
QString FileIndexName(const QString& table, const QString& index);

/// What the constraint names of a CREATE TABLE text tell.
struct Declarations {
    QStringList checks; ///< names of CHECK constraints: "column declaration"
    struct Key {
        QString name;
        QStringList columns;
    };
    std::vector<Key> keys; ///< named PRIMARY KEY and UNIQUE constraints
};
/// Reads any text without failing; what it does not know it passes over.
Declarations ReadDeclarations(QStringView createTable);

/// Puts type, size and the like into a column of that name, as far as the constraints tell. True if they tell
/// its type.
bool ApplyDeclarations(ColumnInfo& column, const QStringList& checks, bool& requiredLater);

/// What a primary key without a name of its own is called.
inline constexpr QStringView namelessKey = u"PrimaryKey";

/// The counter of a table whose key it is not carries this note.
inline constexpr QStringView noteNotKey = u"NotKey";

/// The name of a UNIQUE constraint that stands for a primary key beside a counter begins so.
inline constexpr QStringView primaryKeyMark = u"PRIMARY KEY ";

} // namespace engine
