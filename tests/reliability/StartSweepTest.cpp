// The program is started on disks that fail: it creates its book, raises one of an older version, converts
// one of the old format.

#include "platform/forms/Form.h"
#include "platform/forms/MsgBox.h"
#include "shared/Declaration.h"
#include "shell/General.h"
#include "tests/database/OldVersion.h"
#include "tests/reliability/Sweep.h"
#include "tests/support/BoundBook.h"

#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

class StartWork : public test::Unbound, public test::Work {
protected:
    QString Folder() const override { return Unbound::Path(QStringLiteral("books")); }
    QString Path() const { return Folder() + QStringLiteral("/book.mdb"); }
    void Prepare() override {
        QDir(Folder()).removeRecursively();
        QDir().mkpath(Folder());
        Store(Path());
    }
    bool WasReported(const QStringList& boxes) const override { return boxes.isEmpty(); }
    /// What the program does from its entry to the event loop.
    void Act() override {
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
    void Leave() override { Unbind(); }
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
        Store({});
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

/// A book of the first version, with one card.
class Upgrade : public StartWork {
    void Prepare() override {
        StartWork::Prepare();
        test::MakeBook(Path(), 1);
    }
    void CheckFiles(bool reported) override {
        const auto db = Open();
        EXPECT_EQ(Row("SELECT a01clid, a01last FROM a01"), QStringLiteral("7|Иванов"));
        const int version = Version().toInt();
        EXPECT_TRUE(version >= (reported ? 3 : 1) && version <= 3) << version;
        EXPECT_EQ(Row("SELECT count(*) FROM sqlite_schema WHERE name IN ('t02', 't03', 'a03')"),
                  QString::number(version == 2   ? 2
                                  : version == 3 ? 3
                                                 : 0));
        EXPECT_EQ(db->TableDefs(QStringLiteral("a01")).FieldsCount(), version > 1 ? 6 : 5);
        EXPECT_TRUE(version == 1 || Row("SELECT count(*) FROM t03") == u"1913");
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
};

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

} // namespace

TEST_F(Creation, OnADiskThatFails) {
    test::SweepDisk(*this, "creation", test::Places::None);
}

TEST_F(Upgrade, OnADiskThatFails) {
    test::SweepDisk(*this, "upgrade");
}

TEST_F(Conversion, OnADiskThatFails) {
    test::SweepDisk(*this, "conversion", test::Places::None);
}
