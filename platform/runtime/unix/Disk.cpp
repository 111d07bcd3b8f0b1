#include "platform/runtime/Disk.h"

#include "platform/runtime/DiskSync.h"
#include "platform/runtime/System.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

namespace runtime {

namespace {

namespace fs = std::filesystem;

constexpr off_t firstLockOfSqlite = 0x40000000;
constexpr off_t locksOfSqlite = 512;
constexpr off_t markedByte = firstLockOfSqlite + locksOfSqlite;

fs::path FilePath(const QString& path) {
    return {path.toStdU16String()};
}

/// An open file.
class Descriptor {
public:
    Descriptor(const QString& path, int flags)
        : m_number(
              ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666)) {}
    ~Descriptor() {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    explicit operator bool() const { return m_number >= 0; }
    int operator*() const { return m_number; }
    int Release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

struct flock LockOf(short kind, off_t start, off_t length) {
    struct flock lock = {};
    lock.l_type = kind;
    lock.l_whence = SEEK_SET;
    lock.l_start = start;
    lock.l_len = length;
    return lock;
}

bool IsLockedIn(int descriptor, off_t start, off_t length) {
    struct flock lock = LockOf(F_WRLCK, start, length);
    return ::fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

} // namespace

std::error_code Disk::Sync(const QString& path) {
    if (QFileInfo(path).isDir())
        return SyncFolderOf(path + QStringLiteral("/."));
    QFile file(path);
    ForgetLastError();
    return file.open(QFile::ReadOnly | QFile::Unbuffered) ? SyncFile(file) : WriteErrorOf(file);
}

std::error_code Disk::Link(const QString& path, const QString& name) {
    std::error_code error;
    fs::create_hard_link(FilePath(path), FilePath(name), error);
    return error;
}

std::error_code Disk::Name(const QString& path, const QString& name) {
    const QByteArray from = QFile::encodeName(path);
    const QByteArray to = QFile::encodeName(name);
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return LastError();
    // This file system cannot do it in one step. A link does not replace a file either; where there are no
    // links, the short moment between the look and the renaming is accepted.
    const std::error_code linked = Link(path, name);
    if (!linked)
        return Remove(path);
    if (Stands(name))
        return std::make_error_code(std::errc::file_exists);
    return Rename(path, name);
}

std::error_code Disk::Rename(const QString& path, const QString& name) {
    std::error_code error;
    fs::rename(FilePath(path), FilePath(name), error);
    return error;
}

std::error_code Disk::Remove(const QString& path) {
    return ::unlink(QFile::encodeName(path).constData()) == 0 || errno == ENOENT ? std::error_code()
                                                                                 : LastError();
}

FileMark::~FileMark() {
    if (m_file >= 0)
        ::close(static_cast<int>(m_file));
}

FileMark::FileMark(FileMark&& other) noexcept
    : m_file(std::exchange(other.m_file, -1)) {
}

// What is marked can be replaced.
void FileMark::MakeWay() {
}

FileMark::Result FileMark::Take(const QString& path, bool alone) {
    Descriptor file(path, alone ? O_RDWR | O_NOFOLLOW : O_RDONLY);
    if (!file)
        return Result::Unavailable;
    struct flock lock = LockOf(alone ? F_WRLCK : F_RDLCK, markedByte, 1);
    if (::fcntl(*file, F_OFD_SETLK, &lock) != 0)
        return errno == EAGAIN || errno == EACCES ? Result::Busy : Result::Unavailable;
    m_file = file.Release();
    return Result::Taken;
}

FileMark::Result FileMark::TakeShared(const QString& path) {
    return Take(path, false);
}

FileMark::Result FileMark::TakeAlone(const QString& path) {
    const Result result = Take(path, true);
    return result == Result::Taken && IsLockedIn(static_cast<int>(m_file), firstLockOfSqlite, locksOfSqlite)
               ? Result::Busy
               : result;
}

bool FileMark::IsLocked(const QString& path) {
    const Descriptor file(path, O_RDONLY | O_NOFOLLOW);
    return file && IsLockedIn(*file, 0, 0);
}

bool FileMark::IsInUse(const QString& path) {
    const Descriptor file(path, O_RDONLY);
    return file &&
           (IsLockedIn(*file, 0, 0) || (::flock(*file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK));
}

} // namespace runtime
