#pragma once

#include <QString>

#include <system_error>

class QFile;

namespace runtime {

// What each system answers in its own way; the answers stand in unix/ and windows/.

/// The error of the last call of the system, as the standard's conditions know it; none behind
/// ForgetLastError.
std::error_code LastError();
void ForgetLastError();

/// Whether the system could take the text for the path of a file at all.
bool IsPossiblePath(const QString& path);
/// The path as the system's calls take it, however long it is.
QString NativePath(const QString& path);
/// Whether the path names a device by its words alone.
bool NamesDevice(const QString& path);
/// Whether the user may make files in the folder.
bool MayMakeFilesIn(const QString& folder);
/// Whether a folder holds programs of the whole system, where no user's file belongs.
bool IsSystemFolder(const QString& folder);

/// Hides a file whose name begins with a dot, where that alone does not do it.
void MarkHidden(const QString& path);

/// Whether people know the system's own file dialogs, and these check and do not ask what our callers do.
bool OffersFileDialogs();

/// Opens a file for reading without ever waiting, whatever kind of file it is.
std::error_code OpenAtOnce(QFile& file);

} // namespace runtime
