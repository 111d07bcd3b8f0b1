#include "platform/runtime/FileIdentity.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

namespace runtime {

#ifdef Q_OS_UNIX

std::optional<FileIdentity> IdentityOf(const QString& path) {
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return FileIdentity{static_cast<quint64>(status.st_dev), static_cast<quint64>(status.st_ino)};
}

#else

// The system refuses by itself to touch a file that is open; the path in its one true spelling is enough
// here.
std::optional<FileIdentity> IdentityOf(const QString& path) {
    const QString canonical = QFileInfo(path).canonicalFilePath();
    if (canonical.isEmpty())
        return std::nullopt;
    return FileIdentity{0, static_cast<quint64>(qHash(canonical.toLower()))};
}

#endif

} // namespace runtime
