#include "platform/engine/dao/DBEngine.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/run/Connection.h"
#include "platform/engine/store/NewFile.h"
#include "platform/engine/store/Transactions.h"
#include "platform/runtime/Process.h"

#include <algorithm>
#include <exception>
#include <ranges>

namespace engine {

namespace {

constexpr int maxLevels = 5;

// Every connection of the process, for the commits; those that have gone are left out at the next look.
std::vector<std::weak_ptr<Connection>>& AllConnections() {
    static std::vector<std::weak_ptr<Connection>> connections;
    return connections;
}

std::vector<std::shared_ptr<Connection>> OpenOnes(std::vector<std::weak_ptr<Connection>>& connections) {
    std::vector<std::shared_ptr<Connection>> open;
    std::erase_if(connections, [&](const std::weak_ptr<Connection>& entry) {
        auto connection = entry.lock();
        const bool gone = !connection || !connection->IsOpen();
        if (!gone)
            open.push_back(std::move(connection));
        return gone;
    });
    return open;
}

// Does the work on every connection, also behind a failure; the first failure is raised at the end.
template <class Work>
void ForEach(const std::vector<std::shared_ptr<Connection>>& connections, Work work) {
    std::exception_ptr first;
    for (const auto& connection : connections) {
        try {
            work(*connection);
        } catch (const runtime::Failure&) {
            if (!first)
                first = std::current_exception();
        }
    }
    if (first)
        std::rethrow_exception(first);
}

void Remember(const std::shared_ptr<Connection>& connection) {
    [[maybe_unused]] static const bool registered = [] {
        runtime::AtEnd([] { DBEngine::Commit(); });
        return true;
    }();
    AllConnections().push_back(connection);
}

} // namespace

Workspace::~Workspace() {
    RollBackAll();
}

void Workspace::CheckOpen() const {
    if (m_closed)
        RaiseEngine(ObjectClosed);
}

void Workspace::CheckTransaction() const {
    CheckOpen();
    if (m_depth == 0)
        RaiseEngine(NoTransaction);
}

std::shared_ptr<Connection> Workspace::Connect(const QString& path, const QString& file) {
    CheckOpen();
    auto connection = std::make_shared<Connection>(path, file);
    for (int level = 0; level < m_depth; ++level)
        connection->Commits().BeginTrans();
    m_connections.push_back(connection);
    Remember(connection);
    return connection;
}

std::shared_ptr<Database> Workspace::OpenDatabase(const QString& path) {
    return std::shared_ptr<Database>(new Database(Connect(path)));
}

std::shared_ptr<Database> Workspace::CreateDatabase(const QString& path, const QString& locale, int options) {
    auto database = PrepareDatabase(path, locale, options);
    try {
        Publish(*database);
    } catch (const runtime::Failure&) {
        database->Discard(); // nobody else has seen it
        throw;
    }
    return database;
}

std::shared_ptr<Database> Workspace::PrepareDatabase(const QString& path, const QString&, int options,
                                                     std::shared_ptr<const runtime::OldFile> old) {
    CheckOpen();
    if (options != dbVersion40)
        RaiseEngine(InvalidArgument);
    auto file = std::make_unique<NewFile>(path, std::move(old));
    const auto connection = Connect(path, file->File());
    return std::shared_ptr<Database>(new Database(connection, std::move(file)));
}

void Workspace::Publish(Database& database) {
    database.Close();
    database.m_connection = Connect(database.Name());
}

void Workspace::BeginTrans() {
    CheckOpen();
    if (m_depth == maxLevels)
        RaiseEngine(TooManyTransactions);
    const auto open = OpenOnes(m_connections);
    if (m_depth == 0)
        ForEach(open, [](Connection& connection) { connection.Commits().CommitGroup(); });
    for (const auto& connection : open)
        connection->Commits().BeginTrans();
    ++m_depth;
}

void Workspace::CommitTrans() {
    CheckTransaction();
    // Those that are committed already stay so if a later one fails: a second call goes on with the rest.
    for (const auto& connection : OpenOnes(m_connections))
        if (connection->Commits().Depth() == m_depth)
            connection->Commits().CommitTrans();
    --m_depth;
}

void Workspace::Rollback() {
    CheckTransaction();
    for (const auto& connection : OpenOnes(m_connections))
        if (connection->Commits().Depth() == m_depth)
            connection->Commits().Rollback();
    --m_depth;
}

void Workspace::RollBackAll() {
    for (const auto& connection : OpenOnes(m_connections))
        while (connection->Commits().Depth() > 0)
            connection->Commits().Rollback();
    m_depth = 0;
}

void Workspace::Close() {
    CheckOpen();
    RollBackAll();
    ForEach(OpenOnes(m_connections), [](Connection& connection) { connection.Close(); });
    m_connections.clear();
    m_closed = !m_isDefault;
}

std::shared_ptr<Workspace> DBEngine::Workspaces(int index) {
    static const std::shared_ptr<Workspace> standard(new Workspace(true));
    if (index != 0)
        RaiseEngine(ItemNotFound);
    return standard;
}

std::shared_ptr<Workspace> DBEngine::CreateWorkspace(const QString&, const QString&, const QString&) {
    return std::shared_ptr<Workspace>(new Workspace(false));
}

void DBEngine::SetLookUps(std::vector<LookUp> lookUps) {
    LookUps() = std::move(lookUps);
}

void DBEngine::Commit() {
    ForEach(OpenOnes(AllConnections()), [](Connection& connection) { connection.Commits().CommitGroup(); });
}

void DBEngine::KillDatabase(const runtime::OldFile& file) {
    if (!file.Stands())
        return;
    file.Delete();
    RemoveJournals(file.Path());
}

void DBEngine::AcknowledgeLoss() noexcept {
    for (const auto& connection : OpenOnes(AllConnections()))
        connection->Commits().AcknowledgeLoss();
}

} // namespace engine
