#pragma once

#include "platform/engine/dao/Finder.h"
#include "platform/engine/run/Connection.h"
#include "platform/engine/run/RowBuffer.h"

#include <unordered_map>

namespace engine {

/// What stands behind a Recordset: its rows, the current one, and the way to read a changed row again.
class RecordsetImpl {
public:
    RecordsetImpl(Connection& connection, const BoundPlan& bound);
    ~RecordsetImpl();
    RecordsetImpl(const RecordsetImpl&) = delete;
    RecordsetImpl& operator=(const RecordsetImpl&) = delete;

    /// The table whose rows it shows; empty for a join and for a fixed copy.
    const QString& Table() const { return m_bound.cached->plan.rowTable; }
    RowBuffer& Rows() { return m_rows; }
    /// All rows are there: stands on the first one.
    void Start();

    bool IsOpen() const { return m_connection != nullptr; }
    /// Drops rows and statements; anything but IsOpen is then failure 3420.
    void Close() noexcept;
    void CheckOpen() const;

    std::int64_t Reached() const { return m_reached; }
    bool EndOfFile() const { return m_current == Count(); }
    bool BeginOfFile() const { return m_current < 0 || Count() == 0; }
    void MoveTo(std::int64_t row); ///< failure 3021 outside -1 ... Count()
    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrevious();

    int Columns() const { return static_cast<int>(m_bound.cached->plan.columns.size()); }
    const sql::ResultColumn& Column(int column) const;
    int FindColumn(QStringView name) const; ///< failure 3265
    /// A cell of the current row; failures 3021 and 3167.
    RowBuffer::Cell Current(int column) const;

    void FindFirst(const QString& criteria);
    bool NoMatch() const { return m_noMatch; }

private:
    std::int64_t Count() const { return static_cast<std::int64_t>(m_rows.Rows()); }
    void Fetch(std::size_t row);
    void ReadAgain(std::size_t row);
    void RefreshAll(std::uint64_t changes);

    Connection* m_connection;
    BoundPlan m_bound;
    QString m_watched; ///< the table whose changes can show in the rows; empty: any
    RowBuffer m_rows;
    Finder m_finder;
    std::int64_t m_current = 0; ///< -1 before the first row, Count() behind the last
    std::int64_t m_reached = 0;
    bool m_noMatch = false;
    std::uint64_t m_changes;                                    ///< at which all rows were true
    std::unordered_map<std::size_t, std::uint64_t> m_readAgain; ///< rows read since, and when
};

} // namespace engine
