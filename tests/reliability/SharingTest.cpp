// Two programs work on one book at the same time.
#include "platform/engine/EngineError.h"
#include "platform/forms/ListBox.h"
#include "records/frmRecords.h"
#include "shell/frmMain.h"
#include "tests/exchange/ImportMaster.h"
#include "tests/support/Answers.h"
#include "tests/support/FullRun.h"
#include "tests/support/KilledChild.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <sqlite3.h>

namespace {

const QString Saved = QStringLiteral("Запись успешно сохранена в базу данных.");
const QString SaveHead = QStringLiteral("frmEditRecord функция cmdSave_Click:");
const QStringList Columns{"Last Name", "Home Phone", "Mobile Phone"};

int FailureIn(const QString& box) {
    static const QRegularExpression number(QStringLiteral("произошла ошибка №(\\d+)"));
    return number.match(box).captured(1).toInt();
}

/// What one of the two does: saves cards, imports, lists. It tells its parent in lines of a kind and a name.
class Program {
public:
    explicit Program(QString name)
        : m_name(std::move(name)) {
        m_list->Show();
    }

    void Work(int rounds) {
        for (int round = 0; round < rounds; ++round) {
            SaveCard(QStringLiteral("c%1-%2").arg(m_name).arg(round));
            if (round % 5 == 0)
                Import(QStringLiteral("i%1-%2").arg(m_name).arg(round));
            m_list->FillGrid({});
            TellBoxes({});
        }
    }

private:
    static void Tell(const char* kind, const QString& about) {
        test::TellParent(QByteArray("@") + kind + ' ' + about.simplified().toUtf8());
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
        for (int tries = 0; card->IsLoaded() && tries < 100; ++tries) {
            QTest::mouseClick(surface.findChild<QPushButton*>("cmdSave"), Qt::LeftButton);
            TellBoxes({name});
        }
        if (forms::Form::Loaded().size() != before)
            Tell("other", "a window was left open");
    }

    void Import(const QString& name) {
        const QTemporaryDir folder;
        const QString path = folder.filePath("in.csv");
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

    QString m_name;
    test::Boxes m_boxes;
    std::shared_ptr<frmRecords> m_list = forms::Form::Create<frmRecords>();
};

class Sharing : public test::ExchangeTest {};

/// Run by the parent alone.
TEST(DISABLED_Program, Works) {
    gWorkspace = engine::DBEngine::Workspaces(0);
    gDatabase = gWorkspace->OpenDatabase(qEnvironmentVariable("ZAVELIK_BOOK"));
    forms::Form::Default<frmMain>()->Show();
    Program(qEnvironmentVariable("ZAVELIK_NAME")).Work(test::IsFullRun() ? 2000 : 20);
    gDatabase->Close();
}

TEST_F(Sharing, TwoProgramsLoseNothingOfEachOther) {
    gDatabase->Close();
    QProcess programs[2];
    for (QProcess& program : programs) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ZAVELIK_BOOK", bookPath);
        environment.insert("ZAVELIK_NAME", &program == programs ? "a" : "b");
        program.setProcessEnvironment(environment);
        program.start(QCoreApplication::applicationFilePath(),
                      {"--gtest_also_run_disabled_tests", "--gtest_filter=DISABLED_Program.Works"});
    }
    QMultiMap<QString, QString> said; ///< by kind
    for (QProcess& program : programs) {
        constexpr int longest = 110'000; // milliseconds
        EXPECT_TRUE(program.waitForFinished(longest));
        EXPECT_EQ(program.exitCode(), 0);
        const auto saved = said.count("saved");
        for (const QString& line : QString::fromUtf8(program.readAllStandardOutput()).split(u'\n')) {
            if (line.startsWith(u'@'))
                said.insert(line.section(u' ', 0, 0).mid(1), line.section(u' ', 1).trimmed());
        }
        EXPECT_GE(said.count("saved"), saved + 20);
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
        std::cout << "FIGURE " << kind << ": two programs: " << said.count(kind) << '\n';
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
