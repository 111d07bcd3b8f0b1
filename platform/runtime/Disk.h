#pragma once

#include <QString>

#include <cstdint>
#include <system_error>

namespace runtime {

/// The steps on the disk by which files come and go: whatever differs between systems about them stands in
/// this pair of files. Virtual, so that a test can let each of them fail.
class Disk {
public:
    Disk() = default;
    virtual ~Disk() = default;
    Disk(const Disk&) = delete;
    Disk& operator=(const Disk&) = delete;

    /// Makes a file of these bytes, which are on the disk when it returns; never replaces a file. A failure
    /// leaves none.
    virtual std::error_code Write(const QString& path, const QByteArray& bytes);
    /// Gives the bytes of a file, or the names of a folder, to the disk. A device that cannot do that is no
    /// failure.
    virtual std::error_code Sync(const QString& path);
    /// A second name for a file; never replaces a file.
    virtual std::error_code Link(const QString& path, const QString& name);
    /// Renames a file in one step; never replaces a file (file_exists).
    virtual std::error_code Name(const QString& path, const QString& name);
    /// Renames a file in one step; replaces one that bears the name.
    virtual std::error_code Rename(const QString& path, const QString& name);
    /// Deletes a file; none there is no failure.
    virtual std::error_code Remove(const QString& path);

    /// The one that the program works on.
    static Disk& Current();
    /// Puts another in its place, for tests; null puts back the real one.
    static void Use(Disk* disk);
};

/// Whether anything bears the name: a file, a folder, a link that leads nowhere. `error` tells of a name that
/// the system cannot take.
bool Stands(const QString& path, std::error_code& error);
bool Stands(const QString& path);

/// The folder that holds the name.
QString FolderOf(const QString& path);

/// By this a program tells the others that it has a file open as its book, also while it is at rest: a lock
/// on one byte that no reader and no writer ever looks at, behind those that SQLite locks. It goes with the
/// process, however that ends.
///
/// Not to be taken for a file that this process has open already: giving it back drops SQLite's own locks.
class FileMark {
public:
    enum class Result {
        Taken,
        Busy,       ///< somebody else has the file open, or is working in it
        Unavailable ///< no such file, no right to it, or no locks on this drive
    };

    FileMark() = default;
    ~FileMark();
    FileMark(FileMark&& other) noexcept;
    FileMark& operator=(FileMark&&) = delete;

    /// Any number of programs may have it.
    Result TakeShared(const QString& path);
    /// Busy if any other program has the file open, or holds one of SQLite's locks on it. Links are not
    /// followed.
    Result TakeAlone(const QString& path);

    /// Gives the mark back where the system would not let the file be replaced under it.
    void MakeWay();

    /// Whether another program holds any lock on the file.
    static bool IsLocked(const QString& path);
    /// The same where programs of other makes count: also one that has locked the file as a whole or, where
    /// the system tells that, has it open for writing. Links are followed.
    static bool IsInUse(const QString& path);

private:
    Result Take(const QString& path, bool alone);

    std::intptr_t m_file = -1; ///< as the system names an open file; -1: none
};

} // namespace runtime
