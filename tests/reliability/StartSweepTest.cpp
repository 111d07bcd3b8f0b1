// The program is started on disks that fail: it creates its book, raises one of an older version, converts
// one of the old format. It stores and reads its setting.

#include "platform/forms/Form.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Settings.h"
#include "shared/Declaration.h"
#include "shell/General.h"
#include "tests/database/OldVersion.h"
#include "tests/reliability/Sweep.h"
#include "tests/support/EndTrap.h"
#include "tests/support/TestBook.h"

#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QTest>

using namespace std::chrono_literals;

namespace {

const QString Key = QStringLiteral("DB_Path");

class FolderWork : public testing::Test, public test::Work {
protected:
    QString Folder() const override { return m_folder.Path(QStringLiteral("books")); }
    QString Path() const { return Folder() + QStringLiteral("/book.mdb"); }
    void Prepare() override {
        QDir(Folder()).removeRecursively();
        QDir().mkpath(Folder());
    }
    bool WasReported(const QStringList& boxes) const override { return boxes.isEmpty(); }

private:
    test::TestFolder m_folder;
};

class StartWork : public FolderWork {
protected:
    void Prepare() override {
        FolderWork::Prepare();
        gRegister().SaveKeyVal(Key, Path());
    }
    /// What the program does from its entry to the event loop.
    void Act() override {
        const test::EndTrap trap;
        try {
            General::Main();
        } catch (const runtime::Failure& failure) {
            forms::ShowErrorBox({}, failure);
        } catch (const test::ProcessEnded&) {
            // The process is gone: nothing is closed.
        }
    }
    void ActAgain() override {
        Leave();
        Act();
    }
    void Leave() override {
        for (const auto& form : forms::Form::Loaded())
            form->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        gDatabase.reset();
        gWorkspace.reset();
    }
    void CheckEnd() override { EXPECT_EQ(Version(), QStringLiteral("3")); }

    QString Row(const char* sql) const {
        return test::ReadRows(Path(), QString::fromLatin1(sql)).join(u'\n');
    }
    QString Version() const { return Row("SELECT v00vrid FROM v00"); }
    /// Opens the book as the next program would, which puts right what was left half done.
    std::shared_ptr<engine::Database> Open() const {
        auto book = engine::DBEngine::CreateWorkspace({}, {}, {})->OpenDatabase(Path());
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
        return book;
    }
};

/// The first start: the master makes the book. After a failure its button is pressed again.
class Creation : public StartWork {
    void Prepare() override {
        StartWork::Prepare();
        gRegister().SaveKeyVal(Key, {});
    }
    void Answer(QWidget& window) override {
        window.findChild<QLineEdit*>(QStringLiteral("txtDBPath"))->setText(Path());
        Press(window);
        diskFails = false;
        if (window.isVisible() && startsAnew) {
            window.close();
        } else if (window.isVisible()) {
            EXPECT_EQ(test::FilesOf(Path(), startsAnew), QStringList());
            Press(window);
        }
    }
    static void Press(const QWidget& window) {
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCreate")), Qt::LeftButton);
    }
    bool WasReported(const QStringList& boxes) const override {
        return boxes.contains(QStringLiteral("База данных успешно создана."));
    }
    void CheckFiles(bool reported) override {
        EXPECT_TRUE(QFile::exists(Path()) || !reported);
        if (QFile::exists(Path()))
            CheckEnd();
    }
    void ActAgain() override {}
    void CheckEnd() override {
        StartWork::CheckEnd();
        EXPECT_EQ(test::FilesOf(Path(), startsAnew), QStringList{"book.mdb"});
        Open()->Close();
        EXPECT_EQ(Row("SELECT (SELECT count(*) FROM t02), (SELECT count(*) FROM t03), count(*) FROM a03"),
                  QStringLiteral("79|1913|0"));
    }
};

/// A book of an older version, with one card.
class Upgrade : public StartWork {
protected:
    explicit Upgrade(int version)
        : m_version(version) {}

    void Prepare() override {
        StartWork::Prepare();
        test::MakeBook(Path(), m_version);
    }
    void CheckFiles(bool reported) override {
        const auto db = Open();
        EXPECT_EQ(Row("SELECT a01clid, a01last FROM a01"), QStringLiteral("7|Иванов"));
        const int version = Version().toInt();
        EXPECT_TRUE(version >= (reported ? 3 : m_version) && version <= 3) << version;
        const QStringList tables = db->TableNames();
        EXPECT_EQ(tables.contains(QStringLiteral("a03")), version == 3);
        EXPECT_EQ(tables.contains(QStringLiteral("t02")), version > 1);
        EXPECT_EQ(tables.contains(QStringLiteral("t03")), version > 1);
        EXPECT_EQ(db->TableDefs(QStringLiteral("a01")).FieldsCount(), version > 1 ? 6 : 5);
        EXPECT_TRUE(version == 1 || Row("SELECT count(*) FROM t03") == (m_version == 1 ? u"1913" : u"0"));
        db->Close();
    }
    void CheckEnd() override {
        StartWork::CheckEnd();
        CheckFiles(true);
        // A card whose birthday is not known can be saved.
        const auto db = Open();
        db->Execute(QStringLiteral("UPDATE a01 SET a01bith = ''"), engine::dbFailOnError);
        db->Close();
    }

private:
    int m_version;
};

class UpgradeFrom1 : public Upgrade {
protected:
    UpgradeFrom1()
        : Upgrade(1) {}
};

class UpgradeFrom2 : public Upgrade {
protected:
    UpgradeFrom2()
        : Upgrade(2) {}
};

#ifdef Q_OS_UNIX
/// A book of the old format: its bytes are there in any case.
class Conversion : public StartWork {
    void Prepare() override {
        StartWork::Prepare();
        test::WriteBytes(Path(), m_old);
    }
    bool WasReported(const QStringList& boxes) const override {
        return !boxes.filter(QStringLiteral("преобразован в новый формат")).isEmpty() &&
               test::Boxes::Failures(boxes).isEmpty();
    }
    void CheckFiles(bool reported) override {
        if (test::ReadBytes(Path()) == m_old) {
            EXPECT_FALSE(reported);
            return;
        }
        EXPECT_EQ(test::ReadBytes(Folder() + QStringLiteral("/book.jet4.mdb")), m_old);
        Open()->Close();
        EXPECT_EQ(Row("SELECT count(*) FROM a01"), QStringLiteral("11"));
    }
    void CheckEnd() override {
        CheckFiles(true);
        StartWork::CheckEnd();
    }

    const QByteArray m_old = test::ReadBytes(QStringLiteral(ZAVELIK_TEST_DATA "/jet/v1-old.mdb"));
};

/// The path of the book is stored, where one stands already or as the first.
class Setting : public FolderWork {
protected:
    void Prepare() override {
        FolderWork::Prepare();
        if (!before.isEmpty()) {
            QSettings store(Store(), QSettings::IniFormat);
            store.setValue(QStringLiteral("Zavelik/General/DB_Path"), before);
            store.setValue(QStringLiteral("Zavelik/General/other"), 1);
        }
        runtime::UseSettingsFile(Store());
    }
    void Act() override { gRegister().SaveKeyVal(Key, After); }
    void CheckFiles(bool reported) override {
        // Without any sync the old file cannot be put back either.
        EXPECT_TRUE(Stored() == After || (!reported && Stored() == before)) << Stored().toStdString();
        EXPECT_TRUE(reported || startsAnew || noSyncAtAll || Stored() == before);
        EXPECT_TRUE(startsAnew || QDir(Folder()).entryList(QDir::Files | QDir::Hidden).size() <= 1);
    }
    void CheckEnd() override { EXPECT_EQ(Stored(), After); }

    QString Store() const { return Folder() + QStringLiteral("/settings.ini"); }
    /// As the toolkit reads it: from a copy, since it keeps in mind what it has read under a name.
    QString Stored() {
        const QTemporaryDir folder;
        const QString copy = folder.filePath(QStringLiteral("settings.ini"));
        QFile::copy(Store(), copy);
        const QSettings store(copy, QSettings::IniFormat);
        EXPECT_TRUE(before.isEmpty() || store.value(QStringLiteral("Zavelik/General/other")) == 1);
        return store.value(QStringLiteral("Zavelik/General/DB_Path")).toString();
    }

    const QString After = QStringLiteral("/новая.mdb");
    QString before = QStringLiteral("/старая.mdb");
};

/// What cannot be read is told, and not taken for a setting that is not there.
class SettingRead : public Setting {
    void Act() override { m_value = gRegister().GetKeyVal(Key); }
    void CheckFiles(bool reported) override {
        EXPECT_TRUE(startsAnew || m_value == (reported ? before : QString())) << m_value.toStdString();
        EXPECT_EQ(Stored(), before);
    }
    void CheckEnd() override { EXPECT_EQ(m_value, before); }

    QString m_value;
};
#endif

} // namespace

TEST_F(Creation, OnADiskThatFails) {
    test::SweepDisk(*this, "creation", 1, 0);
}

TEST_F(Creation, Killed) {
    test::SweepKills(*this, "creation", {5ms, 20ms, 40ms});
}

TEST_F(UpgradeFrom1, OnADiskThatFails) {
    test::SweepDisk(*this, "upgrade from version 1", 1, 0);
}

TEST_F(UpgradeFrom1, Killed) {
    test::SweepKills(*this, "upgrade", {5ms, 20ms, 40ms});
}

TEST_F(UpgradeFrom2, OnADiskThatFails) {
    test::SweepDisk(*this, "upgrade from version 2", 1);
}

#ifdef Q_OS_UNIX
TEST_F(Conversion, OnASystemThatFails) {
    test::SweepCalls(*this, "conversion", 1);
}

TEST_F(Setting, OnASystemThatFails) {
    test::SweepCalls(*this, "setting", 10);
}

TEST_F(Setting, TheFirstOnASystemThatFails) {
    before.clear();
    test::SweepCalls(*this, "first setting", 10);
}

TEST_F(SettingRead, OnASystemThatFails) {
    test::SweepCalls(*this, "reading the setting", 10);
}
#endif
