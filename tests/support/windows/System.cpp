#include "tests/support/System.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <windows.h>

namespace test {

SmallDisk::SmallDisk(qint64) {
    ADD_FAILURE() << "no limits here: this test has to stand aside";
}

SmallDisk::~SmallDisk() = default;

PlainUser::PlainUser(const QStringList&) {
}

PlainUser::~PlainUser() = default;

void SetRights(const QString& path, int rights) {
    constexpr int writable = 0200;
    const auto given = QFile::ReadUser | ((rights & writable) != 0 ? QFile::WriteUser : QFile::Permission{});
    EXPECT_TRUE(QFile::setPermissions(path, given));
}

QString MakePipe(const QString&) {
    return QStringLiteral("\\\\.\\pipe\\zavelik");
}

bool LinkFile(const QString& path, const QString& name) {
    const auto native = [](const QString& text) { return QDir::toNativeSeparators(text).toStdWString(); };
    return ::CreateHardLinkW(native(name).c_str(), native(path).c_str(), nullptr) != 0;
}

} // namespace test
