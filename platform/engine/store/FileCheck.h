#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstdint>

namespace engine {

class Sqlite;

/// Marks a file as ours in its header ("ZVTB").
inline constexpr std::int32_t applicationId = 0x5a565442;
inline constexpr int applicationIdOffset = 68;
inline constexpr int headerSize = 100;
inline constexpr auto sqliteMagic = QByteArrayView("SQLite format 3\0", 16);

/// Failures 3044 and 3051 if the folder of the path is none, or may not be entered.
void CheckFolder(const QString& path);

/// Looks at a file before SQLite does, so that what is no database of ours is neither waited for nor written
/// to. Failures: 3044, 3024, 3051, 3041, 3343. Not for a file that this process has open: closing a second
/// handle would drop SQLite's locks.
void CheckDatabaseFile(const QString& path);

/// Whether the first bytes of a file, as many as a header has or less, are those of a database of ours.
bool IsHeaderOfOurs(QByteArrayView bytes);

/// Whether the rollback journal of the file names another file, which SQLite would delete behind the
/// rollback. Ours never do.
bool JournalNamesAFile(const QString& journal);

/// Looks through a file that SQLite has opened. Failures: 3343 for what is no database of ours, 3049 for
/// damage, 3043 for a page that cannot be read.
void CheckSound(const Sqlite& db, const QString& file, const QString& path);

} // namespace engine
