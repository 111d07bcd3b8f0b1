#include "platform/runtime/Settings.h"
#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <windows.h>

namespace {

/// The text that stands in the registry under the user's own key.
QString Stored(const QString& key, const QString& name) {
    std::wstring text(1000, L'\0');
    auto bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const LSTATUS status =
        ::RegGetValueW(HKEY_CURRENT_USER, key.toStdWString().c_str(), name.toStdWString().c_str(),
                       RRF_RT_REG_SZ, nullptr, text.data(), &bytes);
    return status == ERROR_SUCCESS ? QString::fromWCharArray(text.c_str()) : QString();
}

} // namespace

TEST(Registry, SettingsStandUnderTheUsersKey) {
    const QString app = QStringLiteral("ZavelikTest%1").arg(QCoreApplication::applicationPid());
    const QString general = QStringLiteral("General");
    const QString name = QStringLiteral("DB_Path");
    const QString path = QStringLiteral("D:\\Книги\\a,b;c=\"d\" %20.mdb");
    runtime::UseSettingsFile({});
    runtime::SaveSetting(app, general, name, path);
    EXPECT_EQ(runtime::GetSetting(app, QStringLiteral("GENERAL"), QStringLiteral("db_path")), path);
    EXPECT_EQ(Stored(QStringLiteral("Software\\%1\\General").arg(app), name), path);
    runtime::DeleteSetting(app, general, name);
    EXPECT_EQ(runtime::GetSetting(app, general, name), QString());
    EXPECT_NE(test::FailureOf([&] { runtime::DeleteSetting(app, general, name); }), 0);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, QStringLiteral("Software\\%1").arg(app).toStdWString().c_str());
}
