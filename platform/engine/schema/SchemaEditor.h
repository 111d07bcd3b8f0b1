#pragma once

#include "platform/engine/schema/FileCatalog.h"
#include "platform/engine/store/Counters.h"

namespace engine {

/// Carries out schema statements. Whatever SQLite's own ALTER TABLE cannot do is done by making the table
/// anew from its changed definition. The caller holds the write lock and a savepoint: after a failure it
/// takes all back.
class SchemaEditor {
public:
    /// `rulesAreOff` is set where memory ran out just as the rules for rows were to be looked at again.
    SchemaEditor(sqlite3* db, QString path, const FileCatalog& catalog, Counters& counters,
                 bool& rulesAreOff);

    void Apply(const SchemaChange& change);
    /// Makes a table that must not exist; 3010 if it does.
    void CreateTable(const TableInfo& table);
    void SetAllowZeroLength(const QString& table, const QString& column, bool allow);

private:
    void DropTable(const QString& name);
    /// `unique`: a constraint of the column that bears a name, or one without columns.
    void AddColumn(const QString& name, const ColumnInfo& column, const IndexInfo& unique);
    void DropColumn(const QString& name, const QString& column);
    void AlterColumn(const QString& name, const ColumnInfo& column);
    void CreateIndex(const QString& name, const IndexInfo& index);
    void DropIndex(const QString& name, const QString& index);

    const Layout& LayoutOf(const QString& table, int missingNumber) const;
    /// Makes the table anew; `sources` tells for each new column the expression over the old one.
    void Rebuild(const Layout& old, const Layout& changed, const QStringList& sources);
    /// Failure 3058 if a row of the table holds NULL in a column of the index.
    void CheckFilled(const QString& table, const IndexInfo& index) const;
    /// A name for the table while it is made anew.
    QString UnusedName(const QString& table) const;
    bool HasRow(const QString& from) const;
    void Run(const QString& text);

    sqlite3* m_db;
    QString m_path;
    const FileCatalog& m_catalog;
    Counters& m_counters;
    bool& m_rulesAreOff;
    QString m_table; ///< the one at work, for messages
};

} // namespace engine
