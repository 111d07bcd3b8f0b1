#include "database/frmInstall.h"
#include "platform/engine/EngineError.h"
#include "platform/runtime/Settings.h"
#include "tests/shell/StartedProgram.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QWindow>
#include <QtTest>

using forms::Icon;

namespace {

const QString NoBase = QStringLiteral("База данных не создана. Запустить мастер создания базы данных?");
const QString NewBase = QStringLiteral("Данная процедура потребует перезапуска программы. Если у вас есть не "
                                       "сохраненные данные, они будут потеряны. Продолжить?");

class Endings : public test::Program {
protected:
    static void ExpectNothingRunning() {
        EXPECT_TRUE(forms::Form::Loaded().empty());
        EXPECT_EQ(gDatabase, nullptr);
        EXPECT_EQ(gWorkspace, nullptr);
    }

    /// Whether the program's main loop ends by itself once the action has run in it.
    static bool MainLoopEndsAfter(const std::function<void()>& action) {
        constexpr int LongestWait = 5000;
        constexpr int StillRunning = 1;
        QTimer::singleShot(0, qApp, action);
        QTimer::singleShot(LongestWait, qApp, [] { QCoreApplication::exit(StillRunning); });
        const int status = QApplication::exec();
        return status != StillRunning;
    }
};

} // namespace

TEST_F(Endings, NoBaseAndNoMasterEndsAtOnceAndLeavesNothing) {
    QDir().mkdir(Path(QStringLiteral("folder.mdb")));
    QFile hidden(Path(QStringLiteral(".hidden.mdb")));
    ASSERT_TRUE(hidden.open(QFile::WriteOnly));
    for (const QString& path : {QString(), Path(QStringLiteral("gone.mdb")),
                                Path(QStringLiteral("folder.mdb")), hidden.fileName(), QString(5000, u'x')}) {
        if (!path.isEmpty())
            Store(path);
        const runtime::EndTrap trap;
        test::Answers answers;
        answers.Question(NoBase, false, true);
        EXPECT_THROW(General::Main(), runtime::ProcessEnded) << path.left(80).toStdString();
        ExpectNothingRunning();
        EXPECT_EQ(Stored(), path);
    }
}

TEST_F(Endings, MasterClosedByItsCloseBoxEndsWithoutAWord) {
    test::Answers answers;
    answers.Question(NoBase, true, true).Modal(QStringLiteral("frmInstall"), [](QWidget& window) {
        window.close();
    });
    General::Main();
    ExpectNothingRunning();
    EXPECT_EQ(Stored(), QString());
}

TEST_F(Endings, MasterThatCreatesABaseLeadsToTheFrame) {
    const QString path = Path(QStringLiteral("Новая.mdb"));
    test::Answers answers;
    answers.Question(NoBase, true, true)
        .Modal(QStringLiteral("frmInstall"),
               [&](QWidget& window) {
                   window.findChild<QLineEdit*>(QStringLiteral("txtDBPath"))->setText(path);
                   QTest::keyClick(window.findChild<QLineEdit*>(QStringLiteral("txtDBPath")), Qt::Key_Return);
               })
        .Box(QStringLiteral("База данных успешно создана."), Icon::Information);
    General::Main();
    ASSERT_NE(forms::MdiForm::Current(), nullptr);
    EXPECT_EQ(Window().windowTitle(), QStringLiteral("Завелик - ") + path);
    EXPECT_TRUE(Window().isVisible());
}

TEST_F(Endings, AStoreThatCannotBeWrittenDoesNotStopTheStart) {
    QFile file(Path(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    runtime::UseSettingsFile(Path(QStringLiteral("file/store.ini")));
    const QString path = Path(QStringLiteral("new.mdb"));
    test::Answers answers;
    answers.Question(NoBase, true, true)
        .Modal(QStringLiteral("frmInstall"),
               [&](QWidget& window) {
                   window.findChild<QLineEdit*>(QStringLiteral("txtDBPath"))->setText(path);
                   QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdCreate")),
                                     Qt::LeftButton);
               })
        .Box(QStringLiteral("База данных успешно создана."), Icon::Information)
        .BoxStarting(QStringLiteral("Класс clsRegister функция SaveKeyVal:\r\nпроизошла ошибка №75 "),
                     Icon::Critical);
    General::Main();
    EXPECT_NE(forms::MdiForm::Current(), nullptr);
    EXPECT_TRUE(QFile::exists(path));
}

TEST_F(Endings, AFileThatCannotBeOpenedIsReportedAndKept) {
    QFile file(Path());
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write("no database");
    file.close();
    Store(Path());
    for (int start = 0; start < 2; ++start) {
        test::Answers answers;
        answers.BoxStarting(
            QStringLiteral("Функция Main:\r\nпроизошла ошибка №%1 ").arg(engine::UnrecognisedFormat),
            Icon::Critical);
        General::Main();
        ExpectNothingRunning();
        EXPECT_EQ(Stored(), Path());
    }
    EXPECT_TRUE(QFile::exists(Path()));
}

TEST_F(Endings, AStartThatFailsLateReleasesWhatItOpened) {
    MakeBook();
    Store(Path());
    forms::Form::Default<frmMain>()->Load();
    Window().winId();
    const auto fail = [] {
        gDatabase->Close();
        runtime::Raise(runtime::InvalidCall);
    };
    QObject::connect(Window().windowHandle(), &QWindow::visibleChanged, &Window(), fail,
                     Qt::SingleShotConnection);
    test::Answers answers;
    for (const int number : {int(runtime::InvalidCall), int(engine::ObjectClosed)})
        answers.BoxStarting(QStringLiteral("Функция Main:\r\nпроизошла ошибка №%1 ").arg(number),
                            Icon::Critical);
    General::Main();
    EXPECT_EQ(gDatabase, nullptr);
    EXPECT_EQ(gWorkspace, nullptr);
}

TEST_F(Endings, AnUnsoundVersionEndsAtOnceWithTheFileStillOpen) {
    const struct {
        QStringList versions;
        QString start;
    } rows[] = {
        {{}, QStringLiteral("Нарушена целостность базы данных: в таблице v00 отсутствуют записи.")},
        {{QStringLiteral("4")}, QStringLiteral("Данная версия программы может работать только")},
    };
    for (const auto& row : rows) {
        QFile::remove(Path());
        MakeBook(row.versions);
        Store(Path());
        const runtime::EndTrap trap;
        test::Answers answers;
        answers.BoxStarting(row.start, Icon::Critical);
        EXPECT_THROW(General::Main(), runtime::ProcessEnded);
        ASSERT_NE(gDatabase, nullptr);
        EXPECT_TRUE(gDatabase->IsOpen());
        EXPECT_TRUE(forms::Form::Loaded().empty());
        gDatabase.reset();
    }
}

TEST_F(Endings, AFileWithoutVersionTableStartsAfterABox) {
    engine::DBEngine::Workspaces(0)
        ->CreateDatabase(Path(), QString::fromUtf16(engine::dbLangGeneral))
        ->Close();
    Store(Path());
    test::Answers answers;
    answers.BoxStarting(QStringLiteral("Функция UpdateBaseIfNeed:\r\nпроизошла ошибка №"), Icon::Critical);
    General::Main();
    EXPECT_NE(forms::MdiForm::Current(), nullptr);
}

TEST_F(Endings, ExitAndCloseBoxUnloadTheChildrenAndLeaveTheFileOpen) {
    const std::function<void()> ways[] = {
        [] { Choose("mnuBookExit"); },
        [] { Window().close(); },
    };
    for (const auto& way : ways) {
        QFile::remove(Path());
        const test::Answers answers;
        Start();
        Choose("mnuSettingsSQLVIEW");
        Choose("mnuHelpAbout");
        EXPECT_EQ(Children().size(), 2);
        EXPECT_TRUE(MainLoopEndsAfter(way));
        EXPECT_TRUE(forms::Form::Loaded().empty());
        EXPECT_TRUE(gDatabase->IsOpen());
        gDatabase.reset();
    }
}

TEST_F(Endings, AnotherBaseIsStoredAndEndsTheProcess) {
    Start();
    QFile other(Path(QStringLiteral("other.mdb")));
    ASSERT_TRUE(other.open(QFile::WriteOnly));
    {
        test::Answers answers;
        answers.Question(NewBase, false, false);
        Choose("mnuBookNewBase");
        answers.Question(NewBase, true, false).File({});
        Choose("mnuBookNewBase");
        EXPECT_EQ(Stored(), Path());
    }
    const runtime::EndTrap trap;
    test::Answers answers;
    answers.Question(NewBase, true, false).File(other.fileName());
    // By its signal: the toolkit's own frames of a trigger are not made for exceptions.
    auto* command = Window().findChild<QAction*>(QStringLiteral("mnuBookNewBase"));
    EXPECT_THROW(Q_EMIT command->triggered(false), runtime::ProcessEnded);
    EXPECT_EQ(Stored(), QDir::toNativeSeparators(other.fileName()));
    EXPECT_TRUE(gDatabase->IsOpen());
    EXPECT_EQ(gDatabase->Name(), Path());
}
