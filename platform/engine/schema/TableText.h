#pragma once

#include "platform/engine/schema/Table.h"

namespace engine {

// How a table stands in the file. What the dialect declares and SQLite has no word for (SHORT, TEXT(50), the
// refusal of the empty text) is a named CHECK constraint, which enforces it and from which it is read back.

/// The text that makes the table under `name`. The secondary indexes are not in it.
QString CreateTableText(const TableInfo& table, const QString& name);
/// The definition of one column that is no part of a key, as ALTER TABLE ADD COLUMN takes it.
QString ColumnText(const TableInfo& table, int column);
/// CREATE INDEX; names of indexes are unique within the table alone, so the table stands in front.
QString CreateIndexText(const TableInfo& table, const IndexInfo& index);
QString FileIndexName(const QString& table, const QString& index);

/// What the constraint names of a CREATE TABLE text tell, whatever the text.
class Declarations {
public:
    explicit Declarations(const QString& createTable);

    /// Puts type, size and the like into a column, by its name.
    void Apply(ColumnInfo& column) const;
    /// Name of the PRIMARY KEY or UNIQUE constraint over these columns; empty if it has none.
    QString KeyName(const QStringList& columns) const;
    /// Whether the counter is not the key of its table.
    bool IsNotKey(const ColumnInfo& counter) const;

private:
    struct Key {
        QString name;
        QStringList columns;
    };

    QStringList m_checks; ///< names of CHECK constraints: "column declaration"
    std::vector<Key> m_keys;
};

/// What a primary key without a name of its own is called.
inline constexpr QStringView namelessKey = u"PrimaryKey";

/// The name of a UNIQUE constraint that stands for a primary key beside a counter begins so.
inline constexpr QStringView primaryKeyMark = u"PRIMARY KEY ";

} // namespace engine
