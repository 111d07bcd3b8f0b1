#pragma once

#include <system_error>

class QFileDevice;
class QString;

namespace runtime {

// What has been written may wait in the system's memory; these give it to the disk. Files and folders of a
// kind that cannot be told to, or that the user may not, are no error: nobody could do better.

/// The content of a file that is open for writing, with what the object has buffered.
std::error_code SyncFile(QFileDevice& file);
/// The names in the folder of that file, behind links: what was made, renamed or removed there.
std::error_code SyncFolderOf(const QString& path);

/// What made opening or writing fail, right behind that; the last error has to be forgotten before.
std::error_code WriteErrorOf(const QFileDevice& file);
/// The same by a descriptor of the C library, and by the path of a folder.
std::error_code SyncHandle(int handle);
std::error_code SyncFolder(const QString& folder);

/// Whether an error says that there is no room: the disk, the user's share of it or the size of a file.
bool IsDiskFull(const std::error_code& error);

} // namespace runtime
