#pragma once

#include "platform/engine/store/SqliteFailure.h"

struct sqlite3;
struct sqlite3_file;

namespace engine {

/// An open database of SQLite's. The one place where a file is handed to SQLite: with the dialect's functions
/// and collations, and nothing of the file trusted but its rows. Its failures are the engine's.
class Sqlite {
public:
    /// Opens the file that stands at `file`; failures tell of `path`.
    Sqlite(const QString& file, QString path);
    /// Every statement has to be gone by then.
    ~Sqlite();
    Sqlite(const Sqlite&) = delete;
    Sqlite& operator=(const Sqlite&) = delete;

    sqlite3* Handle() const { return m_db; }

    /// Runs statements that take no values and give no rows.
    void Run(const char* text, Doing doing, const QString& table = {}) const;
    /// The same where a failure is told by somebody else or not at all: SQLite's code.
    int Try(const char* text) const noexcept;
    /// The number that a question gives, behind which its failure is Doing::Open.
    std::int64_t Number(const char* question) const;

    /// The failure of a code that SQLite has just given.
    runtime::Failure FailureOf(int code, Doing doing, const QString& table = {}) const;

    /// Rows that the last action has changed, as far as an int counts.
    int Changes() const noexcept;
    /// The row number of the last insert.
    std::int64_t LastRow() const noexcept;
    /// The open file itself: closing another handle of it would drop SQLite's locks.
    sqlite3_file* File() const noexcept;

    bool IsReadOnly() const;
    /// Whether a transaction is open. SQLite takes some back by itself.
    bool InTransaction() const noexcept;

private:
    sqlite3* m_db = nullptr;
    QString m_path;
};

} // namespace engine
