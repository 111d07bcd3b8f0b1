#include "platform/engine/store/Transactions.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/store/LockWait.h"

#include <sqlite3.h>

#include <utility>

namespace engine {

namespace {

constexpr auto groupAge = std::chrono::milliseconds(50);

/// A commit ends with the removal of the journal. These codes come when the name is gone, so that nothing is
/// ever taken back, and only the disk has not confirmed that.
bool IsInFile(int code) {
    return code == SQLITE_IOERR_DIR_FSYNC || code == SQLITE_IOERR_DELETE_NOENT;
}

QByteArray LevelText(const char* text, int level) {
    return QString::fromLatin1(text).arg(level).toLatin1();
}

} // namespace

Transactions::Transactions(const Sqlite& db, std::function<int()> look, std::function<void()> undone)
    : m_db(db)
    , m_look(std::move(look))
    , m_undone(std::move(undone)) {
    LockWait::Allow(m_db.Handle(), true);
}

int Transactions::Begin() const {
    const int code = m_look();
    return code != SQLITE_OK ? code : m_db.Try("BEGIN IMMEDIATE");
}

void Transactions::BeginTrans() {
    CommitGroup();
    ++m_depth;
}

void Transactions::OpenLevels(Doing doing, const QString& table) {
    while (m_openLevels < m_depth) {
        const int level = m_openLevels + 1;
        const int code = level == 1 ? Begin() : m_db.Try(LevelText("SAVEPOINT level%1", level).constData());
        if (code != SQLITE_OK)
            throw m_db.FailureOf(code, doing, table);
        m_openLevels = level;
    }
}

void Transactions::CommitTrans() {
    CheckAlive();
    RaiseLoss();
    if (m_openLevels == m_depth) {
        const int code =
            m_depth == 1 ? RunCommit() : m_db.Try(LevelText("RELEASE level%1", m_depth).constData());
        if (code != SQLITE_OK) {
            const auto failure = m_db.FailureOf(code, Doing::Write);
            StatementFailed(failure); // the level stays, for the caller to roll back
            throw runtime::Failure(failure);
        }
        --m_openLevels;
    }
    --m_depth;
    RaiseUnsynced();
}

void Transactions::Rollback() {
    if (m_openLevels == m_depth) {
        if (m_depth == 1)
            m_db.Try("ROLLBACK");
        else
            m_db.Try(LevelText("ROLLBACK TO level%1; RELEASE level%1", m_depth).constData());
        --m_openLevels;
        m_undone();
    }
    --m_depth;
    if (m_depth == 0)
        m_lost.reset();
}

void Transactions::RaiseLoss() const {
    if (m_lost)
        throw runtime::Failure(*m_lost);
}

bool Transactions::BeforeWrite(Doing doing, const QString& table) {
    CheckAlive();
    RaiseLoss();
    const bool held = HoldsLock();
    if (m_depth > 0) {
        OpenLevels(doing, table);
    } else if (!m_groupOpen) {
        if (const int code = Begin(); code != SQLITE_OK)
            throw m_db.FailureOf(code, doing, table);
        m_groupOpen = true;
        m_groupStatements = 0;
        m_groupDue = GroupClock::Now() + groupAge;
    }
    return !held;
}

void Transactions::StatementDone() {
    if (!m_groupOpen)
        return;
    ++m_groupStatements;
    CommitDueGroup();
}

void Transactions::StatementFailed(const runtime::Failure& failure) {
    if (!HoldsLock())
        return;
    if (m_db.InTransaction()) {
        if (m_groupOpen && m_groupStatements == 0) { // nothing to keep a lock for
            m_groupOpen = false;
            m_db.Try("ROLLBACK");
        }
        return;
    }
    const bool lost = m_openLevels > 0 || (m_groupOpen && m_groupStatements > 0);
    m_openLevels = 0;
    m_groupOpen = false;
    if (lost)
        m_lost = failure;
    m_undone();
}

void Transactions::CheckAlive() {
    if (!HoldsLock() || m_db.InTransaction())
        return;
    StatementFailed(MemoryFailure());
    throw MemoryFailure();
}

/// SQLite's code, SQLITE_OK also for a commit that has not been synced to its end: the next one will do that.
int Transactions::RunCommit() {
    int code = m_look();
    if (code == SQLITE_OK)
        code = m_db.Try("COMMIT");
    const bool inFile = IsInFile(code) && !m_db.InTransaction();
    if (inFile || code == SQLITE_OK)
        m_unsynced = inFile;
    return inFile ? SQLITE_OK : code;
}

void Transactions::RaiseUnsynced() {
    if (m_depth == 0 && std::exchange(m_unsynced, false))
        throw UnsyncedCommit();
}

void Transactions::CommitDueGroup() {
    if (!m_groupOpen || GroupClock::Now() < m_groupDue)
        return;
    CheckAlive();
    LockWait::Allow(m_db.Handle(), false);
    const int code = RunCommit();
    LockWait::Allow(m_db.Handle(), true);
    if (code == SQLITE_OK)
        m_groupOpen = false;
    else if ((code & 0xff) == SQLITE_BUSY && m_db.InTransaction())
        m_groupDue = GroupClock::Now() + groupAge; // somebody is reading: the group simply grows older
    else
        LoseGroup(code, true);
}

void Transactions::CommitGroup() {
    if (m_depth > 0)
        return;
    if (m_lost) {
        const runtime::Failure failure = *std::exchange(m_lost, std::nullopt);
        throw runtime::Failure(failure);
    }
    CheckAlive();
    if (m_groupOpen) {
        if (const int code = RunCommit(); code != SQLITE_OK)
            LoseGroup(code, false);
        m_groupOpen = false;
    }
    RaiseUnsynced();
}

void Transactions::LoseGroup(int code, bool remember) {
    const auto failure = m_db.FailureOf(code, Doing::Write);
    if (m_db.InTransaction())
        m_db.Try("ROLLBACK");
    m_groupOpen = false;
    if (remember)
        m_lost = failure;
    m_undone();
    throw runtime::Failure(failure);
}

void Transactions::AcknowledgeLoss() noexcept {
    if (m_depth == 0)
        m_lost.reset();
}

void Transactions::Abandon() noexcept {
    if (m_db.InTransaction())
        m_db.Try("ROLLBACK");
    m_depth = 0;
    m_openLevels = 0;
    m_groupOpen = false;
    m_lost.reset();
}

} // namespace engine
