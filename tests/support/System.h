#pragma once

#include <QStringList>

#include <optional>

namespace test {

/// No file of this process may grow beyond so many bytes: what a full disk looks like. Only on Unix.
class SmallDisk {
public:
    explicit SmallDisk(qint64 bytes);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    quint64 m_before = 0;
    void (*m_handler)(int) = nullptr;
};

/// Rights do not bind the administrator, as which a build machine may run the tests: while this lives, the
/// process is another user, who owns the paths. Only on Unix.
class PlainUser {
public:
    explicit PlainUser(const QStringList& paths);
    ~PlainUser();
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

private:
    bool m_changed = false;
};

/// While this lives the file cannot be read: by its rights on Unix; on Windows somebody shares it with
/// nobody.
class Unreadable {
public:
    /// `others` stay the user's own.
    explicit Unreadable(const QString& path, const QStringList& others = {});
    ~Unreadable();
    Unreadable(const Unreadable&) = delete;
    Unreadable& operator=(const Unreadable&) = delete;

private:
    std::optional<PlainUser> m_user;
    void* m_held = nullptr;
};

/// Rights as Unix writes them; elsewhere only whether a file may be written counts.
void SetRights(const QString& path, int rights);
/// A path that leads to a pipe: a made one on Unix.
QString MakePipe(const QString& path);
/// A second name for a file.
bool LinkFile(const QString& path, const QString& name);
/// A name that leads to another; false where making one is for administrators.
bool LinkByName(const QString& path, const QString& name);
/// Another path of a file, by a link that this makes beside it.
QString SpelledOtherwise(const QString& path);

/// A file name with signs that need care, as odd as the system takes it.
QString OddName();
/// A path that is longer than the system takes.
QString TooLongPath();
/// A device that every system has.
QString DevicePath();

} // namespace test
