#include "platform/runtime/FileIdentity.h"

#include "platform/runtime/System.h"
#include "platform/runtime/windows/Handle.h"

namespace runtime {

// Opening without any right touches nothing and disturbs nobody; folders need the flag.
std::optional<FileIdentity> IdentityOf(const QString& path) {
    if (NamesDevice(path))
        return std::nullopt;
    const Handle file(path, 0, Handle::shareAll, FILE_FLAG_BACKUP_SEMANTICS);
    BY_HANDLE_FILE_INFORMATION status = {};
    if (!file || ::GetFileInformationByHandle(*file, &status) == 0)
        return std::nullopt;
    return FileIdentity{status.dwVolumeSerialNumber,
                        quint64{status.nFileIndexHigh} << 32 | status.nFileIndexLow};
}

} // namespace runtime
