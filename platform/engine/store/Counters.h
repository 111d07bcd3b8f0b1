#pragma once

#include <QHash>
#include <QString>

#include <cstdint>

namespace engine {

class Sqlite;

/// Generated numbers: one that a failed or undone insert has used up is not given again while the file is
/// open. SQLite takes its own note of the last number back with the statement, so the layer keeps one of its
/// own and puts it in again before the next insert.
class Counters {
public:
    explicit Counters(const Sqlite& db)
        : m_db(db) {}

    void BeforeInsert(const QString& table);
    void Inserted(const QString& table, std::int64_t number);
    /// An insert that generated a number has failed.
    void Failed(const QString& table);
    /// Finished statements were taken back.
    void Undone();
    /// The table is made anew or gone: its numbers start again.
    void Forget(const QString& table) { m_counters.remove(table); }

    /// The last number in the file and its restoring, for a table that is rebuilt.
    std::int64_t Last(const QString& table) const;
    void SetLast(const QString& table, std::int64_t number) const;

private:
    struct Counter {
        std::int64_t last = 0;
        bool behind = false; ///< the file's note may be lower
    };
    const Sqlite& m_db;
    QHash<QString, Counter> m_counters;
};

} // namespace engine
