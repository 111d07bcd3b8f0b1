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

Unreadable::Unreadable(const QString& path, const QStringList&)
    : m_held(::CreateFileW(QDir::toNativeSeparators(path).toStdWString().c_str(), GENERIC_READ, 0, nullptr,
                           OPEN_EXISTING, 0, nullptr)) {
    EXPECT_NE(m_held, INVALID_HANDLE_VALUE);
}

Unreadable::~Unreadable() {
    ::CloseHandle(m_held);
}

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

bool LinkByName(const QString&, const QString&) {
    return false;
}

QString SpelledOtherwise(const QString& path) {
    const QString other = path + QStringLiteral(".other.mdb");
    EXPECT_TRUE(LinkFile(path, other));
    return other;
}

QString OddName() {
    return QStringLiteral("строка вторая \U0001F4D2 'x' %TEMP%^&.mdb");
}

QString TooLongPath() {
    return QStringLiteral("C:\\") + QStringLiteral("folder\\").repeated(5000);
}

QString DevicePath() {
    return QStringLiteral("NUL");
}

} // namespace test
