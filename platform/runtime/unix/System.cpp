#include "platform/runtime/System.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace runtime {

std::error_code LastError() {
    return {errno, std::generic_category()};
}

void ForgetLastError() {
    errno = 0;
}

bool IsPossiblePath(const QString& path) {
    constexpr qsizetype longestPath = 4095; // bytes
    return !path.contains(QChar::Null) && path.isValidUtf16() &&
           QFile::encodeName(path).size() <= longestPath;
}

QString NativePath(const QString& path) {
    return path;
}

// Devices are told by the kind of the file.
bool NamesDevice(const QString&) {
    return false;
}

bool MayMakeFilesIn(const QString& folder) {
    return QFileInfo(folder).isWritable();
}

bool IsSystemFolder(const QString& folder) {
    return folder.startsWith(QStringLiteral("/usr/"));
}

// They ask about overwriting before the callers do, tell the name only when they have closed, behind which a
// refused one cannot be mended, and may speak another language.
bool OffersFileDialogs() {
    return false;
}

// The dot does it.
void MarkHidden(const QString&) {
}

std::error_code OpenAtOnce(QFile& file) {
    const int descriptor =
        ::open(QFile::encodeName(file.fileName()).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        return LastError();
    if (file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle))
        return {};
    ::close(descriptor);
    return std::make_error_code(std::errc::io_error);
}

} // namespace runtime
