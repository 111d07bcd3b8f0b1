#pragma once

#include "platform/runtime/Disk.h"
#include "platform/runtime/FileIdentity.h"

#include <QString>

#include <chrono>
#include <memory>

namespace runtime {

/// Whether a plain file stands at the path: no folder, no hidden file (leading dot on Unix), no device or
/// pipe. The empty text is none. Never opens the file.
bool IsPlainFile(const QString& path);

/// The same, where hidden files count as well.
bool IsFile(const QString& path);

/// Deletes a file. Failures: 53 missing, 75 a folder, a link or read-only, 70 no right to or open as a
/// database in this program (under any spelling of its path or through a link) or another, 52 malformed path.
void Kill(const QString& path);

/// A file that the user has agreed to lose. It stays until another takes its place or it is deleted, and
/// meanwhile no other program opens it as its book.
class OldFile {
public:
    /// Failures as Kill.
    explicit OldFile(const QString& path);

    const QString& Path() const { return m_path; }
    /// Whether it is this very file that stands at its path.
    bool Stands() const;
    /// To be called right before another file takes its place.
    void MakeWay() const { m_mark.MakeWay(); }
    /// Deletes it if it stands there. Failures 70 and 75 as Kill.
    void Delete() const;

private:
    QString m_path;
    FileIdentity m_identity;
    mutable FileMark m_mark;
};

/// The files that this process holds open as databases, by identity (device and file number), not by path.
/// The engine registers a file for as long as it is open. Other programs see it by a mark on the file.
class OpenDatabaseFile {
public:
    /// How long a program that is about to replace the file is waited for. Tests shorten it.
    static inline std::chrono::milliseconds longestWait{5000};

    explicit OpenDatabaseFile(const QString& path);
    ~OpenDatabaseFile();
    OpenDatabaseFile(const OpenDatabaseFile&) = delete;
    OpenDatabaseFile& operator=(const OpenDatabaseFile&) = delete;

    /// False: another program still has the file for itself; it must not be opened.
    bool Granted() const { return m_granted; }

    /// Whether the file that the path leads to is registered.
    static bool Holds(const QString& path);

private:
    bool Register(const QString& path);

    FileIdentity m_identity;
    bool m_granted = false;
};

/// A text file being written: Windows-1251 bytes, unknown characters as '?', lines ended by CR LF.
class OutputFile {
public:
    /// Makes the file. Failures: 58 it is there already, 75 a folder, device or link is, 76 missing folder,
    /// 70 no right to the folder, 61 disk full.
    explicit OutputFile(const QString& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Writes one line and its CR LF. Failure 61 on a full disk, 57 on another device failure.
    void Print(const QString& line);
    /// Writes what is buffered and gives it and its name to the disk; failures as Print. The destructor
    /// closes silently.
    void Close();

private:
    struct Impl;
    std::unique_ptr<Impl> m;
};

/// A text file being read: Windows-1251 bytes; a line ends at CR or CR LF, a lone LF is text; byte 1A ends
/// the file.
class InputFile {
public:
    /// Failures: 53 missing, 75 a folder or no right to read, 52 malformed path, 70 open as a database in
    /// this program.
    explicit InputFile(const QString& path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    bool AtEnd() const;
    /// The next line without its end; failures 62 at the end of the file, 7 for a line of more than 64 MB.
    QString LineInput();
    void Close();

private:
    struct Impl;
    std::unique_ptr<Impl> m;
};

/// The folder "beside the program": that of the executable where the user can write there, else the user's
/// documents folder. No separator at its end.
QString ProgramFolder();

/// Joins folder and name with the platform's separator.
QString JoinPath(const QString& folder, const QString& name);

} // namespace runtime
