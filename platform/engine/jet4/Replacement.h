#pragma once

#include <QString>
#include <QStringList>

#include <system_error>

namespace engine::jet4 {

/// The steps on the disk that the change of files takes. Virtual, so that a test can let each of them fail.
class Disk {
public:
    Disk() = default;
    virtual ~Disk() = default;
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    /// Gives the bytes of a file, or the names of a folder, to the disk.
    virtual std::error_code Sync(const QString& path);
    /// A second name for a file; never replaces a file.
    virtual std::error_code Link(const QString& path, const QString& name);
    /// Renames a file; replaces one that bears the name.
    virtual std::error_code Rename(const QString& path, const QString& name);
    virtual std::error_code Remove(const QString& path);
};

/// The names under which a replaced file is kept, in order: `Book.jet4.mdb`, `Book.jet4-2.mdb` and so on.
/// Place counts from 1. Folder and name as `path` gives them.
QString KeptName(const QString& path, int place);

/// The first of these names that no file bears; a name of the file itself, left by a replacement that was cut
/// off, counts as free.
QString FreeKeptName(const QString& path);

/// Puts a finished file in the place of the one at `path`, which is kept under a free name beside it; returns
/// that path. At every moment the old file stands whole under one of its two names, and no other than the old
/// or the finished file stands at `path`. Failures 3051, 3026, 3043: the old file is at its place, the
/// finished one still where it was. Only if taking back a half-done change fails too is the old file found
/// under its second name.
QString ReplaceKeeping(Disk& disk, const QString& finished, const QString& path);

} // namespace engine::jet4
