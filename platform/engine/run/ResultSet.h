#pragma once

#include "platform/engine/run/Connection.h"
#include "platform/engine/run/Finder.h"
#include "platform/engine/run/Runner.h"

namespace engine {

/// What stands behind a Recordset: its rows, the current one, and the way to read a changed row again.
class ResultSet {
public:
    ResultSet(Connection& connection, const Sqlite& db, const BoundPlan& bound);
    ~ResultSet() { Close(); }
    ResultSet(const ResultSet&) = delete;
    ResultSet& operator=(const ResultSet&) = delete;

    /// The table whose rows it shows; empty for a join and for a fixed copy.
    const QString& Table() const { return Plan().rowTable; }
    /// All rows of the statement; stands on the first one.
    void ReadAll(Statement& statement);

    bool IsOpen() const { return m_connection != nullptr; }
    /// Drops rows and statements; nothing but IsOpen may be asked then.
    void Close() noexcept;

    std::int64_t Count() const { return static_cast<std::int64_t>(m_rows.Rows()); }
    std::int64_t Reached() const { return m_reached; }
    /// Count() behind the last row.
    std::int64_t Current() const { return m_current; }
    /// Makes a row current, which then shows what the file holds; failure 3021 beyond Count() and if there is
    /// no row.
    void MoveTo(std::int64_t row);
    /// The same for the first row that meets the criteria; false if there is none.
    bool MoveToFirst(const QString& criteria);

    const std::vector<sql::ResultColumn>& Columns() const { return Plan().columns; }
    /// A cell of the current row; failures 3021 and 3167.
    Cell CurrentCell(int column) const;

private:
    const sql::Plan& Plan() const { return m_bound.cached->plan; }
    bool HasChanged() const { return !Plan().rowText.isEmpty() && ChangeCount() != m_changes; }
    std::uint64_t ChangeCount() const { return m_connection->ChangeCount(m_watched); }
    void ReadAgain(std::size_t row);

    Connection* m_connection;
    const Sqlite& m_db;
    BoundPlan m_bound;
    QString m_watched; ///< the table whose changes can show in the rows; empty: any
    RowBuffer m_rows;
    std::optional<Finder> m_finder;
    std::int64_t m_current = 0;
    std::int64_t m_reached = 0;
    std::uint64_t m_changes; ///< at which all rows were true
};

} // namespace engine
