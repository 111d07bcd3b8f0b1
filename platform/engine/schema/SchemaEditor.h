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
    SchemaEditor(const Sqlite& db, const FileCatalog& catalog, Counters& counters, bool& rulesAreOff);

    /// Checks the change and makes it; failures as Changed.
    void Apply(const SchemaChange& change);

private:
    /// Makes the table anew; `sources` tells for each new column the expression over the old one.
    void Rebuild(const TableInfo& old, const TableInfo& changed, const QStringList& sources);
    void CreateIndexes(const TableInfo& table);
    /// Failure 3058 if a row of the table holds NULL in a column of the index.
    void CheckFilled(const TableInfo& table, const IndexInfo& index) const;
    /// A name for the table while it is made anew.
    QString UnusedName(const QString& table) const;
    bool HasRow(const QString& from) const;
    void Run(const QString& text);

    const Sqlite& m_db;
    const FileCatalog& m_catalog;
    Counters& m_counters;
    bool& m_rulesAreOff;
    QString m_table; ///< the one at work, for messages
};

} // namespace engine
