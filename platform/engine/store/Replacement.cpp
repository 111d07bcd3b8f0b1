#include "platform/engine/store/Replacement.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/store/NewFile.h"
#include "platform/runtime/FileIdentity.h"

#include <QDir>
#include <QFileInfo>

namespace engine {

namespace {

using runtime::FolderOf;
using runtime::Stands;

/// Whether `name` is one more name of the file; a symbolic link is none.
bool IsSecondName(const QString& path, const QString& name) {
    const auto file = runtime::IdentityOf(path);
    return file && file == runtime::IdentityOf(name) && !QFileInfo(name).isSymLink();
}

/// Gives the old file its second name; tells whether its first one is gone with that. By a link the file
/// never lacks its first name; where the file system knows no links it is renamed.
bool GiveSecondName(runtime::Disk& disk, const QString& path, const QString& kept) {
    if (IsSecondName(path, kept))
        return false;
    const std::error_code linked = disk.Link(path, kept);
    if (!linked)
        return false;
    if (Stands(kept))
        CheckDisk(linked, path);
    CheckDisk(disk.Rename(path, kept), path);
    return true;
}

} // namespace

QString KeptName(const QString& path, int place) {
    const QFileInfo file(path);
    const QString mark = place == 1 ? QStringLiteral(".jet4") : QStringLiteral(".jet4-%1").arg(place);
    const QString suffix = file.suffix();
    const QString name = file.completeBaseName() + mark + (suffix.isEmpty() ? suffix : u'.' + suffix);
    return QDir::toNativeSeparators(file.dir().filePath(name));
}

QString FreeKeptName(const QString& path) {
    for (int place = 1;; ++place) {
        QString name = KeptName(path, place);
        if (!Stands(name) || IsSecondName(path, name))
            return name;
    }
}

QString ReplaceKeeping(runtime::Disk& disk, const QString& finished, const QString& path) {
    CheckDisk(disk.Sync(finished), path);
    if (!RemoveJournals(path, disk))
        RaiseEngine(CannotOpenFile, path);
    QString kept = FreeKeptName(path);
    const bool moved = GiveSecondName(disk, path, kept);
    const auto takeBack = [&] { return moved ? disk.Rename(kept, path) : disk.Remove(kept); };
    std::error_code error = disk.Sync(FolderOf(path));
    if (!error)
        error = disk.Rename(finished, path);
    if (error) {
        takeBack();
        CheckDisk(error, path);
    }
    CheckDisk(disk.Sync(FolderOf(path)), path);
    return kept;
}

} // namespace engine
