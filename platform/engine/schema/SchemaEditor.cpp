#include "platform/engine/schema/SchemaEditor.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Written.h"
#include "platform/engine/store/SqliteFailure.h"
#include "platform/engine/store/Statement.h"

#include <sqlite3.h>

#include <algorithm>

namespace engine {

namespace {

constexpr int maxColumns = 255;
constexpr int maxTextSize = 255;
constexpr int maxBinarySize = 510;

bool SameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool IsIndexed(const TableInfo& table, const QString& column) {
    return std::ranges::any_of(table.indexes, [&](const IndexInfo& index) {
        return index.columns.contains(column, Qt::CaseInsensitive);
    });
}

QStringList SameColumns(const TableInfo& table) {
    QStringList sources;
    for (const auto& column : table.columns) {
        const QString name = QuoteName(column.name);
        // Files of before may hold NULL where No is meant.
        sources += column.type == DataType::Bit ? QStringLiteral("ifnull(%1, 0)").arg(name) : name;
    }
    return sources;
}

void CheckColumn(const ColumnInfo& column) {
    const bool text = column.type == DataType::Text && (column.size < 1 || column.size > maxTextSize);
    if (text || (column.type == DataType::Binary && column.size > maxBinarySize))
        RaiseEngine(ColumnTooWide, column.name);
}

void CheckIndexNames(const TableInfo& table) {
    for (auto index = table.indexes.begin(); index != table.indexes.end(); ++index)
        if (!index->name.isEmpty() && std::any_of(table.indexes.begin(), index, [&](const auto& other) {
                return SameName(other.name, index->name);
            }))
            RaiseEngine(IndexExistsInTable, table.name, index->name);
}

// Rows that are there already are not looked at when a rule is added.
class RowsUnchecked {
public:
    RowsUnchecked(sqlite3* db, bool& rulesAreOff)
        : m_db(db)
        , m_rulesAreOff(rulesAreOff) {
        Set("PRAGMA ignore_check_constraints = ON");
    }
    ~RowsUnchecked() { m_rulesAreOff = Set("PRAGMA ignore_check_constraints = OFF") != SQLITE_OK; }
    RowsUnchecked(const RowsUnchecked&) = delete;
    RowsUnchecked& operator=(const RowsUnchecked&) = delete;

private:
    int Set(const char* pragma) { return sqlite3_exec(m_db, pragma, nullptr, nullptr, nullptr); }
    sqlite3* m_db;
    bool& m_rulesAreOff;
};

} // namespace

SchemaEditor::SchemaEditor(sqlite3* db, QString path, const FileCatalog& catalog, Counters& counters,
                           bool& rulesAreOff)
    : m_db(db)
    , m_path(std::move(path))
    , m_catalog(catalog)
    , m_counters(counters)
    , m_rulesAreOff(rulesAreOff) {
}

void SchemaEditor::Run(const QString& text) {
    // Where memory runs out SQLite can take back the transaction; what is written behind that would stand
    // alone.
    if (sqlite3_get_autocommit(m_db) != 0)
        runtime::Raise(runtime::OutOfMemory);
    Statement statement;
    int code = statement.Prepare(m_db, text);
    if (code == SQLITE_OK)
        code = statement.Step();
    if (code != SQLITE_DONE)
        throw FailureFrom(m_db, code, Doing::Define, m_path, m_table);
}

const Layout& SchemaEditor::LayoutOf(const QString& table, int missingNumber) const {
    const Layout* layout = m_catalog.FindLayout(table);
    if (layout == nullptr)
        RaiseEngine(missingNumber, table);
    return *layout;
}

void SchemaEditor::Apply(const SchemaChange& change) {
    m_table = change.table.name;
    switch (change.kind) {
    case SchemaChange::CreateTable:
        return CreateTable(change.table);
    case SchemaChange::DropTable:
        return DropTable(change.table.name);
    case SchemaChange::AddColumn:
        return AddColumn(change.table.name, change.column, change.index);
    case SchemaChange::DropColumn:
        return DropColumn(change.table.name, change.column.name);
    case SchemaChange::AlterColumn:
        return AlterColumn(change.table.name, change.column);
    case SchemaChange::CreateIndex:
        return CreateIndex(change.table.name, change.index);
    case SchemaChange::DropIndex:
        return DropIndex(change.table.name, change.index.name);
    }
}

void SchemaEditor::CreateTable(const TableInfo& table) {
    m_table = table.name;
    if (m_catalog.FindLayout(table.name) != nullptr)
        RaiseEngine(TableExists, table.name);
    if (table.columns.size() > maxColumns)
        RaiseEngine(SyntaxInCreateTable);
    for (auto column = table.columns.begin(); column != table.columns.end(); ++column) {
        CheckColumn(*column);
        if (std::any_of(table.columns.begin(), column,
                        [&](const auto& other) { return SameName(other.name, column->name); }))
            RaiseEngine(ColumnDefinedTwice);
    }
    if (std::ranges::count(table.columns, DataType::Counter, &ColumnInfo::type) > 1)
        RaiseEngine(SyntaxInColumnDefinition);
    if (std::ranges::count_if(table.indexes, &IndexInfo::primary) > 1)
        RaiseEngine(PrimaryKeyExists);

    CheckIndexNames(table);

    Layout layout(table);
    for (const auto& index : table.indexes)
        for (const QString& name : index.columns)
            if (layout.info.Find(name) < 0)
                RaiseEngine(ColumnNotFound, table.name, name);
    m_counters.Forget(table.name);
    Run(CreateTableText(layout, table.name));
    for (int place = 0; auto& index : layout.info.indexes) {
        ++place;
        if (index.primary)
            continue;
        if (index.name.isEmpty())
            index.name = QStringLiteral("Index%1").arg(place);
        Run(CreateIndexText(layout.info, index));
    }
}

void SchemaEditor::DropTable(const QString& name) {
    const Layout& layout = LayoutOf(name, TableNotFound);
    m_counters.Forget(layout.info.name);
    Run(QStringLiteral("DROP TABLE ") + QuoteName(layout.info.name));
}

void SchemaEditor::AddColumn(const QString& name, const ColumnInfo& column, const IndexInfo& unique) {
    const Layout& layout = LayoutOf(name, TableOrConstraintNotFound);
    CheckColumn(column);
    if (layout.info.Find(column.name) >= 0)
        RaiseEngine(ColumnExists, layout.info.name, column.name);
    if (layout.info.columns.size() >= maxColumns)
        RaiseEngine(SyntaxInAlterTable);
    Layout changed = layout;
    changed.info.columns.push_back(column);
    changed.requiredLater.push_back(column.required);
    if (column.type == DataType::Counter && layout.info.CounterColumn() >= 0)
        RaiseEngine(SyntaxInColumnDefinition);
    const bool plain = !column.unique && !column.required && column.type != DataType::Counter;
    if (plain) {
        const int place = static_cast<int>(changed.info.columns.size()) - 1;
        Run(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2")
                .arg(QuoteName(layout.info.name), ColumnText(changed, place)));
    } else {
        Rebuild(layout, changed,
                SameColumns(layout.info)
                    << (column.type == DataType::Bit ? QStringLiteral("0") : QStringLiteral("NULL")));
    }
    if (!unique.columns.isEmpty())
        Run(CreateIndexText(changed.info, unique));
}

void SchemaEditor::DropColumn(const QString& name, const QString& column) {
    const Layout& layout = LayoutOf(name, TableOrConstraintNotFound);
    const int place = layout.info.Find(column);
    if (place < 0)
        RaiseEngine(ColumnNotFound, layout.info.name, column);
    if (IsIndexed(layout.info, column))
        RaiseEngine(ColumnInIndex);
    if (layout.info.columns.size() == 1)
        RaiseEngine(SyntaxInAlterTable);
    Layout changed = layout;
    changed.info.columns.erase(changed.info.columns.begin() + place);
    changed.requiredLater.erase(changed.requiredLater.begin() + place);
    Rebuild(layout, changed, SameColumns(changed.info));
}

void SchemaEditor::AlterColumn(const QString& name, const ColumnInfo& column) {
    const Layout& layout = LayoutOf(name, TableOrConstraintNotFound);
    CheckColumn(column);
    const int place = layout.info.Find(column.name);
    if (place < 0)
        RaiseEngine(ColumnNotFound, layout.info.name, column.name);
    const auto at = static_cast<std::size_t>(place);
    const bool otherCounter = layout.info.CounterColumn() >= 0 && layout.info.CounterColumn() != place;
    if (column.type == DataType::Counter && otherCounter)
        RaiseEngine(SyntaxInColumnDefinition);
    Layout changed = layout;
    const ColumnInfo& old = layout.info.columns[at];
    changed.info.columns[at] = column;
    changed.info.columns[at].name = old.name;
    changed.info.columns[at].unique = old.unique || column.unique;
    changed.info.columns[at].allowZeroLength = old.allowZeroLength || column.allowZeroLength;
    changed.requiredLater[at] = column.required;
    QStringList sources = SameColumns(layout.info);
    QString message = layout.info.name + u'.' + old.name;
    sources[place] = QStringLiteral("zv_to(%1, %2, '%3', %4)")
                         .arg(static_cast<int>(column.type))
                         .arg(column.size)
                         .arg(message.replace(u'\'', QLatin1String("''")),
                              sql::Argument(sql::StoredValue(QuoteName(old.name), old.type, old.size)));
    Rebuild(layout, changed, sources);
}

void SchemaEditor::CreateIndex(const QString& name, const IndexInfo& index) {
    const Layout& layout = LayoutOf(name, UnknownTable);
    const bool exists = std::ranges::any_of(
        layout.info.indexes, [&](const auto& other) { return SameName(other.name, index.name); });
    if (exists && !index.name.isEmpty())
        RaiseEngine(IndexExistsInTable, layout.info.name, index.name);
    for (const QString& column : index.columns)
        if (layout.info.Find(column) < 0)
            RaiseEngine(ColumnNotFound, layout.info.name, column);
    if (!index.primary && !index.disallowNull)
        return Run(CreateIndexText(layout.info, index));
    if (index.primary && std::ranges::any_of(layout.info.indexes, &IndexInfo::primary))
        RaiseEngine(PrimaryKeyExists);
    CheckFilled(layout.info.name, index);
    Layout changed = layout;
    auto& indexes = changed.info.indexes;
    indexes.insert(index.primary ? indexes.begin() : indexes.end(), index);
    for (const QString& column : index.columns) {
        const auto place = static_cast<std::size_t>(layout.info.Find(column));
        if (index.disallowNull && !layout.info.columns[place].required) {
            changed.info.columns[place].required = true;
            changed.requiredLater[place] = true;
        }
    }
    Rebuild(layout, changed, SameColumns(layout.info));
}

void SchemaEditor::DropIndex(const QString& name, const QString& index) {
    const Layout& layout = LayoutOf(name, UnknownTable);
    const auto found = std::ranges::find_if(layout.info.indexes,
                                            [&](const auto& other) { return SameName(other.name, index); });
    if (found == layout.info.indexes.end())
        RaiseEngine(IndexNotFound, layout.info.name, index);
    Layout changed = layout;
    changed.info.indexes.erase(changed.info.indexes.begin() + (found - layout.info.indexes.begin()));
    Rebuild(layout, changed, SameColumns(layout.info));
}

void SchemaEditor::CheckFilled(const QString& table, const IndexInfo& index) const {
    QStringList missing;
    for (const QString& column : index.columns)
        missing += QuoteName(column) + QStringLiteral(" IS NULL");
    if (HasRow(QuoteName(table) + QStringLiteral(" WHERE ") + missing.join(QLatin1String(" OR "))))
        RaiseEngine(NullInKey);
}

QString SchemaEditor::UnusedName(const QString& table) const {
    // Two points: neither a table of the dialect nor an index of one bears such a name.
    QString name = table + QStringLiteral("..new");
    const auto isUsed = [&] {
        return HasRow(QStringLiteral("sqlite_schema WHERE lower(name) = lower('%1')")
                          .arg(QString(name).replace(u'\'', QLatin1String("''"))));
    };
    while (isUsed())
        name += u'.';
    return name;
}

bool SchemaEditor::HasRow(const QString& from) const {
    Statement any;
    int code = any.Prepare(m_db, QStringLiteral("SELECT 1 FROM ") + from + QStringLiteral(" LIMIT 1"));
    if (code == SQLITE_OK)
        code = any.Step();
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        throw FailureFrom(m_db, code, Doing::Define, m_path, m_table);
    return code == SQLITE_ROW;
}

void SchemaEditor::Rebuild(const Layout& old, const Layout& changed, const QStringList& sources) {
    const QString name = old.info.name;
    const std::int64_t last = old.info.CounterColumn() >= 0 ? m_counters.Last(name) : 0;
    const QString dropOld = QStringLiteral("DROP TABLE ") + QuoteName(name);
    if (!HasRow(QuoteName(name))) {
        Run(dropOld);
        Run(CreateTableText(changed, name));
    } else {
        const QString fresh = UnusedName(name);
        Run(CreateTableText(changed, fresh));
        {
            const RowsUnchecked unchecked(m_db, m_rulesAreOff);
            Run(QStringLiteral("INSERT INTO %1 SELECT %2 FROM %3 ORDER BY rowid")
                    .arg(QuoteName(fresh), sources.join(QLatin1String(", ")), QuoteName(name)));
        }
        Run(dropOld);
        Run(QStringLiteral("ALTER TABLE %1 RENAME TO %2").arg(QuoteName(fresh), QuoteName(name)));
    }
    for (const auto& index : changed.info.indexes)
        if (!index.primary)
            Run(CreateIndexText(changed.info, index));
    if (changed.info.CounterColumn() >= 0 && last > m_counters.Last(name))
        m_counters.SetLast(name, last);
}

void SchemaEditor::SetAllowZeroLength(const QString& table, const QString& column, bool allow) {
    const Layout& layout = LayoutOf(table, ItemNotFound);
    m_table = layout.info.name;
    const int place = layout.info.Find(column);
    if (place < 0)
        RaiseEngine(ItemNotFound);
    Layout changed = layout;
    changed.info.columns[static_cast<std::size_t>(place)].allowZeroLength = allow;
    Rebuild(layout, changed, SameColumns(layout.info));
}

} // namespace engine
