#include "platform/engine/jet4/OtherPrograms.h"

#include "platform/engine/EngineError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#else
#include <windows.h>
#endif

namespace engine::jet4 {

namespace {

#ifdef Q_OS_UNIX

bool IsLocked(const QString& path) {
    const int file =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (file < 0)
        return false;
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    const bool byRange = ::fcntl(file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    const bool byFile = ::flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(file);
    return byRange || byFile;
}

#else

bool IsLocked(const QString& path) {
    const std::wstring name = QDir::toNativeSeparators(path).toStdWString();
    const HANDLE file =
        ::CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return ::GetLastError() == ERROR_SHARING_VIOLATION || ::GetLastError() == ERROR_LOCK_VIOLATION;
    ::CloseHandle(file);
    return false;
}

#endif

} // namespace

void CheckNotInUse(const QString& path) {
    const QFileInfo file(path);
    const QString users = file.dir().filePath(file.completeBaseName() + QStringLiteral(".ldb"));
    for (const QString& held : {path, users, users.left(users.size() - 3) + QStringLiteral("LDB")}) {
        if (IsLocked(held))
            RaiseEngine(FileInUse, path);
    }
}

} // namespace engine::jet4
