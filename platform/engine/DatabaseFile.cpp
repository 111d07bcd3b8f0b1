#include "platform/engine/DatabaseFile.h"

#include "platform/engine/EngineError.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QtEndian>
#include <sqlite3.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace engine {

namespace {

constexpr int applicationIdOffset = 68;
constexpr auto sqliteMagic = QByteArrayView("SQLite format 3\0", 16);

std::filesystem::path FilePath(const QString& path) {
    return {path.toStdU16String()};
}

void CheckFolder(const QString& path) {
    if (path.trimmed().isEmpty() || path.contains(QChar::Null))
        RaiseEngine(InvalidPath, path);
    std::error_code error;
    const auto folder = std::filesystem::absolute(FilePath(path), error).parent_path();
    if (error || !std::filesystem::is_directory(folder, error)) {
        if (error == std::errc::permission_denied)
            RaiseEngine(CannotOpenFile, path);
        RaiseEngine(InvalidPath, path);
    }
}

// The older formats of this engine's family begin alike: a mark, then 0 for the format before the last.
bool IsOlderFormat(QByteArrayView header) {
    return header.size() > 20 && header.sliced(4).startsWith("Standard ") &&
           header.sliced(16, 4) == QByteArrayView(" DB\0", 4) && header[20] == 0;
}

QByteArray ReadHeader(const QString& path) {
    QFile file(path);
#ifdef Q_OS_UNIX
    // Never waits, whatever kind of file takes the place between the look at it and here.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        RaiseEngine(errno == ENOENT ? FileNotFound : CannotOpenFile, path);
    if (!file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        RaiseEngine(CannotOpenFile, path);
    }
#else
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        RaiseEngine(CannotOpenFile, path);
#endif
    QByteArray header = file.read(headerSize);
    if (header.isEmpty() && file.error() != QFileDevice::NoError)
        RaiseEngine(DiskOrNetworkFailure);
    return header;
}

constexpr auto TemporaryFiles = ".zavelik-%1.new";

/// Much longer than the making of a file takes: what has not been written to for that long was left by a
/// crash.
constexpr int staleAfterHours = 24;

void RemoveStale(const QDir& folder) {
    const QString pattern = QLatin1String(TemporaryFiles).arg(u'*');
    const QDateTime limit = QDateTime::currentDateTimeUtc().addSecs(-staleAfterHours * 3600);
    for (const QFileInfo& file : folder.entryInfoList({pattern, pattern + QStringLiteral("-journal")},
                                                      QDir::Files | QDir::Hidden | QDir::NoSymLinks)) {
        if (file.lastModified() < limit)
            QFile::remove(file.filePath());
    }
}

struct CloseDatabase {
    void operator()(sqlite3* db) const { sqlite3_close(db); }
};

[[noreturn]] void RaiseMemory() {
    runtime::Raise(runtime::OutOfMemory);
}

// The bytes of an empty database. A table that comes and goes makes SQLite write the text form into the
// header.
QByteArray EmptyImage() {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(
        ":memory:", &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY, nullptr);
    const std::unique_ptr<sqlite3, CloseDatabase> db(opened);
    if (code != SQLITE_OK)
        RaiseMemory();
    const QByteArray script =
        "PRAGMA page_size = 4096; PRAGMA encoding = 'UTF-16le'; PRAGMA application_id = " +
        QByteArray::number(applicationId) + "; CREATE TABLE t (c); DROP TABLE t; VACUUM;";
    if (sqlite3_exec(db.get(), script.constData(), nullptr, nullptr, nullptr) != SQLITE_OK)
        RaiseMemory();
    sqlite3_int64 size = 0;
    const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
        sqlite3_serialize(db.get(), "main", &size, 0), &sqlite3_free);
    if (!bytes)
        RaiseMemory();
    return {reinterpret_cast<const char*>(bytes.get()), static_cast<qsizetype>(size)};
}

bool Sync(QFile& file) {
#ifdef Q_OS_UNIX
    return ::fsync(file.handle()) == 0;
#else
    return file.flush();
#endif
}

// Gives a finished file its name; a hard link cannot replace a file. Where the file system has no links, the
// short moment between the look and the renaming is accepted.
std::error_code GiveName(const QString& temporary, const QString& path) {
    std::error_code error;
    std::filesystem::create_hard_link(FilePath(temporary), FilePath(path), error);
    if (!error || error == std::errc::file_exists) {
        QFile::remove(temporary);
        return error;
    }
    std::error_code unseen;
    if (std::filesystem::exists(std::filesystem::symlink_status(FilePath(path), unseen)))
        return std::make_error_code(std::errc::file_exists);
    std::filesystem::rename(FilePath(temporary), FilePath(path), error);
    return error;
}

} // namespace

void CheckDatabaseFile(const QString& path) {
    CheckFolder(path);
    std::error_code error;
    const auto status = std::filesystem::status(FilePath(path), error);
    switch (status.type()) {
    case std::filesystem::file_type::regular:
        break;
    case std::filesystem::file_type::not_found:
        RaiseEngine(error == std::errc::not_a_directory ? InvalidPath : FileNotFound, path);
    case std::filesystem::file_type::directory:
        RaiseEngine(InvalidPath, path);
    case std::filesystem::file_type::none:
    case std::filesystem::file_type::unknown:
        RaiseEngine(error == std::errc::permission_denied ? CannotOpenFile : InvalidPath, path);
    default:
        RaiseEngine(UnrecognisedFormat, path);
    }
    const QByteArray header = ReadHeader(path);
    if (IsOlderFormat(header))
        RaiseEngine(OlderFormat);
    if (!IsHeaderOfOurs(header))
        RaiseEngine(UnrecognisedFormat, path);
}

bool IsHeaderOfOurs(QByteArrayView bytes) {
    return bytes.size() == headerSize && bytes.startsWith(sqliteMagic) &&
           qFromBigEndian<qint32>(bytes.data() + applicationIdOffset) == applicationId;
}

// The name stands at the end, followed by its length, the sum of its bytes and a mark. SQLite adds the bytes
// as the machine's char has them, with a sign or without.
bool JournalNamesAFile(const QString& journal) {
    constexpr qint64 tailSize = 16;
    constexpr qint64 longestName = 1 << 16; // SQLite itself passes over names that are much shorter
    constexpr auto mark = QByteArrayView("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8);
    QFile file(journal);
    if (!QFileInfo(journal).isFile() || !file.open(QIODevice::ReadOnly) || !file.seek(file.size() - tailSize))
        return false;
    const QByteArray tail = file.read(tailSize);
    if (tail.size() != tailSize || !tail.endsWith(mark))
        return false;
    const auto length = qFromBigEndian<quint32>(tail.constData());
    const auto sum = qFromBigEndian<quint32>(tail.constData() + sizeof length);
    if (length == 0 || length > longestName || !file.seek(file.size() - tailSize - length))
        return false;
    quint32 withSign = 0;
    quint32 without = 0;
    for (const char byte : file.read(length)) {
        withSign += static_cast<quint32>(static_cast<signed char>(byte));
        without += static_cast<unsigned char>(byte);
    }
    return sum == withSign || sum == without;
}

QString TemporaryName(const QString& folder) {
    const quint64 number = QRandomGenerator::global()->generate64();
    return QDir(folder).filePath(
        QLatin1String(TemporaryFiles).arg(QStringLiteral("%1").arg(number, 16, 16, QLatin1Char('0'))));
}

bool RemoveJournal(const QString& path) {
    const QString journal = QFileInfo(path).absoluteFilePath() + QStringLiteral("-journal");
    return QFile::remove(journal) || !QFileInfo::exists(journal);
}

void CreateDatabaseFile(const QString& path) {
    CheckFolder(path);
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(FilePath(path), error)))
        RaiseEngine(DatabaseExists, path);
    if (!RemoveJournal(path))
        RaiseEngine(CannotOpenFile, path);
    const QByteArray image = EmptyImage();
    const QString folder = QFileInfo(path).absolutePath();
    RemoveStale(QDir(folder));
    const QString temporary = TemporaryName(folder);
    QFile file(temporary);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        RaiseEngine(CannotOpenFile, path);
    const bool written = file.write(image) == image.size() && Sync(file);
    const bool full = file.error() == QFileDevice::ResourceError || errno == ENOSPC;
    file.close();
    if (!written) {
        file.remove();
        RaiseEngine(full ? DiskFull : DiskOrNetworkFailure);
    }
    if (const auto failed = GiveName(temporary, path)) {
        QFile::remove(temporary);
        if (failed == std::errc::file_exists)
            RaiseEngine(DatabaseExists, path);
        if (failed == std::errc::filename_too_long || failed == std::errc::invalid_argument)
            RaiseEngine(InvalidPath, path);
        RaiseEngine(failed == std::errc::no_space_on_device ? DiskFull : CannotOpenFile, path);
    }
    // That the name is on the disk too comes with the first commit, which gives the folder to it.
}

} // namespace engine
