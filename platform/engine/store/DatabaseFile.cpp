#include "platform/engine/store/DatabaseFile.h"

#include "platform/engine/EngineError.h"
#include "platform/runtime/DiskSync.h"
#include "platform/runtime/System.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QtEndian>
#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <system_error>

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
    if (const std::error_code error = runtime::OpenAtOnce(file))
        RaiseEngine(error == std::errc::no_such_file_or_directory ? FileNotFound : CannotOpenFile, path);
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

/// Whether the old file is there to be replaced; failure 3204 if another stands at the path.
bool Replaces(const runtime::OldFile* old, const QString& path) {
    const bool replaces = old != nullptr && old->Stands();
    if (!replaces && runtime::Stands(QFileInfo(path).absoluteFilePath()))
        RaiseEngine(DatabaseExists, path);
    return replaces;
}

/// The folder of a new file, ready for it.
QString CheckedFolder(const QString& path, const runtime::OldFile* old) {
    CheckFolder(path);
    const QString name = QFileInfo(path).absoluteFilePath();
    Replaces(old, path);
    std::error_code error;
    runtime::Stands(name + QStringLiteral("-journal"), error);
    if (error == std::errc::filename_too_long) // it could never be written to
        RaiseEngine(InvalidPath, path);
    QString folder = runtime::FolderOf(name);
    RemoveStale(QDir(folder));
    return folder;
}

// The bytes of an empty database: its one page, in the form that SQLite's documentation of files gives.
QByteArray EmptyImage() {
    constexpr int pageSize = 4096;
    QByteArray image(pageSize, '\0');
    const auto put = [&image](int offset, auto number) { qToBigEndian(number, image.data() + offset); };
    image.replace(0, sqliteMagic.size(), sqliteMagic);
    put(16, quint16{pageSize});
    image.replace(18, 6, "\x01\x01\x00\x40\x20\x20", 6); // rollback journal; fractions of a payload
    for (const int offset : {24, 28, 40, 92})            // changes, pages, schema, changes again
        put(offset, quint32{1});
    put(44, quint32{4}); // schema format
    put(56, quint32{2}); // UTF-16, little end first
    put(applicationIdOffset, applicationId);
    put(96, quint32{SQLITE_VERSION_NUMBER});
    image[headerSize] = '\x0d'; // a leaf without rows
    put(headerSize + 5, quint16{pageSize});
    return image;
}

} // namespace

void CheckDatabaseFile(const QString& path) {
    if (runtime::NamesDevice(path))
        RaiseEngine(UnrecognisedFormat, path);
    CheckFolder(path);
    if (!runtime::IsPossiblePath(path))
        RaiseEngine(InvalidPath, path);
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

bool RemoveJournals(const QString& path, runtime::Disk& disk) {
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        const QString file = QFileInfo(path).absoluteFilePath() + QLatin1String(suffix);
        if (runtime::Stands(file) && (runtime::FileMark::IsLocked(file) || disk.Remove(file)))
            return false;
    }
    return true;
}

void CheckDisk(const std::error_code& error, const QString& path) {
    if (!error)
        return;
    if (runtime::IsDiskFull(error))
        RaiseEngine(DiskFull);
    if (error == std::errc::file_exists)
        RaiseEngine(DatabaseExists, path);
    for (const auto name : {std::errc::filename_too_long, std::errc::invalid_argument})
        if (error == name)
            RaiseEngine(InvalidPath, path);
    for (const auto right :
         {std::errc::permission_denied, std::errc::operation_not_permitted, std::errc::read_only_file_system})
        if (error == right)
            RaiseEngine(CannotOpenFile, path);
    RaiseEngine(DiskOrNetworkFailure);
}

HiddenFile::HiddenFile(const QString& folder, const QString& path)
    : m_hidden(QDir(folder).filePath(QString::fromLatin1(TemporaryFiles)
                                         .arg(QRandomGenerator::global()->generate64(), 16, 16, QChar(u'0'))))
    , m_file(m_hidden) {
    CheckDisk(runtime::Disk::Current().Write(m_file, EmptyImage()), path);
    m_identity = runtime::IdentityOf(m_file).value_or(runtime::FileIdentity());
}

HiddenFile::~HiddenFile() {
    if (m_file == m_hidden)
        Remove();
}

void HiddenFile::Remove() noexcept {
    if (runtime::IdentityOf(m_file) != m_identity)
        return;
    runtime::Disk::Current().Remove(m_file);
    RemoveJournals(m_file);
}

NewFile::NewFile(const QString& path, std::shared_ptr<const runtime::OldFile> old)
    : HiddenFile(CheckedFolder(path, old.get()), path)
    , m_path(path)
    , m_name(QFileInfo(path).absoluteFilePath())
    , m_old(std::move(old)) {
}

void NewFile::GiveName() {
    if (File() == m_name)
        return;
    runtime::Disk& disk = runtime::Disk::Current();
    CheckDisk(disk.Sync(File()), m_path);
    const bool replaces = Replaces(m_old.get(), m_path);
    if (!RemoveJournals(m_name))
        RaiseEngine(CannotOpenFile, m_path);
    if (replaces)
        m_old->MakeWay();
    CheckDisk(replaces ? disk.Rename(File(), m_name) : disk.Name(File(), m_name), m_path);
    HasName(m_name);
    CheckDisk(disk.Sync(runtime::FolderOf(m_name)), m_path);
}

} // namespace engine
