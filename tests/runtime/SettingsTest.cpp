#include "platform/runtime/Settings.h"

#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

using runtime::DeleteSetting;
using runtime::GetSetting;
using runtime::InvalidCall;
using runtime::SaveSetting;

namespace {

const QString App = QStringLiteral("Zavelik");
const QString General = QStringLiteral("General");
const QString Key = QStringLiteral("DB_Path");

class Settings : public testing::Test {
protected:
    void SetUp() override { runtime::UseSettingsFile(Path(QStringLiteral("store.ini"))); }
    void TearDown() override { runtime::UseSettingsFile({}); }
    QString Path(const QString& name) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Settings, ValuesComeBackUnchanged) {
    EXPECT_EQ(GetSetting(App, General, Key), QString());
    EXPECT_EQ(GetSetting(App, General, Key, QStringLiteral("x")), QStringLiteral("x"));
    const QString values[] = {
        QStringLiteral("C:\\Книги\\Завелик.mdb"),
        QStringLiteral(" /home/\U0001F4D2/a,b;c=\"d\" %20\r\n.mdb "),
        QStringLiteral("\x01") + QStringLiteral("f\x7Fg\\x41 ;#"),
        QStringLiteral("@Invalid()"),
        QStringLiteral("1,2"),
        QStringLiteral(""),
    };
    const QString path = App + u'/' + General + u'/' + Key;
    int count = 0;
    for (const QString& value : values) {
        SaveSetting(App, General, Key, value);
        EXPECT_EQ(GetSetting(App, General, Key, QStringLiteral("missing")), value);
        // The toolkit's own class reads the file, and wrote those of earlier versions.
        const QString name = Path(QString::number(++count));
        ASSERT_TRUE(QFile::copy(Path(QStringLiteral("store.ini")), name));
        EXPECT_EQ(QSettings(name, QSettings::IniFormat).value(path).toString(), value);
        QSettings(name + u'x', QSettings::IniFormat).setValue(path, value);
        runtime::UseSettingsFile(name + u'x');
        EXPECT_EQ(GetSetting(App, General, Key), value);
        runtime::UseSettingsFile(Path(QStringLiteral("store.ini")));
    }
}

TEST_F(Settings, WhatOthersHaveWrittenStays) {
    const QByteArray others =
        "; remark\r\n[zavelik]\r\nGeneral\\db_path = \"/old\" ; remark\n"
        "General\\db_path2=/a, b\n\n[%General]\nx=1\n[General]\nZavelik\\General\\y=2\n";
    QFile file(Path(QStringLiteral("store.ini")));
    ASSERT_TRUE(file.open(QFile::ReadWrite));
    file.write(others);
    file.flush();
    EXPECT_EQ(GetSetting(App, General, Key), QStringLiteral("/old"));
    SaveSetting(App, General, Key, QStringLiteral("/new"));
    SaveSetting(General, General, Key, QStringLiteral("/other"));
    file.close();
    EXPECT_EQ(test::ReadBytes(file.fileName()),
              "; remark\n[zavelik]\nGeneral\\DB_Path=\"/new\"\nGeneral\\db_path2=/a, b\n\n"
              "[%General]\nGeneral\\DB_Path=\"/other\"\nx=1\n[General]\nZavelik\\General\\y=2\n");
}

TEST_F(Settings, NamesIgnoreCaseAndMayHoldAnySign) {
    const QString odd = QStringLiteral("Раздел/с\\чертой%2F");
    SaveSetting(App, odd, odd, QStringLiteral("three"));
    EXPECT_EQ(GetSetting(App, odd.toUpper(), odd.toLower()), QStringLiteral("three"));
    EXPECT_EQ(test::FailureOf([&] { SaveSetting(App, General, {}, odd); }), InvalidCall);
}

TEST_F(Settings, DeletingTakesAwayWhatWasNamed) {
    const QString other = QStringLiteral("Other");
    EXPECT_EQ(test::FailureOf([&] { DeleteSetting(App); }), InvalidCall);
    SaveSetting(App, General, Key, QStringLiteral("1"));
    SaveSetting(App, General, other, QStringLiteral("2"));
    SaveSetting(App, other, Key, QStringLiteral("3"));

    DeleteSetting(App, General, QStringLiteral("db_PATH"));
    EXPECT_EQ(GetSetting(App, General, Key), QString());
    EXPECT_EQ(GetSetting(App, General, other), QStringLiteral("2"));
    EXPECT_EQ(test::FailureOf([&] { DeleteSetting(App, General, Key); }), InvalidCall);
    DeleteSetting(App, General);
    EXPECT_EQ(GetSetting(App, General, other), QString());
    EXPECT_EQ(GetSetting(App, other, Key), QStringLiteral("3"));
    DeleteSetting(App);
    EXPECT_EQ(GetSetting(App, other, Key), QString());
}
