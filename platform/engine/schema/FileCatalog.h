#pragma once

#include "platform/engine/schema/Table.h"

namespace engine {

class Sqlite;

/// The tables of an open file, read when they are first asked for. Only plain tables are seen: no views, no
/// virtual tables, nothing of SQLite's own. Failures as any reading of the file.
class FileCatalog : public Catalog {
public:
    explicit FileCatalog(const Sqlite& db)
        : m_db(db) {}

    const TableInfo* FindTable(QStringView name) const override;
    QStringList TableNames() const;
    /// The statements that give the file the look-ups that it lacks.
    QStringList MissingLookUps() const;

    /// Forgets what was read: the schema has changed.
    void Drop() noexcept;

private:
    struct Entry {
        QString name;
        QString text;
        std::optional<TableInfo> table;
    };

    void ReadNames() const;

    const Sqlite& m_db;
    mutable bool m_read = false;
    mutable std::vector<Entry> m_tables;
};

} // namespace engine
