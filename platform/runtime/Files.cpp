#include "platform/runtime/Files.h"

#include "platform/runtime/Codec1251.h"
#include "platform/runtime/DiskSync.h"
#include "platform/runtime/Failure.h"
#include "platform/runtime/System.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

#include <chrono>
#include <map>

namespace runtime {

namespace {

constexpr char EndOfText = '\x1A';

struct HeldFile {
    int count = 0;
    FileMark mark;
};

/// Never destroyed: a database of a process-wide object is closed after the statics of this file would be
/// gone.
std::map<FileIdentity, HeldFile>& OpenDatabases() {
    static auto& files = *new std::map<FileIdentity, HeldFile>;
    return files;
}

void CheckWellFormed(const QString& path) {
    if (path.isEmpty() || !IsPossiblePath(path))
        Raise(BadFileName);
    if (NamesDevice(path))
        Raise(PathFileAccess);
}

/// No folder, device or pipe: opening one of these could block or do harm.
void CheckRegular(const QFileInfo& info) {
    if (!info.isFile())
        Raise(PathFileAccess);
}

bool MayWriteFolderOf(const QFileInfo& info) {
    return MayMakeFilesIn(info.absolutePath());
}

void CheckWritten(const std::error_code& error) {
    if (error)
        Raise(IsDiskFull(error) ? DiskFull : DeviceIOError);
}

} // namespace

bool IsFile(const QString& path) {
    return !path.isEmpty() && IsPossiblePath(path) && !NamesDevice(path) && QFileInfo(path).isFile();
}

bool IsPlainFile(const QString& path) {
    return IsFile(path) && !QFileInfo(path).isHidden();
}

void Kill(const QString& path) {
    OldFile(path).Delete();
}

OldFile::OldFile(const QString& path)
    : m_path(path) {
    CheckWellFormed(path);
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink())
        Raise(FileNotFound);
    CheckRegular(info);
    if (OpenDatabaseFile::Holds(path))
        Raise(PermissionDenied);
    if (!info.isWritable() || info.isSymLink())
        Raise(PathFileAccess);
    if (m_mark.TakeAlone(path) == FileMark::Result::Busy)
        Raise(PermissionDenied);
    m_identity = IdentityOf(path).value_or(FileIdentity());
}

bool OldFile::Stands() const {
    return !QFileInfo(m_path).isSymLink() && IdentityOf(m_path) == m_identity;
}

void OldFile::Delete() const {
    if (Stands() && Disk::Current().Remove(m_path))
        Raise(MayWriteFolderOf(QFileInfo(m_path)) ? PathFileAccess : PermissionDenied);
}

OpenDatabaseFile::OpenDatabaseFile(const QString& path) {
    using Clock = std::chrono::steady_clock;
    constexpr unsigned long Pause = 20; // ms
    const auto start = Clock::now();
    while (!(m_granted = Register(path)) && Clock::now() - start < longestWait)
        QThread::msleep(Pause);
}

/// False if another program has the file for itself, or has just put another in its place.
bool OpenDatabaseFile::Register(const QString& path) {
    m_identity = IdentityOf(path).value_or(FileIdentity());
    HeldFile& file = OpenDatabases()[m_identity];
    if (file.count == 0 && (file.mark.TakeShared(path) == FileMark::Result::Busy ||
                            IdentityOf(path).value_or(FileIdentity()) != m_identity)) {
        OpenDatabases().erase(m_identity);
        return false;
    }
    ++file.count;
    return true;
}

OpenDatabaseFile::~OpenDatabaseFile() {
    const auto place = OpenDatabases().find(m_identity);
    if (m_granted && --place->second.count == 0)
        OpenDatabases().erase(place);
}

bool OpenDatabaseFile::Holds(const QString& path) {
    const std::optional<FileIdentity> identity = IdentityOf(path);
    return identity && OpenDatabases().contains(*identity);
}

struct OutputFile::Impl {
    QFile file;
};

OutputFile::OutputFile(const QString& path)
    : m(std::make_unique<Impl>()) {
    CheckWellFormed(path);
    const QFileInfo info(path);
    if (info.exists())
        CheckRegular(info);
    else if (!QFileInfo(info.absolutePath()).isDir())
        Raise(PathNotFound);
    m->file.setFileName(path);
    ForgetLastError();
    if (m->file.open(QFile::WriteOnly | QFile::NewOnly))
        return;
    if (IsDiskFull(WriteErrorOf(m->file)))
        Raise(DiskFull);
    if (runtime::Stands(path))
        Raise(info.isSymLink() ? PathFileAccess : FileAlreadyExists);
    Raise(MayWriteFolderOf(info) ? PathFileAccess : PermissionDenied);
}

OutputFile::~OutputFile() = default;

void OutputFile::Print(const QString& line) {
    const QByteArray bytes = To1251(line) + "\r\n";
    ForgetLastError();
    if (m->file.write(bytes) != bytes.size())
        CheckWritten(WriteErrorOf(m->file));
}

void OutputFile::Close() {
    if (!m->file.isOpen())
        return;
    CheckWritten(SyncFile(m->file));
    m->file.close();
    CheckWritten(SyncFolderOf(m->file.fileName()));
}

struct InputFile::Impl {
    QFile file;
    QByteArray buffer;
    qsizetype place = 0;

    /// Makes sure that the byte at `ahead` behind the place is in the buffer; false at the end of the file.
    bool Reach(qsizetype ahead) {
        constexpr qint64 Portion = 1 << 16;
        while (place + ahead >= buffer.size()) {
            const QByteArray more = file.isOpen() ? file.read(Portion) : QByteArray();
            if (file.isOpen() && file.error() != QFile::NoError)
                Raise(DeviceIOError);
            if (more.isEmpty())
                return false;
            if (place > Portion) {
                buffer.remove(0, place);
                place = 0;
            }
            buffer += more;
        }
        return true;
    }
};

InputFile::InputFile(const QString& path)
    : m(std::make_unique<Impl>()) {
    CheckWellFormed(path);
    const QFileInfo info(path);
    if (!info.exists())
        Raise(FileNotFound);
    CheckRegular(info);
    if (OpenDatabaseFile::Holds(path)) // closing it here would drop SQLite's locks
        Raise(PermissionDenied);
    m->file.setFileName(path);
    if (!m->file.open(QFile::ReadOnly))
        Raise(PathFileAccess);
}

InputFile::~InputFile() = default;

bool InputFile::AtEnd() const {
    return !m->Reach(0) || m->buffer[m->place] == EndOfText;
}

QString InputFile::LineInput() {
    if (AtEnd())
        Raise(InputPastEnd);
    constexpr qsizetype LongestLine = 1 << 26; // bytes; a file can be larger than the memory
    qsizetype length = 0;
    while (m->Reach(length)) {
        const char c = m->buffer[m->place + length];
        if (c == '\r' || c == EndOfText)
            break;
        if (++length > LongestLine)
            Raise(OutOfMemory);
    }
    QString line = From1251(QByteArrayView(m->buffer).sliced(m->place, length));
    m->place += length;
    if (m->Reach(0) && m->buffer[m->place] == '\r') {
        ++m->place;
        if (m->Reach(0) && m->buffer[m->place] == '\n')
            ++m->place;
    }
    return line;
}

void InputFile::Close() {
    m->file.close();
    m->buffer.clear();
    m->place = 0;
}

QString ProgramFolder() {
    const QString beside = QCoreApplication::applicationDirPath();
    if (!IsSystemFolder(beside) && MayMakeFilesIn(beside))
        return QDir::toNativeSeparators(QDir::cleanPath(beside));
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const bool usable = !documents.isEmpty() && QDir().mkpath(documents);
    return QDir::toNativeSeparators(QDir::cleanPath(usable ? documents : QDir::homePath()));
}

QString JoinPath(const QString& folder, const QString& name) {
    const QChar separator = QDir::separator();
    return folder.endsWith(separator) ? folder + name : folder + separator + name;
}

} // namespace runtime
