#pragma once

#include "platform/engine/dao/Database.h"
#include "platform/engine/schema/LookUps.h"
#include "platform/runtime/Files.h"

#include <memory>
#include <vector>

namespace engine {

/// A session: the scope of transactions over its databases.
class Workspace {
public:
    ~Workspace();
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;

    /// Opens an existing file, shared and writable (a read-only file opens, its changes fail later). The file
    /// is checked before this returns. Failures: 3024 file missing, 3044 folder missing or no path at all,
    /// 3051 no right to it, 3343 no database of a known format, 3041 an older format, 3049 damaged,
    /// 3045 still locked after about 5 seconds.
    std::shared_ptr<Database> OpenDatabase(const QString& path);

    /// Creates an empty file and opens it. The file comes to its name whole: a crash leaves none or a sound
    /// one. Failures: 3204 the file exists, 3044 folder missing, 3051 no right to write, 3026 disk full.
    std::shared_ptr<Database> CreateDatabase(const QString& path, const QString& locale,
                                             int options = dbVersion40);

    /// The same for a file that is to be filled before anybody sees it: it gets its name by Publish or by its
    /// Close. Then it takes the place of `old`, if there is one and it still stands there, and of no other
    /// file (3204). If it is dropped before, no trace of it is left.
    std::shared_ptr<Database> PrepareDatabase(const QString& path, const QString& locale, int options,
                                              std::shared_ptr<const runtime::OldFile> old = {});
    /// Makes what was written durable, gives the file its name, and that to the disk, and opens it again
    /// under it. Not within a transaction. Behind a failure, which is one of the file's making, of a commit
    /// or of an opening, the database is to be discarded.
    void Publish(Database& database);

    /// One transaction over all databases of the workspace, schema statements included; up to 5 levels
    /// (3003).
    void BeginTrans();
    /// Failure 3034 without BeginTrans. When the outermost level returns, the data is on the disk.
    void CommitTrans();
    void Rollback();

    /// Rolls back what is pending in a transaction and closes the databases. Failure 3420 if closed already.
    /// The default workspace can be used again afterwards.
    void Close();

private:
    friend class DBEngine;
    explicit Workspace(bool isDefault)
        : m_isDefault(isDefault) {}
    void CheckOpen() const;
    void CheckTransaction() const;
    std::shared_ptr<Connection> Connect(const QString& path, const QString& file = {});
    void RollBackAll();

    std::vector<std::weak_ptr<Connection>> m_connections;
    int m_depth = 0;
    bool m_closed = false;
    const bool m_isDefault;
};

/// The engine of the process.
class DBEngine {
public:
    /// The default workspace, number 0; failure 3265 for any other number.
    static std::shared_ptr<Workspace> Workspaces(int index);
    /// A further workspace; name, user and password are taken and not looked at.
    static std::shared_ptr<Workspace> CreateWorkspace(const QString& name, const QString& user,
                                                      const QString& password);

    /// Columns for which the storage keeps indexes of its own in every file that is written to from now on.
    static void SetLookUps(std::vector<LookUp> lookUps);

    /// Makes all finished statements outside transactions durable, on every open database. Called before
    /// every message box. If a group of statements could not be made durable, or was lost before, its failure
    /// is raised here, once: no success may be reported then.
    static void Commit();

    /// Deletes a database file if it still stands at its place, and the journals that a crash may have left
    /// with it. Failures as runtime::OldFile::Delete.
    static void KillDatabase(const runtime::OldFile& file);

    /// Drops the memory of a lost group without raising it: its failure has been shown.
    static void AcknowledgeLoss() noexcept;
};

} // namespace engine
