#include "platform/engine/dao/Database.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/run/Connection.h"
#include "platform/engine/schema/FileCatalog.h"
#include "platform/engine/store/NewFile.h"

namespace engine {

namespace {

std::shared_ptr<Connection> Open(const std::weak_ptr<Connection>& connection) {
    auto open = connection.lock();
    if (!open)
        RaiseEngine(ObjectClosed);
    open->CheckOpen();
    return open;
}

const TableInfo& TableOf(Connection& connection, const QString& name) {
    const TableInfo* table = connection.Tables().FindTable(name);
    if (table == nullptr)
        RaiseEngine(ItemNotFound);
    return *table;
}

ColumnInfo ColumnOf(const std::weak_ptr<Connection>& connection, const QString& table, const QString& name) {
    const auto open = Open(connection);
    const TableInfo& info = TableOf(*open, table);
    const int place = info.Find(name);
    if (place < 0)
        RaiseEngine(ItemNotFound);
    return info.At(place);
}

} // namespace

QString TableField::Name() const {
    return m_name;
}

DataType TableField::Type() const {
    return ColumnOf(m_connection, m_table, m_name).type;
}

int TableField::Size() const {
    return ColumnOf(m_connection, m_table, m_name).size;
}

bool TableField::Required() const {
    return ColumnOf(m_connection, m_table, m_name).required;
}

bool TableField::AllowZeroLength() const {
    return ColumnOf(m_connection, m_table, m_name).allowZeroLength;
}

void TableField::SetAllowZeroLength(bool allow) {
    Open(m_connection)->SetAllowZeroLength(m_table, m_name, allow);
}

TableField TableDef::Fields(const QString& name) const {
    TableField field;
    field.m_connection = m_connection;
    field.m_table = m_name;
    field.m_name = ColumnOf(m_connection, m_name, name).name;
    return field;
}

TableField TableDef::Fields(int index) const {
    const auto open = Open(m_connection);
    const auto& columns = TableOf(*open, m_name).columns;
    if (index < 0 || index >= static_cast<int>(columns.size()))
        RaiseEngine(ItemNotFound);
    return Fields(QString(columns[static_cast<std::size_t>(index)].name));
}

int TableDef::FieldsCount() const {
    const auto open = Open(m_connection);
    return static_cast<int>(TableOf(*open, m_name).columns.size());
}

Database::Database(std::shared_ptr<Connection> connection, std::unique_ptr<NewFile> file)
    : m_newFile(std::move(file))
    , m_connection(std::move(connection)) {
}

Database::~Database() = default;

QString Database::Name() const {
    return m_connection->Path();
}

void Database::Execute(const QString& sql, int options) {
    m_connection->Execute(sql, (options & dbFailOnError) != 0);
}

int Database::RecordsAffected() const {
    return m_connection->RecordsAffected();
}

Recordset Database::OpenRecordset(const QString& sql, int, const std::function<bool()>& stop) {
    return Recordset(m_connection->OpenRecordset(sql, stop));
}

TableDef Database::TableDefs(const QString& name) {
    TableDef table;
    table.m_connection = m_connection;
    table.m_name = TableOf(*m_connection, name).name;
    return table;
}

QStringList Database::TableNames() {
    return m_connection->Tables().TableNames();
}

void Database::Close() {
    m_connection->Close();
    if (m_newFile)
        m_newFile->GiveName();
}

void Database::Discard() noexcept {
    m_connection->Drop();
    if (const auto file = std::exchange(m_newFile, nullptr))
        file->Remove();
}

bool Database::IsOpen() const {
    return m_connection->IsOpen();
}

} // namespace engine
