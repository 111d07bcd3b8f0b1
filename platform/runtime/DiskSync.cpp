#include "platform/runtime/DiskSync.h"

#include "platform/runtime/System.h"

#include <QFile>
#include <QFileInfo>

namespace runtime {

std::error_code SyncFile(QFileDevice& file) {
    ForgetLastError();
    return file.flush() ? SyncHandle(file.handle()) : WriteErrorOf(file);
}

std::error_code SyncFolderOf(const QString& path) {
    const QFileInfo info(path);
    const QString behindLinks = info.canonicalPath();
    return SyncFolder(behindLinks.isEmpty() ? info.absolutePath() : behindLinks);
}

std::error_code WriteErrorOf(const QFileDevice& file) {
    if (const std::error_code error = LastError())
        return error;
    const bool full = file.error() == QFileDevice::ResourceError;
    return std::make_error_code(full ? std::errc::no_space_on_device : std::errc::io_error);
}

} // namespace runtime
