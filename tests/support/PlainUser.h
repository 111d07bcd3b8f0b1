#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QStringList>

#include <unistd.h>

namespace test {

/// Rights do not bind the administrator, as which a build machine may run the tests: while this lives, the
/// process is another user, who owns the paths.
class PlainUser {
public:
    explicit PlainUser(const QStringList& paths) {
        if (::geteuid() != 0)
            return;
        constexpr uid_t nobody = 65534;
        for (const QString& path : paths)
            m_changed = ::chown(QFile::encodeName(path).constData(), nobody, nobody) == 0;
        m_changed = m_changed && ::seteuid(nobody) == 0;
    }
    ~PlainUser() {
        if (m_changed) {
            EXPECT_EQ(::seteuid(0), 0);
        }
    }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

private:
    bool m_changed = false;
};

} // namespace test
