#include "platform/runtime/DiskSync.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#else
#include <io.h>
#endif

namespace runtime {

namespace {

std::error_code LastError() {
    return {errno, std::generic_category()};
}

#ifdef Q_OS_UNIX

std::error_code SyncHandle(int handle) {
    int result = 0;
    do
        result = ::fsync(handle);
    while (result != 0 && errno == EINTR);
    if (result == 0 || errno == EINVAL || errno == ENOTSUP)
        return {};
    return LastError();
}

std::error_code SyncFolder(const QString& folder) {
    const int handle = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return errno == EACCES ? std::error_code() : LastError();
    const std::error_code error = SyncHandle(handle);
    ::close(handle);
    return error;
}

#else

std::error_code SyncHandle(int handle) {
    return ::_commit(handle) == 0 ? std::error_code() : LastError();
}

// The system keeps names in order by itself.
std::error_code SyncFolder(const QString&) {
    return {};
}

#endif

} // namespace

std::error_code SyncFile(QFileDevice& file) {
    errno = 0;
    return file.flush() ? SyncHandle(file.handle()) : WriteErrorOf(file);
}

std::error_code SyncFolderOf(const QString& path) {
    const QFileInfo info(path);
    const QString behindLinks = info.canonicalPath();
    return SyncFolder(behindLinks.isEmpty() ? info.absolutePath() : behindLinks);
}

std::error_code WriteErrorOf(const QFileDevice& file) {
    if (errno != 0)
        return LastError();
    const bool full = file.error() == QFileDevice::ResourceError;
    return std::make_error_code(full ? std::errc::no_space_on_device : std::errc::io_error);
}

bool IsDiskFull(const std::error_code& error) {
#ifdef EDQUOT
    if (error == std::error_code(EDQUOT, std::generic_category()))
        return true;
#endif
    return error == std::errc::no_space_on_device || error == std::errc::file_too_large;
}

} // namespace runtime
