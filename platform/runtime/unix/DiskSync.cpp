#include "platform/runtime/DiskSync.h"

#include "platform/runtime/System.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace runtime {

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

bool IsDiskFull(const std::error_code& error) {
    return error == std::error_code(EDQUOT, std::generic_category()) ||
           error == std::errc::no_space_on_device || error == std::errc::file_too_large;
}

} // namespace runtime
