#include "platform/engine/schema/FileCatalog.h"

#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/TableText.h"
#include "platform/engine/store/Sqlite.h"
#include "platform/engine/store/Statement.h"

#include <algorithm>

namespace engine {

namespace {

/// Whether a column's definition, in a text of ours, does not say NOT NULL: SQLite itself implies it in a
/// key.
bool IsImplied(const QString& createTable, const QString& column, const QString& type) {
    const QString start = QuoteName(column) + u' ' + type;
    return createTable.contains(start) && !createTable.contains(start + QLatin1String(" NOT NULL"));
}

} // namespace

void FileCatalog::Drop() noexcept {
    m_read = false;
    m_tables.clear();
}

void FileCatalog::ReadNames() const {
    if (m_read)
        return;
    // A virtual table has no page of its own.
    Statement names(m_db, u"SELECT name, sql FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE "
                          u"'sqlite\\_%' ESCAPE '\\' AND rootpage <> 0 ORDER BY rowid");
    std::vector<Entry> tables;
    while (names.Next())
        tables.push_back({names.Text(0), names.Text(1), {}});
    m_tables = std::move(tables);
    m_read = true;
}

QStringList FileCatalog::TableNames() const {
    ReadNames();
    QStringList names;
    for (const Entry& entry : m_tables)
        names += entry.name;
    return names;
}

const TableInfo* FileCatalog::FindTable(QStringView name) const {
    ReadNames();
    auto found = std::ranges::find(m_tables, name, &Entry::name);
    if (found == m_tables.end())
        found =
            std::ranges::find_if(m_tables, [&](const Entry& entry) { return SameName(entry.name, name); });
    if (found == m_tables.end())
        return nullptr;
    if (!found->table)
        found->table = Read(*found);
    return &*found->table;
}

TableInfo FileCatalog::Read(const Entry& entry) const {
    const Declarations declarations(entry.text);
    TableInfo table;
    table.name = entry.name;
    const QStringList key = ReadColumns(table, entry.text, declarations);
    ReadIndexes(table, key, declarations);
    return table;
}

QStringList FileCatalog::ReadColumns(TableInfo& table, const QString& text,
                                     const Declarations& declarations) const {
    Statement rows(m_db, u"SELECT name, type, \"notnull\", pk FROM pragma_table_info(?1) ORDER BY cid");
    rows.BindText(1, table.name);
    QMap<std::int64_t, QString> key; // by place in the key
    while (rows.Next()) {
        ColumnInfo column{SizedType::FromStored(rows.Text(1)), rows.Text(0)};
        column.required = rows.Number(2) != 0 && !IsImplied(text, column.name, rows.Text(1));
        declarations.Apply(column);
        if (const std::int64_t place = rows.Number(3); place > 0)
            key[place] = column.name;
        table.columns.push_back(std::move(column));
    }
    return key.values();
}

void FileCatalog::ReadIndexes(TableInfo& table, const QStringList& key,
                              const Declarations& declarations) const {
    // The counter is SQLite's key; where the table has another, that is a marked UNIQUE constraint.
    const int counter = table.CounterColumn();
    const bool notKey = counter >= 0 && declarations.IsNotKey(table.At(counter));
    const QString keyName = declarations.KeyName(key);
    const bool named = !keyName.isEmpty() && !keyName.startsWith(primaryKeyMark);
    IndexInfo primary{named ? keyName : namelessKey.toString(), notKey ? QStringList() : key, true, true};
    Statement rows(m_db,
                   u"SELECT l.name, l.\"unique\", l.origin, i.name FROM pragma_index_list(?1) AS l, "
                   u"pragma_index_info(l.name) AS i WHERE l.origin <> 'pk' ORDER BY l.seq DESC, i.seqno");
    rows.BindText(1, table.name);
    struct FileIndex {
        IndexInfo info;
        bool constraint;
    };
    std::vector<FileIndex> found;
    while (rows.Next()) {
        const QString name = rows.Text(0);
        if (found.empty() || found.back().info.name != name)
            found.push_back({{name, {}, false, rows.Number(1) != 0}, rows.Text(2) == u'u'});
        found.back().info.columns += rows.Text(3);
    }

    for (auto& [index, constraint] : found) {
        const QString name = constraint ? declarations.KeyName(index.columns) : QString();
        const int column = index.columns.size() == 1 ? table.Find(index.columns.front()) : -1;
        if (name.startsWith(primaryKeyMark)) {
            primary = {name.mid(primaryKeyMark.size()), index.columns, true, true};
            continue;
        }
        if (constraint && column >= 0) {
            table.At(column).unique = true;
            continue;
        }
        if (const QString prefix = FileIndexName(table.name, {}); index.name.startsWith(prefix))
            index.name.remove(0, prefix.size());
        if (!name.isEmpty())
            index.name = name;
        table.indexes.push_back(std::move(index));
    }
    if (!primary.columns.isEmpty())
        table.indexes.insert(table.indexes.begin(), std::move(primary));
}

} // namespace engine
