#include "platform/engine/run/KeyIndexes.h"

#include "platform/engine/schema/Names.h"

#include <sqlite3.h>

#include <algorithm>

namespace engine {

namespace {

constexpr std::int64_t smallTable = 64;
constexpr std::size_t maxCandidates = 256;
constexpr std::size_t maxIndexes = 32;

// The key of the row that the statement stands on, its columns from `first` on; none if one is NULL.
std::optional<std::uint64_t> HashOfRow(const Statement& statement, int first, std::size_t columns) {
    KeyHash hash;
    for (int column = first; column < first + static_cast<int>(columns); ++column) {
        sqlite3_stmt* row = statement.Handle();
        switch (sqlite3_column_type(row, column)) {
        case SQLITE_INTEGER:
            hash.Add(std::int64_t{sqlite3_column_int64(row, column)});
            break;
        case SQLITE_FLOAT:
            hash.Add(sqlite3_column_double(row, column));
            break;
        case SQLITE_TEXT: {
            const auto* text = static_cast<const char16_t*>(sqlite3_column_text16(row, column));
            if (text == nullptr)
                throw std::bad_alloc();
            hash.Add(QStringView(text, sqlite3_column_bytes16(row, column) / 2));
            break;
        }
        default:
            return std::nullopt;
        }
    }
    return hash.Result();
}

QString ColumnList(const TableInfo& table, const std::vector<int>& columns) {
    QStringList names;
    for (const int column : columns)
        names += QuoteName(table.columns[static_cast<std::size_t>(column)].name);
    return names.join(QLatin1String(", "));
}

} // namespace

KeyIndexes::KeyIndexes(sqlite3* db, std::function<void(int)> raise)
    : m_db(db)
    , m_raise(std::move(raise)) {
    sqlite3_update_hook(m_db, &KeyIndexes::OnChange, this);
}

KeyIndexes::~KeyIndexes() {
    sqlite3_update_hook(m_db, nullptr, nullptr);
}

// Called by SQLite in the middle of a statement: nothing may be read here, and nothing thrown.
void KeyIndexes::OnChange(void* self, int, const char*, const char* table, long long row) {
    for (const auto& index : static_cast<KeyIndexes*>(self)->m_indexes) {
        if (!index->built || index->stale || index->tableUtf8 != table)
            continue;
        try {
            // Mending row by row pays only while most rows stay.
            index->stale = index->changed.size() > index->hashes.size() / 2 + maxCandidates;
            if (!index->stale)
                index->changed.push_back(row);
        } catch (const std::bad_alloc&) {
            index->stale = true;
        }
    }
}

std::optional<KeyIndexes::Rows> KeyIndexes::Find(const TableInfo& table,
                                                 const std::vector<sql::KeyCondition>& keys,
                                                 const std::vector<Value>& literals) {
    std::vector<sql::KeyCondition> ordered = keys;
    std::ranges::sort(ordered, {}, &sql::KeyCondition::column);
    std::vector<int> columns;
    KeyHash hash;
    for (const auto& key : ordered) {
        const Value& literal = literals[static_cast<std::size_t>(key.literal)];
        const bool repeated = !columns.empty() && columns.back() == key.column;
        if (repeated || !IsKeyLiteral(table.columns[static_cast<std::size_t>(key.column)].type, literal))
            return std::nullopt;
        columns.push_back(key.column);
        AddLiteral(hash, literal);
    }
    Index& index = IndexFor(table, columns);
    if (!index.built && (++index.uses < 2 || !IsLarge(table.name)))
        return std::nullopt;
    if (const int code = index.built && !index.stale ? Mend(index) : Build(index, table); code != SQLITE_OK) {
        Clear(index);
        m_raise(code);
    }
    const auto [begin, end] = index.rows.equal_range(hash.Result());
    Rows rows;
    for (auto row = begin; row != end; ++row) {
        if (rows.size() == maxCandidates)
            return std::nullopt;
        rows.push_back(row->second);
    }
    return rows;
}

KeyIndexes::Index& KeyIndexes::IndexFor(const TableInfo& table, const std::vector<int>& columns) {
    const auto found = std::ranges::find_if(m_indexes, [&](const auto& index) {
        return index->columns == columns && index->table == table.name;
    });
    if (found != m_indexes.end())
        return **found;
    if (m_indexes.size() == maxIndexes)
        m_indexes.erase(m_indexes.begin());
    auto index = std::make_unique<Index>();
    index->table = table.name;
    index->tableUtf8 = table.name.toUtf8();
    index->columns = columns;
    return *m_indexes.emplace_back(std::move(index));
}

// By the greatest row number: quick, and only a large table with small numbers is impossible.
bool KeyIndexes::IsLarge(const QString& table) const {
    Statement statement;
    int code = statement.Prepare(m_db, QStringLiteral("SELECT max(rowid) FROM ") + QuoteName(table));
    if (code == SQLITE_OK)
        code = statement.Step();
    if (code != SQLITE_ROW)
        m_raise(code);
    return statement.Number(0) > smallTable;
}

int KeyIndexes::Build(Index& index, const TableInfo& table) const {
    Clear(index);
    const QString source =
        ColumnList(table, index.columns) + QStringLiteral(" FROM ") + QuoteName(table.name);
    Statement all;
    int code = all.Prepare(m_db, QStringLiteral("SELECT rowid, ") + source);
    if (code == SQLITE_OK)
        code = index.readRow.Prepare(m_db, QStringLiteral("SELECT %1 WHERE rowid = ?1").arg(source),
                                     Statement::Lifetime::Kept);
    if (code != SQLITE_OK)
        return code;
    while ((code = all.Step()) == SQLITE_ROW) {
        const auto hash = HashOfRow(all, 1, index.columns.size());
        if (!hash)
            continue;
        index.rows.emplace(*hash, all.Number(0));
        index.hashes.emplace(all.Number(0), *hash);
    }
    index.built = code == SQLITE_DONE;
    return index.built ? SQLITE_OK : code;
}

int KeyIndexes::Mend(Index& index) {
    for (const std::int64_t row : index.changed) {
        if (const auto old = index.hashes.find(row); old != index.hashes.end()) {
            const auto [begin, end] = index.rows.equal_range(old->second);
            const auto entry =
                std::find_if(begin, end, [row](const auto& pair) { return pair.second == row; });
            if (entry != end)
                index.rows.erase(entry);
            index.hashes.erase(old);
        }
        const ResetGuard guard(index.readRow);
        index.readRow.BindNumber(1, row);
        const int code = index.readRow.Step();
        if (code != SQLITE_ROW && code != SQLITE_DONE)
            return code;
        const auto hash =
            code == SQLITE_ROW ? HashOfRow(index.readRow, 0, index.columns.size()) : std::nullopt;
        if (!hash)
            continue;
        index.rows.emplace(*hash, row);
        index.hashes.emplace(row, *hash);
    }
    index.changed.clear();
    return SQLITE_OK;
}

void KeyIndexes::Clear(Index& index) noexcept {
    index.uses = 0;
    index.built = false;
    index.stale = false;
    index.rows.clear();
    index.hashes.clear();
    index.changed.clear();
    index.readRow.Finish();
}

void KeyIndexes::Drop() noexcept {
    for (const auto& index : m_indexes)
        Clear(*index);
}

void KeyIndexes::DropTable(const QString& table) noexcept {
    for (const auto& index : m_indexes)
        if (index->table == table)
            Clear(*index);
}

} // namespace engine
