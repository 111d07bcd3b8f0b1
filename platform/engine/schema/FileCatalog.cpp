#include "platform/engine/schema/FileCatalog.h"

#include "platform/engine/schema/LookUps.h"
#include "platform/engine/schema/Names.h"
#include "platform/engine/schema/TableText.h"
#include "platform/engine/store/Sqlite.h"
#include "platform/engine/store/Statement.h"

#include <algorithm>

namespace engine {

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

QStringList FileCatalog::MissingLookUps() const {
    QStringList statements;
    for (const LookUp& lookUp : LookUps()) {
        const TableInfo* table = FindTable(lookUp.table);
        const QString wanted = table == nullptr ? QString() : lookUp.CreateText(*table);
        if (wanted.isEmpty())
            continue;
        const QString name = lookUp.IndexName(*table);
        Statement known(m_db, u"SELECT sql FROM sqlite_schema WHERE type = 'index' AND name = ?1");
        known.BindText(1, name);
        if (!known.Next())
            statements += wanted;
        else if (known.Text(0) != wanted) // a program that takes it for a user's makes it anew in its way
            statements += {QLatin1String("DROP INDEX ") + QuoteName(name), wanted};
    }
    return statements;
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
        found->table = ReadTable(m_db, found->name, found->text);
    return &*found->table;
}

} // namespace engine
