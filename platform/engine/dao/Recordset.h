#pragma once

#include "platform/engine/Value.h"

#include <memory>

namespace engine {

class ResultSet;

/// A column of a result set. A view: it lives no longer than its Recordset, and Value() is that of the row
/// that is current at the call.
class Field {
public:
    /// Name as the definition spells it; Expr1000 and on for nameless columns.
    QString Name() const;
    DataType Type() const;
    /// Failure 3021 without a current row, 3167 if the row was deleted, 3420 if the set is closed.
    engine::Value Value() const;
    /// Text of the value, NULL as the empty text: cheaper than Value().Text() in a fill.
    QString Text() const;

private:
    friend class Recordset;
    Field(ResultSet& set, int column)
        : m_set(&set)
        , m_column(column) {}
    ResultSet* m_set;
    int m_column;
};

/// The rows of a query, opened on the first one. A move-only value: its end closes it. Closing the database
/// closes its sets; any use of a closed set is failure 3420.
class Recordset {
public:
    Recordset() = default; ///< closed
    Recordset(Recordset&&) noexcept = default;
    Recordset& operator=(Recordset&&) noexcept = default;

    /// Rows reached so far: 0 only if there are none, exact after MoveLast.
    std::int64_t RecordCount() const;
    bool EndOfFile() const; ///< EOF: behind the last row, or no rows

    /// Failure 3021 on an empty set; MoveNext behind the end too.
    void MoveFirst();
    void MoveLast();
    void MoveNext();

    /// Number of columns.
    int FieldsCount() const;
    /// By name (case ignored) or place from 0; failure 3265 for an unknown one.
    Field Fields(QStringView name) const;
    Field Fields(int index) const;

    /// Makes the first row that meets the criteria current; criteria as in a WHERE clause. If there is none,
    /// NoMatch() is true and the old row stays current. Failures 3077 on wrong text, 3070 on an unknown name.
    void FindFirst(const QString& criteria);
    bool NoMatch() const;

    bool IsOpen() const;
    void Close();

private:
    friend class Database;
    explicit Recordset(std::shared_ptr<ResultSet> set)
        : m_set(std::move(set)) {}
    ResultSet& Set() const; ///< failure 3420 if closed
    std::shared_ptr<ResultSet> m_set;
    bool m_noMatch = false;
};

} // namespace engine
