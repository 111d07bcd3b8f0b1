#include "platform/engine/store/NewFile.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/store/FileCheck.h"
#include "platform/runtime/DiskSync.h"
#include "platform/runtime/System.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QtEndian>
#include <sqlite3.h>

#include <system_error>

namespace engine {

namespace {

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
