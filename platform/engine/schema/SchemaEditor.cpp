#include "platform/engine/schema/SchemaEditor.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/TableText.h"
#include "platform/engine/sql/Written.h"
#include "platform/engine/store/Sqlite.h"
#include "platform/engine/store/Statement.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

/// Every column from the one of its name.
QStringList SameColumns(const TableInfo& table) {
    QStringList sources;
    for (const ColumnInfo& column : table.columns) {
        const QString name = QuoteName(column.name);
        // Files of before may hold NULL where No is meant.
        sources += column.type == DataType::Bit ? u"ifnull(%1, 0)"_s.arg(name) : name;
    }
    return sources;
}

// Rows that are there already are not looked at when a rule is added.
class RowsUnchecked {
public:
    RowsUnchecked(const Sqlite& db, bool& rulesAreOff)
        : m_db(db)
        , m_rulesAreOff(rulesAreOff) {
        m_db.Try("PRAGMA ignore_check_constraints = ON");
    }
    ~RowsUnchecked() { m_rulesAreOff = m_db.Try("PRAGMA ignore_check_constraints = OFF") != SQLITE_OK; }
    RowsUnchecked(const RowsUnchecked&) = delete;
    RowsUnchecked& operator=(const RowsUnchecked&) = delete;

private:
    const Sqlite& m_db;
    bool& m_rulesAreOff;
};

} // namespace

SchemaEditor::SchemaEditor(const Sqlite& db, const FileCatalog& catalog, Counters& counters,
                           bool& rulesAreOff)
    : m_db(db)
    , m_catalog(catalog)
    , m_counters(counters)
    , m_rulesAreOff(rulesAreOff) {
}

void SchemaEditor::Run(const QString& text) {
    // Where memory runs out SQLite can take back the transaction; what is written behind that would stand
    // alone.
    if (!m_db.InTransaction())
        runtime::Raise(runtime::OutOfMemory);
    Statement(m_db, text, Doing::Define, m_table).Next();
}

void SchemaEditor::Apply(const SchemaChange& change) {
    CheckChange(change, m_catalog);
    m_table = change.table.name;
    if (change.kind == SchemaChange::CreateTable)
        return CreateTable(change.table);
    const TableInfo& table = *m_catalog.FindTable(change.table.name);
    switch (change.kind) {
    case SchemaChange::CreateTable:
        break;
    case SchemaChange::DropTable:
        return DropTable(table);
    case SchemaChange::AddColumn:
        return AddColumn(table, change.column, change.index);
    case SchemaChange::DropColumn:
        return DropColumn(table, change.column.name);
    case SchemaChange::AlterColumn:
        return AlterColumn(table, change.column);
    case SchemaChange::AllowZeroLength:
        return AllowZeroLength(table, change.column);
    case SchemaChange::CreateIndex:
        return CreateIndex(table, change.index);
    case SchemaChange::DropIndex:
        return DropIndex(table, change.index.name);
    }
}

void SchemaEditor::CreateTable(const TableInfo& table) {
    m_counters.Forget(table.name);
    Run(CreateTableText(table, table.name));
    CreateIndexes(table);
}

void SchemaEditor::DropTable(const TableInfo& table) {
    m_counters.Forget(table.name);
    Run(u"DROP TABLE "_s + QuoteName(table.name));
}

void SchemaEditor::AddColumn(const TableInfo& table, const ColumnInfo& column, const IndexInfo& unique) {
    TableInfo changed = table;
    changed.columns.push_back(column);
    changed.columns.back().requiredLater = column.required;
    const int place = static_cast<int>(table.columns.size());
    if (!column.unique && !column.required && column.type != DataType::Counter)
        Run(u"ALTER TABLE %1 ADD COLUMN %2"_s.arg(QuoteName(table.name), ColumnText(changed, place)));
    else
        Rebuild(table, changed, SameColumns(table) << (column.type == DataType::Bit ? u"0"_s : u"NULL"_s));
    if (!unique.columns.isEmpty())
        Run(CreateIndexText(changed, unique));
}

void SchemaEditor::DropColumn(const TableInfo& table, const QString& column) {
    TableInfo changed = table;
    changed.columns.erase(changed.columns.begin() + table.Find(column));
    Rebuild(table, changed, SameColumns(changed));
}

void SchemaEditor::AlterColumn(const TableInfo& table, const ColumnInfo& column) {
    const int place = table.Find(column.name);
    const ColumnInfo& old = table.At(place);
    TableInfo changed = table;
    ColumnInfo& altered = changed.At(place) = column;
    altered.name = old.name;
    altered.unique = old.unique || column.unique;
    altered.allowZeroLength = old.allowZeroLength || column.allowZeroLength;
    altered.requiredLater = column.required;
    QStringList sources = SameColumns(table);
    sources[place] = u"zv_to(%1, %2, '', %3)"_s.arg(static_cast<int>(column.type))
                         .arg(column.size)
                         .arg(sql::Argument(sql::StoredValue(QuoteName(old.name), old.type, old.size)));
    Rebuild(table, changed, sources);
}

void SchemaEditor::AllowZeroLength(const TableInfo& table, const ColumnInfo& column) {
    TableInfo changed = table;
    changed.At(table.Find(column.name)).allowZeroLength = column.allowZeroLength;
    Rebuild(table, changed, SameColumns(table));
}

void SchemaEditor::CreateIndex(const TableInfo& table, const IndexInfo& index) {
    if (!index.primary && !index.disallowNull)
        return Run(CreateIndexText(table, index));
    CheckFilled(table, index);
    TableInfo changed = table;
    changed.indexes.insert(index.primary ? changed.indexes.begin() : changed.indexes.end(), index);
    for (const QString& name : index.columns)
        if (ColumnInfo& column = changed.At(table.Find(name)); index.disallowNull && !column.required)
            column.required = column.requiredLater = true;
    Rebuild(table, changed, SameColumns(table));
}

void SchemaEditor::DropIndex(const TableInfo& table, const QString& index) {
    TableInfo changed = table;
    changed.indexes.erase(changed.indexes.begin() + (table.FindIndex(index) - table.indexes.data()));
    Rebuild(table, changed, SameColumns(table));
}

void SchemaEditor::CheckFilled(const TableInfo& table, const IndexInfo& index) const {
    QStringList missing;
    for (const QString& column : index.columns)
        missing += QuoteName(column) + u" IS NULL"_s;
    if (HasRow(QuoteName(table.name) + u" WHERE "_s + missing.join(u" OR "_s)))
        RaiseEngine(NullInKey);
}

QString SchemaEditor::UnusedName(const QString& table) const {
    Statement used(m_db, u"SELECT 1 FROM sqlite_schema WHERE name = ?1 COLLATE NOCASE", Doing::Define,
                   m_table);
    // Two points: neither a table of the dialect nor an index of one bears such a name.
    QString name = table + u"..new"_s;
    for (used.BindText(1, name); used.Next(); used.BindText(1, name)) {
        used.Reset();
        name += u'.';
    }
    return name;
}

bool SchemaEditor::HasRow(const QString& from) const {
    return Statement(m_db, u"SELECT 1 FROM "_s + from + u" LIMIT 1"_s, Doing::Define, m_table).Next();
}

void SchemaEditor::Rebuild(const TableInfo& old, const TableInfo& changed, const QStringList& sources) {
    const QString name = QuoteName(old.name);
    const std::int64_t last = old.CounterColumn() >= 0 ? m_counters.Last(old.name) : 0;
    if (!HasRow(name)) {
        Run(u"DROP TABLE "_s + name);
        Run(CreateTableText(changed, old.name));
    } else {
        const QString fresh = UnusedName(old.name);
        Run(CreateTableText(changed, fresh));
        {
            const RowsUnchecked unchecked(m_db, m_rulesAreOff);
            Run(u"INSERT INTO %1 SELECT %2 FROM %3 ORDER BY rowid"_s.arg(QuoteName(fresh),
                                                                         sources.join(u", "_s), name));
        }
        Run(u"DROP TABLE "_s + name);
        Run(u"ALTER TABLE %1 RENAME TO %2"_s.arg(QuoteName(fresh), name));
    }
    CreateIndexes(changed);
    if (changed.CounterColumn() >= 0 && last > m_counters.Last(old.name))
        m_counters.SetLast(old.name, last);
}

void SchemaEditor::CreateIndexes(const TableInfo& table) {
    for (const IndexInfo& index : table.indexes)
        if (!index.primary)
            Run(CreateIndexText(table, index));
}

} // namespace engine
