#include "platform/runtime/Disk.h"

#include "platform/runtime/DiskSync.h"
#include "platform/runtime/System.h"

#include <QFile>
#include <QFileInfo>

#include <filesystem>

namespace runtime {

namespace {

Disk* usedDisk = nullptr;

} // namespace

std::error_code Disk::Write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ForgetLastError();
    if (!file.open(QFile::WriteOnly | QFile::NewOnly | QFile::Unbuffered))
        return WriteErrorOf(file);
    MarkHidden(path);
    const std::error_code error = file.write(bytes) == bytes.size() ? SyncFile(file) : WriteErrorOf(file);
    if (error)
        Remove(path);
    return error;
}

Disk& Disk::Current() {
    static Disk real;
    return usedDisk == nullptr ? real : *usedDisk;
}

void Disk::Use(Disk* disk) {
    usedDisk = disk;
}

bool Stands(const QString& path, std::error_code& error) {
    if (IsPossiblePath(path))
        return std::filesystem::exists(
            std::filesystem::symlink_status(NativePath(path).toStdU16String(), error));
    error = std::make_error_code(std::errc::filename_too_long);
    return false;
}

bool Stands(const QString& path) {
    std::error_code error;
    return Stands(path, error);
}

QString FolderOf(const QString& path) {
    return QFileInfo(path).absolutePath();
}

} // namespace runtime
