#include "platform/engine/run/ResultSet.h"

#include "platform/engine/EngineError.h"

#include <algorithm>

namespace engine {

namespace {

// Columns that are sub-queries read other tables too.
QString Watched(const sql::Plan& plan) {
    return plan.rowText.count(QLatin1String("SELECT")) > 1 ? QString() : plan.rowTable;
}

} // namespace

ResultSet::ResultSet(Connection& connection, const Sqlite& db, const BoundPlan& bound)
    : m_connection(&connection)
    , m_db(db)
    , m_bound(bound)
    , m_watched(Watched(bound.cached->plan))
    , m_finder(std::in_place, db, m_rows, bound.cached->plan.columns)
    , m_changes(ChangeCount()) {
    connection.Register(this);
}

void ResultSet::ReadAll(Statement& statement) {
    while (statement.Next())
        m_rows.Add(statement);
    m_reached = std::min<std::int64_t>(Count(), 1);
}

void ResultSet::Close() noexcept {
    if (m_connection == nullptr)
        return;
    std::exchange(m_connection, nullptr)->Unregister(this);
    m_finder.reset();
    m_rows = {};
    m_bound = {};
}

void ResultSet::MoveTo(std::int64_t row) {
    if (Count() == 0 || row > Count())
        RaiseEngine(NoCurrentRecord);
    m_current = row;
    m_reached = std::max(m_reached, std::min(row + 1, Count()));
    if (row < Count() && HasChanged())
        ReadAgain(static_cast<std::size_t>(row));
}

bool ResultSet::MoveToFirst(const QString& criteria) {
    if (HasChanged()) {
        const std::uint64_t changes = ChangeCount();
        for (std::size_t row = 0; row < m_rows.Rows(); ++row)
            ReadAgain(row);
        m_changes = changes;
    }
    const auto row = m_connection->Commits().Account([&] { return m_finder->First(criteria); });
    if (row)
        MoveTo(static_cast<std::int64_t>(*row));
    else
        m_reached = Count();
    return row.has_value();
}

void ResultSet::ReadAgain(std::size_t row) {
    const sql::Plan& plan = Plan();
    m_connection->Commits().Account([&] {
        Statement& statement = m_bound.cached->rowText;
        if (!statement)
            statement = Statement(m_db, plan.rowText, Doing::Read, {}, Statement::Lifetime::Kept);
        Binding binding(statement);
        binding.Bind(1, plan.parameters, m_bound.scanned.literals);
        const auto rowNumber = static_cast<int>(plan.columns.size());
        statement.Bind(static_cast<int>(plan.parameters.size()) + 1, m_rows.At(row, rowNumber));
        if (statement.Next())
            m_rows.Replace(row, statement);
        else
            m_rows.Remove(row);
    });
    m_finder->ForgetRows();
}

Cell ResultSet::CurrentCell(int column) const {
    if (m_current >= Count())
        RaiseEngine(NoCurrentRecord);
    const auto row = static_cast<std::size_t>(m_current);
    if (m_rows.IsRemoved(row))
        RaiseEngine(RecordDeleted);
    return m_rows.At(row, column);
}

} // namespace engine
