#include "platform/engine/run/FileWatch.h"

#include "platform/engine/store/FileCheck.h"
#include "platform/engine/store/LockWait.h"
#include "platform/runtime/Files.h"

#include <QFile>
#include <QFileInfo>
#include <sqlite3.h>

#include <array>

namespace engine {

namespace {

constexpr auto lookInterval = std::chrono::milliseconds(50);

} // namespace

FileWatch::FileWatch(const Sqlite& db, QString file, QString journal,
                     std::optional<runtime::FileIdentity> identity)
    : m_db(db)
    , m_file(std::move(file))
    , m_journal(std::move(journal))
    , m_identity(identity) {
    Ask();
}

bool FileWatch::IsDue() const {
    return GroupClock::Now() - m_lastLook >= lookInterval;
}

int FileWatch::Look(bool locked) {
    const int code = StateOfFile(locked);
    m_isLost = code != SQLITE_OK;
    return code;
}

int FileWatch::StateOfFile(bool locked) const {
    const auto identity = runtime::IdentityOf(m_file);
    if (!identity)
        return SQLITE_READONLY_DBMOVED;
    if (identity != m_identity)
        return SQLITE_NOTADB;
    // By SQLite's own handle: closing another one would drop its locks.
    sqlite3_file* const file = m_db.File();
    std::array<char, headerSize> header{};
    const int code = file->pMethods->xRead(file, header.data(), headerSize, 0);
    if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ)
        return code;
    if (!IsHeaderOfOurs(header) || (!locked && JournalNamesAFile(m_journal)))
        return SQLITE_NOTADB;
    return SQLITE_OK;
}

bool FileWatch::HasCopyInItsPlace() const {
    if (!QFileInfo(m_file).isFile() || runtime::OpenDatabaseFile::Holds(m_file))
        return false;
    QFile copy(m_file);
    sqlite3_file* const file = m_db.File();
    sqlite3_int64 size = 0;
    if (!copy.open(QIODevice::ReadOnly) || file->pMethods->xFileSize(file, &size) != SQLITE_OK ||
        copy.size() != size)
        return false;
    QByteArray ours(1 << 16, Qt::Uninitialized);
    for (sqlite3_int64 at = 0; at < size; at += ours.size()) {
        const QByteArray theirs = copy.read(ours.size());
        if (theirs.isEmpty() ||
            file->pMethods->xRead(file, ours.data(), static_cast<int>(theirs.size()), at) != SQLITE_OK ||
            QByteArrayView(ours).first(theirs.size()) != theirs)
            return false;
    }
    return true;
}

FileWatch::News FileWatch::Ask() {
    m_lastLook = GroupClock::Now();
    LockWait::Allow(m_db.Handle(), false); // a statement waits by itself, and once is enough
    const std::int64_t data = ReadNumber(m_dataVersion, u"PRAGMA data_version");
    LockWait::Allow(m_db.Handle(), true);
    if (data == m_seenData || data < 0)
        return News::None;
    m_seenData = data;
    const std::int64_t schema = ReadNumber(m_schemaVersion, u"PRAGMA schema_version");
    return std::exchange(m_seenSchema, schema) == schema ? News::Rows : News::Tables;
}

std::int64_t FileWatch::ReadNumber(Statement& statement, QStringView pragma) const {
    try {
        if (!statement)
            statement = Statement(m_db, pragma, Doing::Read, {}, Statement::Lifetime::Kept);
        const std::int64_t number = statement.Next() ? statement.Number(0) : -1;
        statement.Reset();
        return number;
    } catch (const runtime::Failure&) {
        statement.Reset();
        return -1;
    }
}

} // namespace engine
