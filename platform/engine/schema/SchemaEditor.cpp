#include "platform/engine/schema/SchemaEditor.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/TableText.h"
#include "platform/engine/sql/Writer.h"
#include "platform/engine/store/Sqlite.h"
#include "platform/engine/store/Statement.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

/// For each column of the changed table the expression over the old one; `altered` is the column that is
/// converted.
QStringList Sources(const TableInfo& old, const TableInfo& changed, const ColumnInfo* altered) {
    QStringList sources;
    for (const ColumnInfo& column : changed.columns) {
        const QString name = QuoteName(column.name);
        const auto before = std::ranges::find(old.columns, column.name, &ColumnInfo::name);
        const bool truth = column.type == DataType::Bit;
        if (before == old.columns.end())
            sources += truth ? u"0"_s : u"NULL"_s;
        else if (&*before == altered)
            sources += u"zv_to(%1, %2, '', %3)"_s.arg(static_cast<int>(column.type))
                           .arg(column.size)
                           .arg(sql::Writer().Text(
                               sql::Argument(sql::StoredValue(name, before->type, before->size))));
        else // files of before may hold NULL where No is meant
            sources += truth ? u"ifnull(%1, 0)"_s.arg(name) : name;
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
    const TableInfo changed = Changed(change, m_catalog);
    const ColumnInfo& column = change.column;
    const IndexInfo& index = change.index;
    const QString name = QuoteName(changed.name);
    m_table = change.table.name;
    if (change.kind == SchemaChange::CreateTable) {
        m_counters.Forget(changed.name);
        Run(CreateTableText(changed, changed.name));
        CreateIndexes(changed);
    } else if (change.kind == SchemaChange::DropTable) {
        m_counters.Forget(changed.name);
        Run(u"DROP TABLE "_s + name);
    } else if (change.kind == SchemaChange::CreateIndex && !index.primary && !index.disallowNull) {
        Run(CreateIndexText(changed, index));
    } else if (change.kind == SchemaChange::AddColumn && !column.unique && !column.required &&
               column.type != DataType::Counter) {
        const int place = static_cast<int>(changed.columns.size()) - 1;
        Run(u"ALTER TABLE %1 ADD COLUMN %2"_s.arg(name, ColumnText(changed, place)));
        if (!index.columns.isEmpty())
            Run(CreateIndexText(changed, index));
    } else {
        const TableInfo& old = *m_catalog.FindTable(changed.name);
        const bool alters = change.kind == SchemaChange::AlterColumn;
        if (change.kind == SchemaChange::CreateIndex)
            CheckFilled(old, index);
        Rebuild(old, changed, Sources(old, changed, alters ? &old.At(old.Find(column.name)) : nullptr));
    }
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
