#pragma once

#include <QString>

namespace engine {

/// Marks a file as ours in its header ("ZVTB").
inline constexpr std::int32_t applicationId = 0x5a565442;

/// Looks at a file before SQLite does, so that what is no database of ours is neither waited for nor written
/// to. Failures: 3044, 3024, 3051, 3041, 3343. Not for a file that this process has open: closing a second
/// handle would drop SQLite's locks.
void CheckDatabaseFile(const QString& path);

/// Makes an empty database file under a temporary name, gives it to the disk and then its name, which never
/// replaces a file. Failures: 3044, 3204, 3051, 3026, 3043.
void CreateDatabaseFile(const QString& path);

} // namespace engine
