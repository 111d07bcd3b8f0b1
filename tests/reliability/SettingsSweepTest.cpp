// The program stores and reads its setting on a system whose calls fail.

#include "platform/runtime/Settings.h"
#include "shared/Declaration.h"
#include "tests/reliability/CallSweep.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSettings>

namespace {

const QString Key = QStringLiteral("DB_Path");

/// The store holds a path.
class Setting : public testing::Test, public test::Work {
protected:
    void Prepare() override {
        QDir(Folder()).removeRecursively();
        if (!Before().isEmpty()) {
            QSettings store(Store(), QSettings::IniFormat);
            store.setValue(QStringLiteral("Zavelik/General/DB_Path"), Before());
            store.setValue(QStringLiteral("Zavelik/General/other"), 1);
        } else {
            QDir().mkpath(Folder());
        }
        runtime::UseSettingsFile(Store());
    }
    void Act() override { gRegister().SaveKeyVal(Key, QStringLiteral("/новая.mdb")); }
    bool WasReported(const QStringList& boxes) const override { return boxes.isEmpty(); }
    void CheckFiles(bool reported) override {
        // Without any sync the old file cannot be put back either.
        if (reported || (!cutsPower && fault != "no sync, lasting")) {
            EXPECT_EQ(Stored(), reported ? QStringLiteral("/новая.mdb") : Before());
        }
        EXPECT_TRUE(Stored() == u"/новая.mdb" || Stored() == Before()) << Stored().toStdString();
        if (!cutsPower) {
            EXPECT_LE(QDir(Folder()).entryList(QDir::Files | QDir::Hidden).size(), 1);
        }
    }
    void ActAgain() override { Act(); }
    void StartAgain() override { Act(); }
    void Leave() override {}
    void CheckEnd() override { EXPECT_EQ(Stored(), QStringLiteral("/новая.mdb")); }

    virtual QString Before() const { return QStringLiteral("/старая.mdb"); }
    QString Folder() const { return m_folder.Path(QStringLiteral("config")); }
    QString Store() const { return Folder() + QStringLiteral("/settings.ini"); }

    /// As the toolkit reads it: from a copy, since it keeps in mind what it has read under a name.
    QString Stored() {
        const QString copy = m_folder.Path(QString::number(++m_copies));
        QFile::copy(Store(), copy);
        const QSettings store(copy, QSettings::IniFormat);
        EXPECT_TRUE(Before().isEmpty() || store.value(QStringLiteral("Zavelik/General/other")) == 1);
        return store.value(QStringLiteral("Zavelik/General/DB_Path")).toString();
    }

private:
    test::TestFolder m_folder;
    int m_copies = 0;
};

class FirstSetting : public Setting {
    QString Before() const override { return {}; }
};

/// What cannot be read is told, and not taken for a setting that is not there.
class SettingRead : public Setting {
    void Act() override { m_value = gRegister().GetKeyVal(Key); }
    void CheckFiles(bool reported) override {
        if (!cutsPower) {
            EXPECT_EQ(m_value, reported ? Before() : QString());
        }
        EXPECT_EQ(Stored(), Before());
    }
    void CheckEnd() override { EXPECT_EQ(m_value, Before()); }

    QString m_value;
};

} // namespace

TEST_F(Setting, OnASystemThatFails) {
    test::SweepCalls(*this, "setting", Folder(), 10);
}

TEST_F(FirstSetting, OnASystemThatFails) {
    test::SweepCalls(*this, "first setting", Folder(), 10);
}

TEST_F(SettingRead, OnASystemThatFails) {
    test::SweepCalls(*this, "reading the setting", Folder(), 10);
}
