#pragma once

#include "platform/runtime/Files.h"

#include <QString>

#include <memory>
#include <system_error>

namespace engine {

/// A database file in the making, under a hidden name, so that no dialog offers what a crash may leave.
class HiddenFile {
public:
    /// Makes an empty database in the folder. Failures 3051, 3026, 3043 tell of `path`.
    HiddenFile(const QString& folder, const QString& path);
    /// Takes the file away unless it has got another name.
    ~HiddenFile();
    HiddenFile(const HiddenFile&) = delete;
    HiddenFile& operator=(const HiddenFile&) = delete;

    /// Where the file stands now.
    const QString& File() const { return m_file; }
    /// Takes the file away, wherever it stands.
    void Remove() noexcept;

protected:
    void HasName(const QString& name) { m_file = name; }

private:
    QString m_hidden;
    QString m_file;
    runtime::FileIdentity m_identity;
};

/// A file that comes to its own name when it is finished, so that a crash at any moment leaves nothing at its
/// path, or what stood there before. What crashes have left in the folder is tidied away.
class NewFile : public HiddenFile {
public:
    /// `old` may be replaced, nothing else. Failures: 3044, 3204, 3051, 3026, 3043.
    NewFile(const QString& path, std::shared_ptr<const runtime::OldFile> old);

    /// Gives the finished, closed file to the disk and then its name, in one step; nothing if it has it.
    /// Failures as the constructor's. If the name cannot be given to the disk as well, the file has it all
    /// the same.
    void GiveName();

private:
    QString m_path; ///< as it was given
    QString m_name; ///< the same from the root
    std::shared_ptr<const runtime::OldFile> m_old;
};

/// Takes away the journals that a crash or another program has left beside the name of a database file, so
/// that they are not taken for those of the next file of this name. Only while nobody has a file of that name
/// open. False if one is in use or cannot be taken away.
bool RemoveJournals(const QString& path, runtime::Disk& disk = runtime::Disk::Current());

/// Raises what a step on the disk tells: 3026, 3204, 3044, 3051 or 3043.
void CheckDisk(const std::error_code& error, const QString& path);

} // namespace engine
