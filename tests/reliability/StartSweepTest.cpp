// The program is started on disks that fail: it creates its database, or raises one of an older version.

#include "database/General.h"
#include "database/Schema.h"
#include "platform/forms/Form.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Process.h"
#include "shared/Declaration.h"
#include "shell/General.h"
#include "tests/reliability/Sweep.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

class StartWork : public testing::Test, public test::Work {
protected:
    void Prepare() override {
        for (const QString& name : test::FilesOf(Path(), false))
            QFile::remove(Folder().filePath(name));
    }
    /// What the program does from its entry to the event loop.
    void Act() override {
        const runtime::EndTrap trap;
        try {
            General::Main();
        } catch (const runtime::Failure& failure) {
            forms::ShowErrorBox({}, failure);
        } catch (const runtime::ProcessEnded&) {
            // The process is gone: nothing is closed.
        }
    }
    void Leave() override {
        for (const auto& form : forms::Form::Loaded())
            form->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        gDatabase.reset();
        gWorkspace.reset();
    }
    void StartAgain() override { Act(); }
    void CheckEnd() override {
        EXPECT_EQ(Leftovers(), QStringList{"book.mdb"});
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
        EXPECT_EQ(Row("SELECT (SELECT count(*) FROM t02), (SELECT count(*) FROM t03), "
                      "(SELECT count(*) FROM a03), v00vrid FROM v00"),
                  QStringLiteral("79|1913|0|3"));
    }

    QString Path() const { return m_folder.Path(QStringLiteral("book.mdb")); }
    QDir Folder() const { return QFileInfo(Path()).dir(); }
    QStringList Leftovers() const { return test::FilesOf(Path(), cutsPower); }
    QString Row(const char* sql) const {
        return test::ReadRows(Path(), QString::fromLatin1(sql)).join(u'\n');
    }
    static void Store(const QString& path) { gRegister().SaveKeyVal(QStringLiteral("DB_Path"), path); }
    /// Opens the book as the next program would, which puts right what was left half done.
    std::shared_ptr<engine::Database> Open() const {
        return engine::DBEngine::CreateWorkspace({}, {}, {})->OpenDatabase(Path());
    }

private:
    test::TestFolder m_folder;
};

/// The first start: the master makes the book. After a failure its button is pressed again.
class Creation : public StartWork {
    void Prepare() override {
        StartWork::Prepare();
        Store({});
    }
    void Answer(QWidget& window) override {
        window.findChild<QLineEdit*>(QStringLiteral("txtDBPath"))->setText(Path());
        Press(window);
        diskFails = false;
        if (window.isVisible() && cutsPower) {
            window.close();
        } else if (window.isVisible()) {
            EXPECT_EQ(Leftovers(), QStringList());
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
        if (!QFile::exists(Path()))
            return;
        Open()->Close();
        CheckEnd();
    }
    void ActAgain() override {}
};

/// A book of an older version, with one card.
class Upgrade : public StartWork {
protected:
    explicit Upgrade(int version)
        : m_version(version) {
        const auto db = engine::DBEngine::CreateWorkspace({}, {}, {})->CreateDatabase(Path(), {});
        QStringList statements{schema::CreateA01(version > 1),
                               schema::CreateA02(),
                               schema::CreateT01(),
                               schema::CreateV00(),
                               QStringLiteral("INSERT INTO v00 (v00vrid) VALUES (%1)").arg(version),
                               QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (5, 'Иванов')")};
        if (version > 1)
            statements += {schema::CreateT02(), schema::CreateT03()};
        for (const QString& statement : statements)
            db->Execute(statement, engine::dbFailOnError);
        if (version > 1) {
            db->TableDefs(QStringLiteral("a01")).Fields(QStringLiteral("a01bith")).SetAllowZeroLength(true);
            General::FillRegions(*db);
            General::FillCity(*db);
        }
        db->Close();
        QFile::rename(Path(), Template());
    }

    void Prepare() override {
        StartWork::Prepare();
        QFile::copy(Template(), Path());
        Store(Path());
    }
    bool WasReported(const QStringList& boxes) const override { return boxes.isEmpty(); }
    void CheckFiles(bool reported) override {
        const auto db = Open();
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
        EXPECT_EQ(Row("SELECT a01clid, a01last FROM a01"), QStringLiteral("5|Иванов"));
        const int version = Row("SELECT v00vrid FROM v00").toInt();
        EXPECT_TRUE(version >= m_version && version <= 3) << version;
        const QStringList tables = db->TableNames();
        EXPECT_EQ(tables.contains(QStringLiteral("a03")), version == 3);
        EXPECT_EQ(tables.contains(QStringLiteral("t02")), version > 1);
        EXPECT_EQ(tables.contains(QStringLiteral("t03")), version > 1);
        EXPECT_EQ(db->TableDefs(QStringLiteral("a01")).FieldsCount(), version > 1 ? 6 : 5);
        db->Close();
        if (reported)
            CheckEnd();
    }
    void ActAgain() override {
        Leave();
        Act();
    }
    void CheckEnd() override {
        StartWork::CheckEnd();
        // A card whose birthday is not known can be saved.
        const auto db = Open();
        db->Execute(QStringLiteral("UPDATE a01 SET a01bith = ''"), engine::dbFailOnError);
        db->Close();
    }

private:
    QString Template() const { return Folder().filePath(QStringLiteral("old.mdb")); }

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

} // namespace

TEST_F(Creation, OnADiskThatFails) {
    test::SweepWork(*this, "creation", 2);
}

TEST_F(UpgradeFrom1, OnADiskThatFails) {
    test::SweepWork(*this, "upgrade from version 1", 2);
}

TEST_F(UpgradeFrom2, OnADiskThatFails) {
    test::SweepWork(*this, "upgrade from version 2", 4);
}
