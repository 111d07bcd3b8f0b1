#include "platform/engine/dao/RecordsetImpl.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/schema/Names.h"

#include <sqlite3.h>

#include <algorithm>

namespace engine {

namespace {

// Columns that are sub-queries read other tables too.
QString Watched(const sql::Plan& plan) {
    return plan.rowText.count(QLatin1String("SELECT")) > 1 ? QString() : plan.rowTable;
}

} // namespace

RecordsetImpl::RecordsetImpl(Connection& connection, const BoundPlan& bound)
    : m_connection(&connection)
    , m_bound(bound)
    , m_watched(Watched(bound.cached->plan))
    , m_finder(connection, m_rows, bound.cached->plan.columns)
    , m_changes(connection.ChangeCount(m_watched)) {
    connection.Register(this);
}

RecordsetImpl::~RecordsetImpl() {
    Close();
}

void RecordsetImpl::Close() noexcept {
    if (m_connection == nullptr)
        return;
    std::exchange(m_connection, nullptr)->Unregister(this);
    m_finder.Forget();
    m_rows.Clear();
    m_readAgain.clear();
    m_bound = {};
}

void RecordsetImpl::CheckOpen() const {
    if (!IsOpen())
        RaiseEngine(ObjectClosed);
}

void RecordsetImpl::Start() {
    m_current = 0;
    m_reached = std::min<std::int64_t>(Count(), 1);
}

void RecordsetImpl::MoveTo(std::int64_t row) {
    if (Count() == 0 || row < -1 || row > Count())
        RaiseEngine(NoCurrentRecord);
    m_current = row;
    m_reached = std::max(m_reached, std::min(row + 1, Count()));
    if (row >= 0 && row < Count())
        Fetch(static_cast<std::size_t>(row));
}

void RecordsetImpl::MoveFirst() {
    MoveTo(0);
}

void RecordsetImpl::MoveLast() {
    MoveTo(Count() - 1);
}

void RecordsetImpl::MoveNext() {
    MoveTo(m_current + 1);
}

void RecordsetImpl::MovePrevious() {
    MoveTo(m_current - 1);
}

// A row that has become current shows what the file holds now.
void RecordsetImpl::Fetch(std::size_t row) {
    if (m_bound.cached->plan.rowText.isEmpty())
        return;
    const std::uint64_t changes = m_connection->ChangeCount(m_watched);
    if (changes == m_changes)
        return;
    const auto known = m_readAgain.find(row);
    if (known != m_readAgain.end() && known->second == changes)
        return;
    ReadAgain(row);
    m_finder.ForgetRows();
    m_readAgain[row] = changes;
}

void RecordsetImpl::ReadAgain(std::size_t row) {
    CachedPlan& cached = *m_bound.cached;
    Statement& statement = cached.rowText;
    const std::int64_t rowNumber = m_rows.At(row, Columns()).integer;
    m_connection->Prepare(statement, cached.plan.rowText, Statement::Lifetime::Kept);
    Binding binding(statement);
    Connection::Bind(binding, 1, cached.plan.parameters, m_bound.scanned.literals);
    statement.BindNumber(static_cast<int>(cached.plan.parameters.size()) + 1, rowNumber);
    const int code = statement.Step();
    if (code == SQLITE_ROW)
        m_rows.Replace(row, statement, rowNumber);
    else if (code == SQLITE_DONE)
        m_rows.Remove(row);
    else
        m_connection->RaiseRead(code);
}

void RecordsetImpl::RefreshAll(std::uint64_t changes) {
    for (std::size_t row = 0; row < m_rows.Rows(); ++row)
        ReadAgain(row);
    m_finder.ForgetRows();
    m_readAgain.clear();
    m_changes = changes;
}

const sql::ResultColumn& RecordsetImpl::Column(int column) const {
    if (column < 0 || column >= Columns())
        RaiseEngine(ItemNotFound);
    return m_bound.cached->plan.columns[static_cast<std::size_t>(column)];
}

int RecordsetImpl::FindColumn(QStringView name) const {
    const auto& columns = m_bound.cached->plan.columns;
    auto found = std::ranges::find_if(columns, [name](const auto& column) { return column.name == name; });
    if (found == columns.end())
        found =
            std::ranges::find_if(columns, [name](const auto& column) { return SameName(column.name, name); });
    if (found == columns.end())
        RaiseEngine(ItemNotFound);
    return static_cast<int>(found - columns.begin());
}

RowBuffer::Cell RecordsetImpl::Current(int column) const {
    CheckOpen();
    if (m_current < 0 || m_current >= Count())
        RaiseEngine(NoCurrentRecord);
    const auto row = static_cast<std::size_t>(m_current);
    if (m_rows.IsRemoved(row))
        RaiseEngine(RecordDeleted);
    return m_rows.At(row, column);
}

void RecordsetImpl::FindFirst(const QString& criteria) {
    const std::uint64_t changes = m_connection->ChangeCount(m_watched);
    if (changes != m_changes && !m_bound.cached->plan.rowText.isEmpty())
        RefreshAll(changes);
    const auto row = m_finder.First(criteria);
    m_noMatch = !row;
    if (row)
        MoveTo(static_cast<std::int64_t>(*row));
    else
        m_reached = Count();
}

} // namespace engine
