// Two programs work on one book at the same time: for three seconds, in a full run for a minute.
#include "platform/engine/EngineError.h"
#include "platform/forms/ListBox.h"
#include "records/frmRecords.h"
#include "shell/frmMain.h"
#include "tests/exchange/ImportMaster.h"
#include "tests/support/Answers.h"
#include "tests/support/FullRun.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <sqlite3.h>

#include <map>

namespace {

const QString Saved = QStringLiteral("Запись успешно сохранена в базу данных.");
const QString SaveHead = QStringLiteral("frmEditRecord функция cmdSave_Click:");
const QStringList Columns{"Last Name", "Home Phone", "Mobile Phone"};

int FailureIn(const QString& box) {
    static const QRegularExpression number(QStringLiteral("произошла ошибка №(\\d+)"));
    return number.match(box).captured(1).toInt();
}

/// What one of the two does: saves cards, imports, lists. It tells its parent in lines that begin with '@'.
class Program {
public:
    explicit Program(int place)
        : m_place(place) {
        m_output.open(stdout, QFile::WriteOnly);
        m_list->Show();
    }

    void Work(int seconds) {
        QElapsedTimer clock;
        clock.start();
        for (int round = 0; clock.elapsed() < seconds * 1000; ++round) {
            SaveCard(QStringLiteral("c%1-%2").arg(m_place).arg(round));
            if (round % 5 == 0)
                Import(QStringLiteral("i%1-%2").arg(m_place).arg(round));
            List();
        }
    }

private:
    void Tell(const QString& what, const QString& about = {}) {
        m_output.write(('@' + what + ' ' + about).toUtf8().replace('\n', ' ').replace('\r', ' ') + '\n');
        m_output.flush();
    }

    void TellFailure(const QString& box) {
        switch (FailureIn(box)) {
        case engine::DuplicateKey:
            return Tell(QStringLiteral("duplicate"));
        case engine::RowLocked:
        case engine::FileInUse:
            return Tell(QStringLiteral("locked"), box);
        default:
            Tell(QStringLiteral("other"), box);
        }
    }

    /// A new card, saved until the program says so.
    void SaveCard(const QString& name) {
        const std::size_t before = forms::Form::Loaded().size();
        m_list->EditRecord(frmRecords::Add);
        const std::shared_ptr<forms::Form> card = forms::Form::Loaded().back();
        const QWidget& surface = *card->Surface();
        surface.findChild<QLineEdit*>("txtLastName")->setText(name);
        for (const int type : {0, 1}) {
            surface.findChild<forms::ListBox*>("lstTelefonType")->SetListIndex(type);
            surface.findChild<QLineEdit*>("txtTelefonNumber")->setText(name + u':' + QString::number(type));
        }
        surface.findChild<forms::ListBox*>("lstTelefonType")->SetListIndex(0); // takes the number over
        for (int tries = 0; card->IsLoaded(); ++tries) {
            QTest::mouseClick(surface.findChild<QPushButton*>("cmdSave"), Qt::LeftButton);
            const QStringList boxes = m_boxes.Take();
            for (const QString& box : boxes) {
                if (box == Saved)
                    Tell(QStringLiteral("saved"), name);
                else
                    TellFailure(box);
            }
            if (boxes.isEmpty() || tries == 100)
                return Tell(QStringLiteral("other"), QStringLiteral("the card could not be saved"));
        }
        if (forms::Form::Loaded().size() != before)
            Tell(QStringLiteral("other"), QStringLiteral("a window was left open"));
    }

    void Import(const QString& name) {
        constexpr int rows = 5;
        const QString path = qEnvironmentVariable("ZAVELIK_FOLDER") + u'/' + name + QStringLiteral(".csv");
        QStringList names;
        QString text = Columns.join(u',') + QStringLiteral("\r\n");
        for (int row = 0; row < rows; ++row) {
            names += name + u'-' + QString::number(row);
            text += QStringLiteral("%1,%1:0,%1:1\r\n").arg(names.last());
        }
        test::WriteBytes(path, text.toLatin1());
        const test::ImportMaster master;
        master.TypeFile(path);
        master.Go(2);
        master.Tick(Columns);
        master.PressImport();
        for (const QString& box : m_boxes.Take()) {
            if (box == test::ImportedAll(0, rows)) {
                Tell(QStringLiteral("imported"));
                for (const QString& each : names)
                    Tell(QStringLiteral("saved"), each);
            } else if (box.startsWith(QStringLiteral("Импорт записей завершен с ошибками."))) {
                Tell(QStringLiteral("imported"));
                Tell(QStringLiteral("errors"), box);
            } else {
                TellFailure(box);
            }
        }
        master.form->Unload();
    }

    void List() {
        m_list->FillGrid({});
        const QStringList boxes = m_boxes.Take();
        for (const QString& box : boxes)
            TellFailure(box);
        if (boxes.isEmpty())
            Tell(QStringLiteral("listed"));
    }

    int m_place;
    QFile m_output;
    test::Boxes m_boxes;
    std::shared_ptr<frmRecords> m_list = forms::Form::Create<frmRecords>();
};

/// Run by the parent alone.
TEST(DISABLED_Program, Works) {
    gWorkspace = engine::DBEngine::Workspaces(0);
    gDatabase =
        gWorkspace->OpenDatabase(qEnvironmentVariable("ZAVELIK_FOLDER") + QStringLiteral("/book.mdb"));
    forms::Form::Default<frmMain>()->Show();
    Program(qEnvironmentVariableIntValue("ZAVELIK_PLACE")).Work(test::IsFullRun() ? 60 : 3);
    gDatabase->Close();
}

class Sharing : public test::ExchangeTest {
protected:
    std::unique_ptr<QProcess> StartProgram(int place) const {
        auto program = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ZAVELIK_FOLDER", QFileInfo(bookPath).path());
        environment.insert("ZAVELIK_PLACE", QString::number(place));
        program->setProcessEnvironment(environment);
        program->start(QCoreApplication::applicationFilePath(),
                       {"--gtest_also_run_disabled_tests", "--gtest_filter=DISABLED_Program.Works"});
        return program;
    }

    /// What the program said, by kind; each kind with its lines.
    static std::map<QString, QStringList> ReportOf(QProcess& program) {
        constexpr int longest = 110'000; // milliseconds
        EXPECT_TRUE(program.waitForFinished(longest));
        const QString output = QString::fromUtf8(program.readAllStandardOutput()).remove(u'\r');
        EXPECT_EQ(program.exitCode(), 0) << output.toStdString();
        std::map<QString, QStringList> report;
        for (const QString& line : output.split(u'\n')) {
            if (line.startsWith(u'@'))
                report[line.section(u' ', 0, 0).mid(1)] += line.section(u' ', 1);
        }
        return report;
    }
};

TEST_F(Sharing, TwoProgramsLoseNothingOfEachOther) {
    gDatabase->Close();
    const std::unique_ptr<QProcess> programs[] = {StartProgram(0), StartProgram(1)};
    std::map<QString, QStringList> reports;
    for (const auto& program : programs) {
        std::map<QString, QStringList> report = ReportOf(*program);
        EXPECT_GT(report["saved"].size(), 5);
        EXPECT_GT(report["imported"].size(), 0);
        EXPECT_GT(report["listed"].size(), 0);
        for (const auto& [kind, lines] : report)
            reports[kind] += lines;
    }
    gDatabase = gWorkspace->OpenDatabase(bookPath);
    EXPECT_EQ(reports["other"], QStringList());
    EXPECT_EQ(test::Integrity(bookPath), QStringLiteral("ok"));

    // What was reported is there, with its own numbers.
    const QStringList cards =
        Rows("SELECT a01last FROM a01 WHERE (SELECT count(*) FROM a02 WHERE a02clid = a01clid) = 2");
    const QSet<QString> whole(cards.begin(), cards.end());
    for (const QString& name : std::as_const(reports["saved"]))
        EXPECT_TRUE(whole.contains(name)) << name.toStdString();
    EXPECT_EQ(Rows("SELECT a01clid, a01last, a02cval FROM a02 LEFT JOIN a01 ON a01clid = a02clid WHERE "
                   "a01clid IS NULL OR a02cval <> a01last || ':' || (a02code - 1)"),
              QStringList());
    for (const char* kind : {"saved", "imported", "errors", "listed", "duplicate", "locked"})
        std::cout << "FIGURE " << kind << ": two programs: " << reports[kind].size() << '\n';
}

/// Another program that takes the number of a card while it is being saved: right behind the question for the
/// highest one.
class NumberThief {
public:
    NumberThief() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(Watch)); }
    ~NumberThief() { sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(Watch)); }
    NumberThief(const NumberThief&) = delete;
    NumberThief& operator=(const NumberThief&) = delete;

    void Prepare(const QString& path) { book = engine::DBEngine::Workspaces(0)->OpenDatabase(path); }
    static void TakeNext() { waits = true; }

private:
    static int Watch(sqlite3* db, char**, const void*) {
        return sqlite3_trace_v2(db, SQLITE_TRACE_PROFILE, Statement, nullptr);
    }
    static int Statement(unsigned, void*, void* statement, void*) {
        const QByteArray text = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
        if (!waits || !text.toLower().contains("max("))
            return 0;
        waits = false;
        book->Execute("INSERT INTO a01 (a01clid, a01last) SELECT MAX(a01clid) + 1, 'Чужая' FROM a01",
                      engine::dbFailOnError);
        engine::DBEngine::Commit();
        return 0;
    }

    inline static bool waits = false;
    inline static std::shared_ptr<engine::Database> book;
};

TEST_F(Sharing, ATakenNumberIsToldAndTheSecondSaveSucceeds) {
    AddCard(6, "Первая");
    gDatabase->Close();
    NumberThief thief;
    gDatabase = gWorkspace->OpenDatabase(bookPath);
    thief.Prepare(bookPath);

    list->EditRecord(frmRecords::Add);
    const auto card = Last("frmEditRecords");
    Fill(Control(card, "txtLastName"), "Моя");
    Fill(Control(card, "txtTelefonNumber"), "112");
    NumberThief::TakeNext();
    for (const bool taken : {true, false}) {
        EXPECT_TRUE(card->IsLoaded());
        test::Answers answers;
        if (taken)
            answers.BoxStarting(SaveHead + "\r\nпроизошла ошибка №3022 ", forms::Icon::Critical);
        else
            answers.Box(Saved, forms::Icon::Information);
        Click(Control(card, "cmdSave"));
    }
    EXPECT_FALSE(card->IsLoaded());
    EXPECT_EQ(Rows("SELECT a01clid, a01last FROM a01 ORDER BY a01clid"),
              (QStringList{"6|Первая", "7|Чужая", "8|Моя"}));
    EXPECT_EQ(Phones(), QStringList{"8|1|112"});
}

} // namespace
