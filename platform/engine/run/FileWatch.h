#pragma once

#include "platform/engine/GroupClock.h"
#include "platform/engine/store/Statement.h"
#include "platform/runtime/FileIdentity.h"

namespace engine {

/// Watches the file of a connection: whether it stands where it was opened, and what other programs change in
/// it.
class FileWatch {
public:
    enum class News { None, Rows, Tables };

    /// `file` is the path from the root, `identity` and `journal` what stood there before it was opened.
    FileWatch(const Sqlite& db, QString file, QString journal, std::optional<runtime::FileIdentity> identity);

    /// Whether the last look at the file and at others is some time ago.
    bool IsDue() const;
    /// A SQLite code: whether the file stands at its path as it was opened, and is still a database of ours.
    /// `locked`: this connection may write, so that nobody else does.
    int Look(bool locked);
    /// It did not at the last look.
    bool IsLost() const { return m_isLost; }
    /// Whether another file with the very bytes of the one that was opened stands there now.
    bool HasCopyInItsPlace() const;

    /// What others have changed since this was asked last.
    News Ask();
    /// The next change of others may be one of the tables.
    void ForgetTables() noexcept { m_seenSchema = -1; }

private:
    int StateOfFile(bool locked) const;
    std::int64_t ReadNumber(Statement& statement, QStringView pragma) const;

    const Sqlite& m_db;
    QString m_file;
    QString m_journal; ///< where SQLite keeps it, links followed
    std::optional<runtime::FileIdentity> m_identity;
    bool m_isLost = false;
    GroupClock::Time m_lastLook;
    Statement m_dataVersion;
    Statement m_schemaVersion;
    std::int64_t m_seenData = -1;
    std::int64_t m_seenSchema = -1;
};

} // namespace engine
