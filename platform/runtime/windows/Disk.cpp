#include "platform/runtime/Disk.h"

#include "platform/runtime/System.h"
#include "platform/runtime/windows/Handle.h"

#include <QFileInfo>

#include <vector>

namespace runtime {

namespace {

constexpr DWORD firstLockOfSqlite = 0x40000000;
constexpr DWORD locksOfSqlite = 512;
constexpr DWORD markedByte = firstLockOfSqlite + locksOfSqlite;

std::error_code Outcome(BOOL done) {
    return done != 0 ? std::error_code() : LastError();
}

/// What is hidden while it is made is so no more under a name without a dot.
void ShowUnder(const QString& path, const QString& name) {
    const DWORD attributes = ::GetFileAttributesW(WidePath(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && !QFileInfo(name).fileName().startsWith(u'.'))
        ::SetFileAttributesW(WidePath(path).c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_HIDDEN});
}

/// Takes or asks for a lock; false if somebody else has one that is in its way.
bool Lock(HANDLE file, DWORD start, DWORD length, DWORD lengthHigh, bool alone) {
    OVERLAPPED place = {};
    place.Offset = start;
    const DWORD flags = LOCKFILE_FAIL_IMMEDIATELY | (alone ? LOCKFILE_EXCLUSIVE_LOCK : 0);
    return ::LockFileEx(file, flags, 0, length, lengthHigh, &place) != 0;
}

bool IsLockedIn(HANDLE file, DWORD start, DWORD length, DWORD lengthHigh) {
    if (!Lock(file, start, length, lengthHigh, true))
        return true;
    OVERLAPPED place = {};
    place.Offset = start;
    ::UnlockFileEx(file, 0, length, lengthHigh, &place);
    return false;
}

HANDLE HandleOf(std::intptr_t file) {
    return reinterpret_cast<HANDLE>(file);
}

} // namespace

std::error_code Disk::Sync(const QString& path) {
    if (QFileInfo(path).isDir())
        return {}; // names are written through when they are given
    const Handle file(path, GENERIC_WRITE);
    if (!file) {
        const std::error_code error = LastError();
        return error == std::errc::permission_denied ? std::error_code() : error;
    }
    return Outcome(::FlushFileBuffers(*file));
}

std::error_code Disk::Link(const QString& path, const QString& name) {
    return Outcome(::CreateHardLinkW(WidePath(name).c_str(), WidePath(path).c_str(), nullptr));
}

std::error_code Disk::Name(const QString& path, const QString& name) {
    ShowUnder(path, name);
    return Outcome(::MoveFileExW(WidePath(path).c_str(), WidePath(name).c_str(), MOVEFILE_WRITE_THROUGH));
}

std::error_code Disk::Rename(const QString& path, const QString& name) {
    ShowUnder(path, name);
    return Outcome(::MoveFileExW(WidePath(path).c_str(), WidePath(name).c_str(),
                                 MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}

std::error_code Disk::Remove(const QString& path) {
    if (::DeleteFileW(WidePath(path).c_str()) != 0)
        return {};
    const std::error_code error = LastError();
    return error == std::errc::no_such_file_or_directory ? std::error_code() : error;
}

FileMark::~FileMark() {
    MakeWay();
}

FileMark::FileMark(FileMark&& other) noexcept
    : m_file(std::exchange(other.m_file, -1)) {
}

void FileMark::MakeWay() {
    if (m_file != -1)
        ::CloseHandle(HandleOf(std::exchange(m_file, -1)));
}

FileMark::Result FileMark::Take(const QString& path, bool alone) {
    Handle file(path, alone ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ);
    if (!file)
        return ::GetLastError() == ERROR_SHARING_VIOLATION ? Result::Busy : Result::Unavailable;
    if (!Lock(*file, markedByte, 1, 0, alone))
        return LastError() == std::errc::permission_denied ? Result::Busy : Result::Unavailable;
    m_file = reinterpret_cast<std::intptr_t>(file.Release());
    return Result::Taken;
}

FileMark::Result FileMark::TakeShared(const QString& path) {
    return Take(path, false);
}

FileMark::Result FileMark::TakeAlone(const QString& path) {
    const Result result = Take(path, true);
    return result == Result::Taken && IsLockedIn(HandleOf(m_file), firstLockOfSqlite, locksOfSqlite, 0)
               ? Result::Busy
               : result;
}

bool FileMark::IsLocked(const QString& path) {
    const Handle file(path, GENERIC_READ);
    if (!file)
        return ::GetLastError() == ERROR_SHARING_VIOLATION;
    return IsLockedIn(*file, 0, MAXDWORD, MAXDWORD >> 1);
}

bool FileMark::IsInUse(const QString& path) {
    const Handle file(path, GENERIC_READ, FILE_SHARE_READ); // our own reader may have it open
    return !file && (::GetLastError() == ERROR_SHARING_VIOLATION || ::GetLastError() == ERROR_LOCK_VIOLATION);
}

} // namespace runtime
