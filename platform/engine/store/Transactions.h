#pragma once

#include "platform/engine/GroupClock.h"
#include "platform/engine/store/Sqlite.h"

#include <functional>
#include <optional>

namespace engine {

/// When the changes of one connection become durable.
///
/// Inside BeginTrans every level is SQLite's transaction or a savepoint, opened at the first statement that
/// writes. Outside, finished statements gather in a group, which is committed when the program comes to rest,
/// and at the latest by the first statement of any kind a short while after its first one. A group that is
/// lost is remembered until it has been raised, so that a routine which passes over failing statements cannot
/// report success.
class Transactions {
public:
    /// `look` gives a SQLite code: whether the file still stands where it was opened; nothing is written
    /// otherwise. `undone` is called whenever finished statements have been taken back.
    Transactions(const Sqlite& db, std::function<int()> look, std::function<void()> undone);

    void BeginTrans(); ///< the level limit is the workspace's
    void CommitTrans();
    void Rollback();
    int Depth() const { return m_depth; }

    /// Raises a remembered loss: what a statement stands on may be gone.
    void RaiseLoss() const;
    /// Makes sure that a statement may write: raises a remembered loss, opens the group or the levels. True
    /// if the write lock has been taken by this call. `table` is for the message.
    bool BeforeWrite(Doing doing, const QString& table);
    void StatementDone();
    /// Runs a statement; behind a failure looks whether SQLite has taken back more than that.
    template <class Work>
    auto Account(Work work) -> decltype(work()) {
        try {
            return work();
        } catch (const runtime::Failure& failure) {
            StatementFailed(failure);
            throw;
        } catch (const std::bad_alloc&) {
            StatementFailed(MemoryFailure());
            throw;
        }
    }

    /// Raises a failure if SQLite has taken the open transaction back unnoticed: what is written now would
    /// stand alone.
    void CheckAlive();

    /// Commits the group if it is old enough and nobody else is reading just now. A failure is remembered
    /// too.
    void CommitDueGroup();
    /// Commits the group, waiting for locks; raises a failure or a remembered loss, once; an UnsyncedCommit
    /// if all of it is in the file. Nothing in a transaction.
    void CommitGroup();
    void AcknowledgeLoss() noexcept;
    /// Takes back what is not committed.
    void Abandon() noexcept;

    /// While this connection may write nobody else changes the file.
    bool HoldsLock() const { return m_groupOpen || m_openLevels > 0; }

private:
    void StatementFailed(const runtime::Failure& failure);
    /// Takes the write lock; a SQLite code.
    int Begin() const;
    void OpenLevels(Doing doing, const QString& table);
    int RunCommit();
    void RaiseUnsynced();
    [[noreturn]] void LoseGroup(int code, bool remember);

    const Sqlite& m_db;
    std::function<int()> m_look;
    std::function<void()> m_undone;
    int m_depth = 0;      ///< levels begun
    int m_openLevels = 0; ///< levels that SQLite knows of
    bool m_groupOpen = false;
    int m_groupStatements = 0;
    GroupClock::Time m_groupDue;
    std::optional<runtime::Failure> m_lost;
    bool m_unsynced = false; ///< the last commit is in the file, but perhaps not behind a power failure
};

} // namespace engine
