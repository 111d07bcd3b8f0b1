#pragma once

#include "platform/engine/Value.h"
#include "platform/engine/store/Cell.h"
#include "platform/engine/store/Sqlite.h"

struct sqlite3_stmt;

namespace engine {

/// A prepared SQLite statement. What SQLite refuses is thrown as the failure that belongs to what the
/// statement does; what a function of the dialect has failed with is thrown as it is.
class Statement {
public:
    enum class Lifetime { Once, Kept };

    Statement() = default;
    /// Compiles one statement. Text behind its end is not looked at. `table` is the one that a statement
    /// changes, for the message. The database outlives the statement.
    Statement(const Sqlite& db, QStringView text, Doing doing = Doing::Read, QString table = {},
              Lifetime lifetime = Lifetime::Once);
    Statement(Statement&& other) noexcept
        : Statement() {
        *this = std::move(other);
    }
    Statement& operator=(Statement&& other) noexcept;
    ~Statement();

    explicit operator bool() const { return m_statement != nullptr; }

    /// Places count from 1; one that the text does not ask for is passed over. Texts and bytes are not
    /// copied: they have to live until Reset.
    void Bind(int place, const Value& value);
    void Bind(int place, const Cell& cell);
    void BindNumber(int place, std::int64_t number);
    void BindText(int place, QStringView text);

    /// Runs to the next row; false behind the last one.
    bool Next();
    /// The same where the code decides what becomes of it: SQLITE_ROW, SQLITE_DONE or a failure.
    int Step();
    /// The failure of a code that Step has just given.
    runtime::Failure FailureOf(int code) const { return m_db->FailureOf(code, m_doing, m_table); }
    /// Ends the run and forgets what was bound; gives the locks of a read back.
    void Reset() noexcept;

    int ColumnCount() const;
    /// How many values the text asks for.
    int ParameterCount() const;
    /// A column of the row, good until the next step.
    Cell Column(int column) const;
    std::int64_t Number(int column) const;
    double Real(int column) const;
    /// Copy of a column's text; numbers as SQLite writes them.
    QString Text(int column) const;

private:
    void CheckBound(int code) const;

    const Sqlite* m_db = nullptr;
    sqlite3_stmt* m_statement = nullptr;
    Doing m_doing = Doing::Read;
    QString m_table;
};

} // namespace engine
