#pragma once

#include "platform/engine/Value.h"

#include <QStringView>

struct sqlite3;
struct sqlite3_stmt;

namespace engine {

/// A prepared SQLite statement. Result codes are SQLite's; the connection turns them into failures.
class Statement {
public:
    enum class Lifetime { Once, Kept };

    Statement() = default;
    Statement(Statement&& other) noexcept
        : m_statement(std::exchange(other.m_statement, nullptr)) {}
    Statement& operator=(Statement&& other) noexcept;
    ~Statement() { Finish(); }

    /// Compiles one statement; the result code. Text behind its end is not looked at.
    int Prepare(sqlite3* db, QStringView text, Lifetime lifetime = Lifetime::Once);
    void Finish() noexcept;
    explicit operator bool() const { return m_statement != nullptr; }

    /// Places count from 1. Texts and bytes are not copied: they have to live until Reset.
    int Bind(int place, const Value& value);
    int BindNumber(int place, std::int64_t number);
    int BindText(int place, QStringView text);

    int Step(); ///< SQLITE_ROW, SQLITE_DONE or a failure; throws what a function of ours has failed with
    /// Ends the run and forgets what was bound; gives the locks of a read back.
    void Reset() noexcept;

    int ColumnCount() const;
    std::int64_t Number(int column) const;
    /// Copy of a column's text; numbers as SQLite writes them.
    QString Text(int column) const;
    bool IsNull(int column) const;
    sqlite3_stmt* Handle() const { return m_statement; }

private:
    sqlite3_stmt* m_statement = nullptr;
};

/// Resets a statement at the end of a scope, on every way out.
class ResetGuard {
public:
    explicit ResetGuard(Statement& statement)
        : m_statement(statement) {}
    ~ResetGuard() { m_statement.Reset(); }
    ResetGuard(const ResetGuard&) = delete;
    ResetGuard& operator=(const ResetGuard&) = delete;

private:
    Statement& m_statement;
};

} // namespace engine
