#pragma once

#include "platform/engine/run/KeyHash.h"
#include "platform/engine/sql/Plan.h"

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

namespace engine {

/// Indexes in memory over columns that statements look for by `column = literal`, so that a look-up for each
/// row of a long run does not read the table each time. They only name candidates: the statement tests its
/// whole condition. An index is built when the same columns are asked for again on a table of some size, and
/// kept true by SQLite's update hook; whatever the hook does not tell (rollback, DELETE of all rows, schema,
/// other programs) drops it.
class KeyIndexes {
public:
    using Rows = std::vector<std::int64_t>;

    /// Sets the update hook of the connection. `raise` throws the failure of a SQLite code.
    KeyIndexes(sqlite3* db, std::function<void(int)> raise);
    ~KeyIndexes();
    KeyIndexes(const KeyIndexes&) = delete;
    KeyIndexes& operator=(const KeyIndexes&) = delete;

    /// Row numbers that can meet the conditions, at most `maxCandidates`; none if the plain statement is the
    /// better way.
    std::optional<Rows> Find(const TableInfo& table, const std::vector<sql::KeyCondition>& keys,
                             const std::vector<Value>& literals);

    void Drop() noexcept;
    void DropTable(const QString& table) noexcept;

private:
    struct Index {
        QString table;
        QByteArray tableUtf8;
        std::vector<int> columns;
        int uses = 0;
        bool built = false;
        bool stale = false; ///< cannot be mended row by row
        std::unordered_multimap<std::uint64_t, std::int64_t> rows;
        std::unordered_map<std::int64_t, std::uint64_t> hashes;
        std::vector<std::int64_t> changed;
        Statement readRow;
    };

    static void OnChange(void* self, int operation, const char* database, const char* table, long long row);
    Index& IndexFor(const TableInfo& table, const std::vector<int>& columns);
    bool IsLarge(const QString& table) const;
    // SQLite codes.
    int Build(Index& index, const TableInfo& table) const;
    static int Mend(Index& index);
    static void Clear(Index& index) noexcept;

    sqlite3* m_db;
    std::function<void(int)> m_raise;
    std::vector<std::unique_ptr<Index>> m_indexes;
};

} // namespace engine
