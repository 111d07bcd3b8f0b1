#pragma once

#include "platform/engine/schema/Layout.h"

#include <QHash>

#include <memory>

struct sqlite3;

namespace engine {

/// The tables of an open file, read when they are first asked for. Only plain tables are seen: no views, no
/// virtual tables, nothing of SQLite's own.
class FileCatalog : public Catalog {
public:
    FileCatalog(sqlite3* db, QString path);

    const TableInfo* FindTable(QStringView name) const override;
    /// Failures as any reading of the file.
    const Layout* FindLayout(QStringView name) const;
    QStringList TableNames() const;

    /// Forgets what was read: the schema has changed.
    void Drop() noexcept;

private:
    struct Entry {
        QString name;
        QString text;
        std::unique_ptr<Layout> layout;
    };

    void ReadNames() const;
    Layout Read(const Entry& entry) const;
    void ReadColumns(Layout& layout, const QString& text, QStringList& primaryKey,
                     const Declarations& declarations) const;
    void ReadIndexes(Layout& layout, const QStringList& primaryKey, const Declarations& declarations) const;
    [[noreturn]] void Raise(int code) const;

    sqlite3* m_db;
    QString m_path;
    mutable bool m_read = false;
    mutable std::vector<Entry> m_tables;
};

} // namespace engine
