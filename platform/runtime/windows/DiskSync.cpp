#include "platform/runtime/DiskSync.h"

#include "platform/runtime/System.h"

#include <io.h>
#include <windows.h>

namespace runtime {

std::error_code SyncHandle(int handle) {
    const auto file = reinterpret_cast<HANDLE>(::_get_osfhandle(handle));
    return ::FlushFileBuffers(file) != 0 ? std::error_code() : LastError();
}

// The system keeps a journal of names, and every renaming of ours is written through.
std::error_code SyncFolder(const QString&) {
    return {};
}

bool IsDiskFull(const std::error_code& error) {
    return error == std::errc::no_space_on_device || error == std::errc::file_too_large;
}

} // namespace runtime
