#include "platform/engine/jet4/Replacement.h"

#include "platform/engine/EngineError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <filesystem>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace engine::jet4 {

namespace {

namespace fs = std::filesystem;

fs::path FilePath(const QString& path) {
    return {path.toStdU16String()};
}

bool Stands(const QString& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(FilePath(path), error));
}

bool IsSameFile(const QString& a, const QString& b) {
    std::error_code error;
    return fs::equivalent(FilePath(a), FilePath(b), error) && !error;
}

void Check(const std::error_code& error, const QString& path) {
    if (!error)
        return;
    if (error == std::errc::no_space_on_device)
        RaiseEngine(DiskFull);
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted ||
        error == std::errc::read_only_file_system)
        RaiseEngine(CannotOpenFile, path);
    RaiseEngine(DiskOrNetworkFailure);
}

QString FolderOf(const QString& path) {
    return QFileInfo(path).absolutePath();
}

/// Gives the old file its second name; tells whether its first one is gone with that. By a link the file
/// never lacks its first name; where the file system knows no links it is renamed.
bool GiveSecondName(Disk& disk, const QString& path, const QString& kept) {
    if (Stands(kept) && IsSameFile(path, kept))
        return false;
    const std::error_code linked = disk.Link(path, kept);
    if (!linked)
        return false;
    if (Stands(kept))
        Check(linked, path);
    Check(disk.Rename(path, kept), path);
    return true;
}

} // namespace

std::error_code Disk::Sync(const QString& path) {
#ifdef Q_OS_UNIX
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    const bool synced = descriptor >= 0 && ::fsync(descriptor) == 0;
    const std::error_code error =
        synced ? std::error_code() : std::error_code(errno, std::generic_category());
    if (descriptor >= 0)
        ::close(descriptor);
    return error;
#else
    Q_UNUSED(path)
    return {};
#endif
}

std::error_code Disk::Link(const QString& path, const QString& name) {
    std::error_code error;
    fs::create_hard_link(FilePath(path), FilePath(name), error);
    return error;
}

std::error_code Disk::Rename(const QString& path, const QString& name) {
    std::error_code error;
    fs::rename(FilePath(path), FilePath(name), error);
    return error;
}

std::error_code Disk::Remove(const QString& path) {
    std::error_code error;
    fs::remove(FilePath(path), error);
    return error;
}

QString KeptName(const QString& path, int place) {
    const QFileInfo file(path);
    const QString mark = place == 1 ? QStringLiteral(".jet4") : QStringLiteral(".jet4-%1").arg(place);
    const QString suffix = file.suffix();
    const QString name = file.completeBaseName() + mark + (suffix.isEmpty() ? suffix : u'.' + suffix);
    return file.dir().filePath(name);
}

QString FreeKeptName(const QString& path) {
    for (int place = 1;; ++place) {
        QString name = KeptName(path, place);
        if (!Stands(name) || IsSameFile(path, name))
            return name;
    }
}

QString ReplaceKeeping(Disk& disk, const QString& finished, const QString& path) {
    Check(disk.Sync(finished), path);
    QString kept = FreeKeptName(path);
    const bool moved = GiveSecondName(disk, path, kept);
    const auto takeBack = [&] { return moved ? disk.Rename(kept, path) : disk.Remove(kept); };
    std::error_code error = disk.Sync(FolderOf(path));
    if (!error)
        error = disk.Rename(finished, path);
    if (error) {
        takeBack();
        Check(error, path);
    }
    Check(disk.Sync(FolderOf(path)), path);
    return kept;
}

} // namespace engine::jet4
