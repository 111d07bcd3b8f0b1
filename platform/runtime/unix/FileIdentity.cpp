#include "platform/runtime/FileIdentity.h"

#include <QFile>

#include <sys/stat.h>

namespace runtime {

std::optional<FileIdentity> IdentityOf(const QString& path) {
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return FileIdentity{static_cast<quint64>(status.st_dev), static_cast<quint64>(status.st_ino)};
}

} // namespace runtime
