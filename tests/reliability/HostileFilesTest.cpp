// The program meets files and paths that nobody would choose: it starts, upgrades, lists and imports, or says
// what is wrong, and what it refuses stays as it was.

#include "platform/runtime/Files.h"
#include "records/frmRecords.h"
#include "shell/General.h"
#include "shell/frmMain.h"
#include "tests/database/OldVersion.h"
#include "tests/exchange/ImportMaster.h"
#include "tests/support/Answers.h"
#include "tests/support/EndTrap.h"
#include "tests/support/System.h"
#include "tests/support/WindowTest.h"

#include <QDateTime>
#include <QDir>
#include <sqlite3.h>

namespace {

const QString NoBook = QStringLiteral("База данных не создана. Запустить мастер создания базы данных?");
const QString UpgradeHead = QStringLiteral("Функция UpdateBaseIfNeed:");

/// What a file holds and when it was written; nothing of what is no plain file.
struct Trace {
    QByteArray bytes;
    QDateTime stamp;
    bool operator==(const Trace&) const = default;
};

Trace TraceOf(const QString& path) {
    return runtime::IsPlainFile(path) ? Trace{test::ReadBytes(path), QFileInfo(path).lastModified()}
                                      : Trace();
}

QString FailureBox(const QString& head, int number) {
    return head + QStringLiteral("\r\nпроизошла ошибка №%1 ").arg(number);
}

class HostileFiles : public test::Program {
protected:
    HostileFiles() {
        QDir().mkdir(Path("folder"));
        test::MakePipe(Path("pipe"));
    }

    QByteArray Book(int version = 3) {
        const QString path = Path("sound.mdb");
        QFile::remove(path);
        test::MakeBook(path, version);
        return test::ReadBytes(path);
    }

    QString Write(const QString& name, const QByteArray& bytes) {
        test::WriteBytes(Path(name), bytes);
        return Path(name);
    }

    /// Starts on the stored path and, if that goes, lists the cards and imports one; the boxes on the way.
    /// `started` tells whether the main window came.
    QStringList Use(bool& started) {
        try {
            const test::EndTrap trap;
            General::Main();
        } catch (const test::ProcessEnded&) {
        }
        started = forms::MdiForm::Current() != nullptr;
        if (started) {
            const auto list = forms::Form::Create<frmRecords>();
            list->Show();
            list->FillGrid({});
            const test::ImportMaster master;
            master.TypeFile(Write("good.csv", "Last Name,Home Phone\r\nNew,5\r\n"));
            master.Go(2);
            master.Tick({"Last Name", "Home Phone"});
            master.PressImport();
            master.form->Unload();
            list->FillGrid({});
            forms::MdiForm::Current()->Unload();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        gDatabase.reset();
        gWorkspace.reset();
        return m_boxes.Take();
    }

    test::Boxes m_boxes{[](QWidget& master) { master.close(); }};
};

// The first box begins so; an empty one: the book is used without a word but that of the import.
TEST_F(HostileFiles, StartOnAnyPath) {
    const QByteArray sound = Book();
    const QString locked = Write("locked.mdb", sound);
    const QString main = QStringLiteral("Функция Main:");
    const struct {
        QString path;
        QString box;
    } cases[] = {
        {Path("folder"), NoBook},
        {Path("pipe"), NoBook},
        {test::DevicePath(), NoBook},
        {QStringLiteral("  "), NoBook},
        {Path(QString(5000, u'x')), NoBook},
        {Path("sound.mdb") + u'/', NoBook},
        {Write("empty.mdb", {}), FailureBox(main, 3343)},
        {Write("text.mdb", "Фамилия;Имя\r\n"), FailureBox(main, 3343)},
        {Write("header.mdb", sound.first(100)), FailureBox(main, 3049)},
        {Write("cut.mdb", sound.first(sound.size() - 10)), FailureBox(main, 3049)},
        {locked, FailureBox(main, 3051)},
        {Write(test::OddName(), sound), {}},
        {Write("\U0001F4D2 e\u0301.mdb", sound), {}},
        {Write("a&mode=memory#c%00%2F.mdb", sound), {}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.path.left(200).toStdString());
        Store(row.path);
        std::optional<test::Unreadable> nobody;
        if (row.path == locked)
            nobody.emplace(locked, QStringList{Path("settings")});
        const Trace before = TraceOf(row.path);
        bool started = false;
        const QStringList boxes = Use(started);
        EXPECT_EQ(started, row.box.isEmpty());
        ASSERT_EQ(boxes.size(), 1) << boxes.join(u'\n').toStdString();
        EXPECT_TRUE(boxes[0].startsWith(started ? test::ImportedAll(0, 1) : row.box))
            << boxes[0].toStdString();
        if (started)
            EXPECT_EQ(test::ReadRows(row.path, "SELECT a01last FROM a01"), (QStringList{"Иванов", "New"}));
        else
            EXPECT_TRUE(TraceOf(row.path) == before) << "written to";
    }
}

// One damage for each kind of place: the upgrade, the window of cards and the import bear what opening has
// let through.
TEST_F(HostileFiles, StartOnDamagedBooks) {
    constexpr qsizetype pageSize = 4096;
    const QByteArray sound = Book(1);
    int used = 0;
    for (qsizetype page = 0; page < sound.size() / pageSize; ++page) {
        for (const qsizetype place : {qsizetype{page == 0 ? 100 : 0}, pageSize - 60}) {
            SCOPED_TRACE(testing::Message() << page << ' ' << place);
            QByteArray bytes = sound;
            bytes.replace(page * pageSize + place, 5, "\xff\x01\x7f\0\5", 5);
            const QString path = Write("damaged.mdb", bytes);
            const Trace before = TraceOf(path);
            bool started = false;
            Store(path);
            Use(started);
            used += started ? 1 : 0;
            EXPECT_TRUE(started || TraceOf(path) == before) << "written to";
        }
    }
    EXPECT_GT(used, 0); // damage inside a text cannot be told
}

// Things in the way of the upgrade are told, and leave the file at its version.
TEST_F(HostileFiles, UpgradeOfStrangeBooks) {
    const struct {
        int version;
        const char* sql;
        int failure; ///< 0: the book is raised
    } cases[] = {
        {2, "CREATE VIEW a03 AS SELECT 1 AS a03evid", 3010},
        {1, "CREATE TABLE T02 (x)", 3010},
        {1, "CREATE INDEX t03 ON a01 (a01memo)", 3010},
        {2, "DROP TABLE v00; CREATE VIEW v00 AS SELECT 2 AS v00vrid", 3078},
        {1, "CREATE TRIGGER t AFTER UPDATE ON v00 BEGIN DELETE FROM a01; END", 0},
        {1,
         "CREATE TRIGGER t AFTER INSERT ON t01 BEGIN DELETE FROM a01; END; CREATE VIEW x AS SELECT * FROM y",
         0},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.sql);
        const QString path = Write("book.mdb", Book(row.version));
        sqlite3* other = nullptr;
        sqlite3_open(path.toUtf8().constData(), &other);
        const auto compare = [](void*, int, const void*, int, const void*) { return 0; };
        sqlite3_create_collation(other, "ZV_FOLD", SQLITE_UTF8, nullptr, compare);
        EXPECT_EQ(sqlite3_exec(other, row.sql, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(other);
        sqlite3_close(other);
        bool started = false;
        Store(path);
        const QStringList boxes = Use(started);
        EXPECT_TRUE(started);
        EXPECT_TRUE(boxes.value(0).startsWith(row.failure == 0 ? test::ImportedAll(0, 1)
                                                               : FailureBox(UpgradeHead, row.failure)))
            << boxes.value(0).toStdString();
        EXPECT_EQ(test::ReadRows(path, "SELECT v00vrid FROM v00"),
                  QStringList{QString::number(row.failure == 0 ? 3 : row.version)});
        EXPECT_TRUE(test::ReadRows(path, "SELECT a01last FROM a01").contains("Иванов"));
    }
}

} // namespace
