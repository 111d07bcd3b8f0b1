#include "platform/engine/schema/FileCatalog.h"

#include "platform/engine/functions/Functions.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/store/SqliteFailure.h"
#include "platform/engine/store/Statement.h"

#include <sqlite3.h>

#include <algorithm>
#include <map>

namespace engine {

namespace {

// A column that no constraint of ours speaks of, in a table made by other means.
DataType TypeOfSqlite(const QString& declared) {
    const QString word = declared.toUpper();
    if (word.contains(QLatin1String("INT")))
        return DataType::Long;
    if (word.contains(QLatin1String("CHAR")) || word.contains(QLatin1String("CLOB")) ||
        word.contains(QLatin1String("TEXT")))
        return DataType::Memo;
    if (word.contains(QLatin1String("REAL")) || word.contains(QLatin1String("FLOA")) ||
        word.contains(QLatin1String("DOUB")))
        return DataType::Double;
    if (word.contains(QLatin1String("BLOB")))
        return DataType::Binary;
    return DataType::Unknown;
}

/// Whether a column's definition, in a text of ours, does not say NOT NULL: SQLite itself implies it in a
/// key.
bool IsImplied(const QString& createTable, const QString& column, const QString& type) {
    const QString start = QuoteName(column) + u' ' + type;
    return createTable.contains(start) && !createTable.contains(start + QLatin1String(" NOT NULL"));
}

bool SameNames(const QStringList& a, const QStringList& b) {
    return std::ranges::equal(a, b, [](const QString& left, const QString& right) {
        return left.compare(right, Qt::CaseInsensitive) == 0;
    });
}

} // namespace

FileCatalog::FileCatalog(sqlite3* db, QString path)
    : m_db(db)
    , m_path(std::move(path)) {
}

void FileCatalog::Raise(int code) const {
    throw FailureFrom(m_db, code, Doing::Read, m_path);
}

void FileCatalog::Drop() noexcept {
    m_read = false;
    m_tables.clear();
}

void FileCatalog::ReadNames() const {
    if (m_read)
        return;
    Statement names;
    // A virtual table has no page of its own.
    int code = names.Prepare(m_db, u"SELECT name, sql FROM sqlite_schema WHERE type = 'table' AND name NOT "
                                   u"LIKE 'sqlite\\_%' ESCAPE '\\' AND rootpage <> 0 ORDER BY rowid");
    if (code != SQLITE_OK)
        Raise(code);
    std::vector<Entry> tables;
    while ((code = names.Step()) == SQLITE_ROW)
        tables.push_back({names.Text(0), names.Text(1), nullptr});
    if (code != SQLITE_DONE)
        Raise(code);
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

const Layout* FileCatalog::FindLayout(QStringView name) const {
    ReadNames();
    auto found = std::ranges::find_if(m_tables, [name](const Entry& entry) { return entry.name == name; });
    if (found == m_tables.end())
        found = std::ranges::find_if(
            m_tables, [name](const Entry& entry) { return functions::CompareFolded(entry.name, name) == 0; });
    if (found == m_tables.end())
        return nullptr;
    if (!found->layout)
        found->layout = std::make_unique<Layout>(Read(*found));
    return found->layout.get();
}

const TableInfo* FileCatalog::FindTable(QStringView name) const {
    const Layout* layout = FindLayout(name);
    return layout == nullptr ? nullptr : &layout->info;
}

Layout FileCatalog::Read(const Entry& entry) const {
    const Declarations declarations = ReadDeclarations(entry.text);
    Layout layout;
    layout.info.name = entry.name;
    QStringList primaryKey;
    ReadColumns(layout, entry.text, primaryKey, declarations);
    ReadIndexes(layout, primaryKey, declarations);
    return layout;
}

void FileCatalog::ReadColumns(Layout& layout, const QString& text, QStringList& primaryKey,
                              const Declarations& declarations) const {
    Statement rows;
    int code =
        rows.Prepare(m_db, u"SELECT name, type, \"notnull\", pk FROM pragma_table_info(?1) ORDER BY cid");
    if (code != SQLITE_OK)
        Raise(code);
    rows.BindText(1, layout.info.name);
    std::map<std::int64_t, QString> key; // by place in the key
    while ((code = rows.Step()) == SQLITE_ROW) {
        ColumnInfo column;
        column.name = rows.Text(0);
        column.type = TypeOfSqlite(rows.Text(1));
        column.required = rows.Number(2) != 0 && !IsImplied(text, column.name, rows.Text(1));
        bool requiredLater = false;
        ApplyDeclarations(column, declarations.checks, requiredLater);
        if (const std::int64_t place = rows.Number(3); place > 0)
            key[place] = column.name;
        layout.info.columns.push_back(std::move(column));
        layout.requiredLater.push_back(requiredLater);
    }
    if (code != SQLITE_DONE)
        Raise(code);
    for (const auto& [place, name] : key)
        primaryKey += name;
}

void FileCatalog::ReadIndexes(Layout& layout, const QStringList& primaryKey,
                              const Declarations& declarations) const {
    Statement rows;
    int code =
        rows.Prepare(m_db, u"SELECT l.name, l.\"unique\", l.origin, i.name FROM pragma_index_list(?1) AS l, "
                           u"pragma_index_info(l.name) AS i ORDER BY l.seq DESC, i.seqno");
    if (code != SQLITE_OK)
        Raise(code);
    rows.BindText(1, layout.info.name);
    struct FileIndex {
        QString name;
        bool unique;
        QString origin;
        QStringList columns;
    };
    std::vector<FileIndex> found;
    while ((code = rows.Step()) == SQLITE_ROW) {
        const QString name = rows.Text(0);
        if (found.empty() || found.back().name != name)
            found.push_back({name, rows.Number(1) != 0, rows.Text(2), {}});
        found.back().columns += rows.Text(3);
    }
    if (code != SQLITE_DONE)
        Raise(code);

    const auto declaredName = [&](const QStringList& columns) {
        const auto key = std::ranges::find_if(declarations.keys, [&](const Declarations::Key& candidate) {
            return SameNames(candidate.columns, columns);
        });
        return key == declarations.keys.end() ? QString() : key->name;
    };

    // The counter is SQLite's key; where the table has another, that is a marked UNIQUE constraint.
    IndexInfo primary{namelessKey.toString(), primaryKey, true, true};
    if (const QString name = declaredName(primaryKey); !name.isEmpty() && !name.startsWith(primaryKeyMark))
        primary.name = name;
    std::vector<IndexInfo> secondary;
    for (const FileIndex& index : found) {
        QString name = declaredName(index.columns);
        if (index.origin == QLatin1String("pk"))
            continue;
        if (index.origin == QLatin1String("c")) {
            const QString prefix = layout.info.name + u'.';
            name = index.name.startsWith(prefix) ? index.name.mid(prefix.size()) : index.name;
            secondary.push_back({name, index.columns, false, index.unique});
        } else if (name.startsWith(primaryKeyMark)) {
            primary = {name.mid(primaryKeyMark.size()), index.columns, true, true};
        } else if (const int column =
                       index.columns.size() == 1 ? layout.info.Find(index.columns.front()) : -1;
                   column >= 0) {
            layout.info.columns[static_cast<std::size_t>(column)].unique = true;
        } else {
            secondary.push_back({name.isEmpty() ? index.name : name, index.columns, false, true});
        }
    }
    const int counter = layout.info.CounterColumn();
    if (counter >= 0 && primary.columns == primaryKey &&
        declarations.checks.contains(layout.info.columns[static_cast<std::size_t>(counter)].name + u' ' +
                                     noteNotKey.toString()))
        primary.columns.clear();
    if (!primary.columns.isEmpty())
        layout.info.indexes.push_back(std::move(primary));
    for (auto& index : secondary)
        layout.info.indexes.push_back(std::move(index));
}

} // namespace engine
