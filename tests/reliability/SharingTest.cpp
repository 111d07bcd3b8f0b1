// Programs work on one book at the same time, and one of them is killed.
#include "platform/engine/EngineError.h"
#include "platform/forms/ListBox.h"
#include "records/frmRecords.h"
#include "shell/frmMain.h"
#include "tests/exchange/ImportMaster.h"
#include "tests/support/Answers.h"
#include "tests/support/FullRun.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QThread>
#include <sqlite3.h>

namespace {

const QString Saved = QStringLiteral("Запись успешно сохранена в базу данных.");
const QStringList Columns{"Last Name", "Home Phone", "Mobile Phone"};

int FailureIn(const QString& box) {
    static const QRegularExpression number(QStringLiteral("произошла ошибка №(\\d+)"));
    return number.match(box).captured(1).toInt();
}

/// What each of them does: saves cards, imports, lists. It tells its parent in lines of a kind and a name.
/// Run by the parent alone.
class DISABLED_Program : public test::Program {
protected:
    static void Tell(const char* kind, const QString& about) {
        std::cout << '@' << kind << ' ' << about.simplified().toStdString() << std::endl;
    }

    /// Tells the boxes: what is done behind a report of success; a lock or a taken number may come.
    void TellBoxes(const QStringList& names) {
        for (const QString& box : m_boxes.Take()) {
            const int failure = FailureIn(box);
            if (box == Saved || box == test::ImportedAll(0, static_cast<int>(names.size()))) {
                for (const QString& name : names)
                    Tell("saved", name);
            } else if (failure == engine::DuplicateKey || failure == engine::RowLocked ||
                       failure == engine::FileInUse ||
                       box.startsWith(u"Импорт записей завершен с ошибками.")) {
                Tell("hindered", box);
            } else {
                Tell("other", box);
            }
        }
    }

    /// A new card, saved until the program says so.
    void SaveCard(const QString& name) {
        list->EditRecord(frmRecords::Add);
        const auto card = Last("frmEditRecords");
        auto& types = Control<forms::ListBox>(card, "lstTelefonType");
        Control<QLineEdit>(card, "txtLastName").setText(name);
        for (const int type : {0, 1}) {
            types.SetListIndex(type);
            Control<QLineEdit>(card, "txtTelefonNumber").setText(name + u':' + QString::number(type));
        }
        types.SetListIndex(0); // takes the number over
        for (int tries = 0; card->IsLoaded() && tries < 100; ++tries) {
            QTest::mouseClick(&Control(card, "cmdSave"), Qt::LeftButton);
            TellBoxes({name});
        }
        if (IsOpen("frmEditRecords"))
            Tell("other", "a window was left open");
    }

    void Import(const QString& name) {
        const QString path = Path("in.csv");
        QStringList names;
        QString text = Columns.join(u',') + QStringLiteral("\r\n");
        for (int row = 0; row < 5; ++row) {
            names += name + u'-' + QString::number(row);
            text += QStringLiteral("%1,%1:0,%1:1\r\n").arg(names.last());
        }
        test::WriteBytes(path, text.toLatin1());
        const test::ImportMaster master;
        master.TypeFile(path);
        master.Go(2);
        master.Tick(Columns);
        master.PressImport();
        TellBoxes(names);
        master.form->Unload();
    }

    std::shared_ptr<frmRecords> list;

private:
    test::Boxes m_boxes;
};

TEST_F(DISABLED_Program, Works) {
    gWorkspace = engine::DBEngine::Workspaces(0);
    gDatabase = gWorkspace->OpenDatabase(qEnvironmentVariable("ZAVELIK_BOOK"));
    forms::Form::Default<frmMain>()->Show();
    list = forms::Form::Create<frmRecords>();
    list->Show();
    const QString name = qEnvironmentVariable("ZAVELIK_NAME");
    for (int round = 0; round < (test::IsFullRun() ? 500 : 20); ++round) {
        SaveCard(QStringLiteral("c%1-%2").arg(name).arg(round));
        if (round % 5 == 0)
            Import(QStringLiteral("i%1-%2").arg(name).arg(round));
        list->FillGrid({});
        TellBoxes({});
    }
    gDatabase->Close();
}

/// Another program takes the number of a card while it is being saved: right behind the question for the
/// highest one. Null while it waits for nothing.
std::shared_ptr<engine::Database> thief;

int TakeNumber(unsigned, void*, void* statement, void*) {
    const QByteArray text = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
    if (thief && text.toLower().contains("max(")) {
        std::exchange(thief, nullptr)
            ->Execute("INSERT INTO a01 (a01clid, a01last) SELECT MAX(a01clid) + 1, 'Чужая' FROM a01",
                      engine::dbFailOnError);
        engine::DBEngine::Commit();
    }
    return 0;
}

int Watch(sqlite3* db, char**, const void*) {
    return sqlite3_trace_v2(db, SQLITE_TRACE_PROFILE, TakeNumber, nullptr);
}

class Sharing : public test::ExchangeTest {
protected:
    static constexpr int Longest = 110'000; ///< milliseconds

    void Start(QProcess& program, const QString& name) const {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ZAVELIK_BOOK", bookPath);
        environment.insert("ZAVELIK_NAME", name);
        program.setProcessEnvironment(environment);
        program.start(QCoreApplication::applicationFilePath(),
                      {"--gtest_also_run_disabled_tests", "--gtest_filter=DISABLED_Program.Works"});
    }
    /// Takes in what a program has said.
    void Hear(const QByteArray& output, int leastSaved) {
        const auto before = said.count("saved");
        for (const QString& line : QString::fromUtf8(output).split(u'\n')) {
            if (line.startsWith(u'@'))
                said.insert(line.section(u' ', 0, 0).mid(1), line.section(u' ', 1).trimmed());
        }
        EXPECT_GE(said.count("saved"), before + leastSaved);
    }

    QMultiMap<QString, QString> said; ///< by kind
};

TEST_F(Sharing, ProgramsLoseNothingOfEachOtherNorByAKill) {
    gDatabase->Close();
    QProcess programs[2];
    for (QProcess& program : programs) {
        const QString name = &program == programs ? "a" : "b";
        program.setStandardOutputFile(Path(name));
        Start(program, name);
    }
    const int kills = test::IsFullRun() ? 100 : 4;
    for (int kill = 0; kill < kills; ++kill) {
        QProcess program;
        Start(program, QStringLiteral("k%1").arg(kill));
        QByteArray output;
        while (!output.contains("@saved ") && program.waitForReadyRead(Longest))
            output += program.readAllStandardOutput();
        QThread::msleep(static_cast<unsigned long>(kill * 7 % 40));
        program.kill();
        EXPECT_TRUE(program.waitForFinished());
        Hear(output + program.readAllStandardOutput(), 1);
    }
    for (QProcess& program : programs) {
        EXPECT_TRUE(program.waitForFinished(Longest));
        EXPECT_EQ(program.exitCode(), 0);
        Hear(test::ReadBytes(Path(&program == programs ? "a" : "b")), 20);
    }
    EXPECT_EQ(QStringList(said.values("other")), QStringList());
    gDatabase = gWorkspace->OpenDatabase(bookPath);
    EXPECT_EQ(test::Integrity(bookPath), QStringLiteral("ok"));

    // What was reported is there, with its own numbers.
    const QStringList whole =
        Rows("SELECT a01last FROM a01 WHERE (SELECT count(*) FROM a02 WHERE a02clid = a01clid) = 2");
    const QStringList saved = said.values("saved");
    for (const QString& name : saved)
        EXPECT_TRUE(whole.contains(name)) << name.toStdString();
    EXPECT_EQ(Rows("SELECT a01clid, a01last, a02cval FROM a02 LEFT JOIN a01 ON a01clid = a02clid WHERE "
                   "a01clid IS NULL OR a02cval <> a01last || ':' || (a02code - 1)"),
              QStringList());
    for (const char* kind : {"saved", "hindered"})
        std::cout << "FIGURE " << kind << ": several programs: " << said.count(kind) << '\n';
    std::cout << "FIGURE kills: several programs: " << kills << std::endl;
}

TEST_F(Sharing, ATakenNumberIsToldAndTheSecondSaveSucceeds) {
    AddCard(6, "Первая");
    gDatabase->Close();
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(Watch));
    gDatabase = gWorkspace->OpenDatabase(bookPath);
    sqlite3_reset_auto_extension();
    const auto other = gWorkspace->OpenDatabase(bookPath);

    list->EditRecord(frmRecords::Add);
    const auto card = Last("frmEditRecords");
    Fill(card, "txtLastName", "Моя");
    Fill(card, "txtTelefonNumber", "112");
    thief = other;
    for (const bool taken : {true, false}) {
        EXPECT_TRUE(card->IsLoaded());
        test::Answers answers;
        if (taken)
            answers.Failure("frmEditRecord функция cmdSave_Click:", engine::DuplicateKey);
        else
            answers.Box(Saved, forms::Icon::Information);
        ClickButton(card, "cmdSave");
    }
    EXPECT_FALSE(card->IsLoaded());
    EXPECT_EQ(Rows("SELECT a01clid, a01last FROM a01 ORDER BY a01clid"),
              (QStringList{"6|Первая", "7|Чужая", "8|Моя"}));
    EXPECT_EQ(Phones(), QStringList{"8|1|112"});
}

} // namespace
