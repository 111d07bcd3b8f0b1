#pragma once

#include <QByteArrayView>
#include <QString>

namespace engine {

/// Marks a file as ours in its header ("ZVTB").
inline constexpr std::int32_t applicationId = 0x5a565442;

/// Looks at a file before SQLite does, so that what is no database of ours is neither waited for nor written
/// to. Failures: 3044, 3024, 3051, 3041, 3343. Not for a file that this process has open: closing a second
/// handle would drop SQLite's locks.
void CheckDatabaseFile(const QString& path);

/// Whether the first bytes of a file, as many as a header has or less, are those of a database of ours.
bool IsHeaderOfOurs(QByteArrayView bytes);
inline constexpr int headerSize = 100;

/// Whether the rollback journal of the file names another file, which SQLite would delete behind the
/// rollback. Ours never do.
bool JournalNamesAFile(const QString& journal);

/// Makes an empty database file under a temporary name, gives it to the disk and then its name, which never
/// replaces a file. What crashes have left in the folder is tidied away. Failures: 3044, 3204, 3051, 3026,
/// 3043.
void CreateDatabaseFile(const QString& path);

/// A new name for a file that is to be made in the folder before it bears its own; hidden, so that no dialog
/// offers what a crash may leave.
QString TemporaryName(const QString& folder);

/// Takes away the journal of a database file that is gone, so that it is not taken for that of the next file
/// of this name. False if it is still there.
bool RemoveJournal(const QString& path);

} // namespace engine
