#include "tests/support/System.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace test {

namespace {

void Limit(rlim_t bytes) {
    rlimit limit = {};
    EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    limit.rlim_cur = bytes;
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

} // namespace

SmallDisk::SmallDisk(qint64 bytes)
    : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
    rlimit before = {};
    EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    m_before = before.rlim_cur;
    Limit(static_cast<rlim_t>(bytes));
}

SmallDisk::~SmallDisk() {
    Limit(m_before);
    std::signal(SIGXFSZ, m_handler);
}

PlainUser::PlainUser(const QStringList& paths) {
    if (::geteuid() != 0)
        return;
    constexpr uid_t nobody = 65534;
    for (const QString& path : paths)
        m_changed = ::chown(QFile::encodeName(path).constData(), nobody, nobody) == 0;
    m_changed = m_changed && ::seteuid(nobody) == 0;
}

PlainUser::~PlainUser() {
    if (m_changed) {
        EXPECT_EQ(::seteuid(0), 0);
    }
}

Unreadable::Unreadable(const QString& path, const QStringList& others) {
    SetRights(path, 0);
    m_user.emplace(others + QStringList{QFileInfo(path).path(), path});
}

Unreadable::~Unreadable() = default;

void SetRights(const QString& path, int rights) {
    EXPECT_EQ(::chmod(QFile::encodeName(path).constData(), static_cast<mode_t>(rights)), 0);
}

QString MakePipe(const QString& path) {
    EXPECT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    return path;
}

bool LinkFile(const QString& path, const QString& name) {
    return ::link(QFile::encodeName(path).constData(), QFile::encodeName(name).constData()) == 0;
}

bool LinkByName(const QString& path, const QString& name) {
    return QFile::link(path, name);
}

QString SpelledOtherwise(const QString& path) {
    const QFileInfo file(path);
    const QString folder = file.dir().filePath(QStringLiteral("sub"));
    EXPECT_TRUE(QFile::link(file.path(), folder));
    return folder + u'/' + file.fileName();
}

QString OddName() {
    return QStringLiteral("строка\nвторая \U0001F4D2 '`\" *?.mdb");
}

QString TooLongPath() {
    return u'/' + QStringLiteral("folder/").repeated(715);
}

QString DevicePath() {
    return QStringLiteral("/dev/zero");
}

} // namespace test
