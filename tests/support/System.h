#pragma once

#include <QStringList>

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

/// A second name for a file.
bool LinkFile(const QString& path, const QString& name);
/// A name that leads to another; false where making one is for administrators.
bool LinkByName(const QString& path, const QString& name);

} // namespace test
