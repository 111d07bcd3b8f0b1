#include "tests/support/System.h"

#include <gtest/gtest.h>

#include <QFile>

#include <filesystem>
#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace test {

#ifdef Q_OS_UNIX
SmallDisk::SmallDisk(qint64 bytes)
    : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
    rlimit limit = {};
    EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    m_before = std::exchange(limit.rlim_cur, static_cast<rlim_t>(bytes));
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

SmallDisk::~SmallDisk() {
    rlimit limit = {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = m_before;
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
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
    EXPECT_TRUE(!m_changed || ::seteuid(0) == 0);
}

bool LinkByName(const QString& path, const QString& name) {
    return QFile::link(path, name);
}
#else
SmallDisk::SmallDisk(qint64) {
    ADD_FAILURE() << "no limits here: this test has to stand aside";
}

SmallDisk::~SmallDisk() = default;
PlainUser::PlainUser(const QStringList&) {
}
PlainUser::~PlainUser() = default;

bool LinkByName(const QString&, const QString&) {
    return false;
}
#endif

bool LinkFile(const QString& path, const QString& name) {
    std::error_code error;
    std::filesystem::create_hard_link(path.toStdU16String(), name.toStdU16String(), error);
    return !error;
}

} // namespace test
