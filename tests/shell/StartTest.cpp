// How the program starts and how it ends.

#include "platform/engine/EngineError.h"
#include "platform/runtime/Process.h"
#include "platform/runtime/Settings.h"
#include "shell/General.h"
#include "shell/frmMain.h"
#include "tests/support/WindowTest.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTimer>
#include <QWindow>

using forms::Icon;

namespace {

const QString NoBase = QStringLiteral("База данных не создана. Запустить мастер создания базы данных?");
const QString NewBase = QStringLiteral("Данная процедура потребует перезапуска программы. Если у вас есть не "
                                       "сохраненные данные, они будут потеряны. Продолжить?");
const QString Main = QStringLiteral("Функция Main:");

enum End {
    Runs,     ///< the main window stands
    Stops,    ///< nothing is left of the start
    EndsOpen, ///< the process ended at once, with the file still open
    Ends,     ///< with nothing open
};

class StartTest : public test::Program {
protected:
    void OldBook(const char* name) const {
        ASSERT_TRUE(
            QFile::copy(QStringLiteral(ZAVELIK_TEST_DATA "/jet/") + QString::fromLatin1(name), Path()));
        QFile::setPermissions(Path(), QFile::ReadOwner | QFile::WriteOwner);
    }
    bool IsKept() const { return QFile::exists(Path(QStringLiteral("book.jet4.mdb"))); }

    /// Whether the program's main loop ends by itself once the action has run in it.
    static bool MainLoopEndsAfter(const std::function<void()>& action) {
        constexpr int LongestWait = 5000;
        constexpr int StillRunning = 1;
        QTimer::singleShot(0, qApp, action);
        QTimer::singleShot(LongestWait, qApp, [] { QCoreApplication::exit(StillRunning); });
        return QApplication::exec() != StillRunning;
    }
};

} // namespace

TEST_F(StartTest, EveryBookHasItsEnd) {
    const QString created = QStringLiteral("База данных успешно создана.");
    const QString old =
        QStringLiteral("Файл %1 создан прежней версией программы. Преобразовать его в новый формат? Прежний "
                       "файл сохранится рядом под именем book.jet4.mdb.")
            .arg(Path());
    const auto master = [](const QString& path) {
        return [path](QWidget& window) {
            if (path.isEmpty()) {
                window.close();
                return;
            }
            auto* field = window.findChild<QLineEdit*>(QStringLiteral("txtDBPath"));
            field->setText(path);
            QTest::keyClick(field, Qt::Key_Return);
        };
    };
    const struct {
        const char* name;
        std::function<void()> arrange;
        std::function<void(test::Answers&)> expect;
        End end;
    } rows[] = {
        {"no file, no master", [] {}, [](auto& answers) { answers.Question(NoBase, false, true); }, Ends},
        {"master closed", [] {},
         [&](auto& answers) {
             answers.Question(NoBase, true, true).Modal(QStringLiteral("frmInstall"), master({}));
         },
         Stops},
        {"master creates", [] {},
         [&](auto& answers) {
             answers.Question(NoBase, true, true)
                 .Modal(QStringLiteral("frmInstall"), master(Path()))
                 .Box(created, Icon::Information);
         },
         Runs},
        {"no database", [this] { test::WriteBytes(Path(), "no database"); },
         [](auto& answers) { answers.Failure(Main, engine::UnrecognisedFormat); }, Stops},
        {"no version", [this] { MakeBook({}); },
         [](auto& answers) {
             answers.BoxStarting(
                 QStringLiteral("Нарушена целостность базы данных: в таблице v00 отсутствуют записи."),
                 Icon::Critical);
         },
         EndsOpen},
        {"later version", [this] { MakeBook({QStringLiteral("4")}); },
         [](auto& answers) {
             answers.BoxStarting(QStringLiteral("Данная версия программы может работать только"),
                                 Icon::Critical);
         },
         EndsOpen},
        {"no version table", [this] { Create(Path())->Close(); },
         [](auto& answers) {
             answers.BoxStarting(QStringLiteral("Функция UpdateBaseIfNeed:\r\nпроизошла ошибка №"),
                                 Icon::Critical);
         },
         Runs},
        {"old file, no", [this] { OldBook("v1-old.mdb"); },
         [&](auto& answers) { answers.Question(old, false, true); }, Stops},
        {"old file, damaged", [this] { OldBook("broken-page.mdb"); },
         [](auto& answers) { answers.Failure(Main, engine::CannotOpenDatabase); }, Stops},
        {"old file, yes", [this] { OldBook("v1-old.mdb"); },
         [&](auto& answers) {
             answers.Question(old, true, true)
                 .BoxStarting(QStringLiteral("Файл ") + Path(), Icon::Information);
         },
         Runs},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        QFile::remove(Path());
        Store(Path());
        row.arrange();
        const QByteArray before = test::ReadBytes(Path());
        const runtime::EndTrap trap;
        test::Answers answers;
        row.expect(answers);
        if (row.end == Ends || row.end == EndsOpen) {
            EXPECT_THROW(General::Main(), runtime::ProcessEnded);
        } else {
            General::Main();
        }
        EXPECT_TRUE(answers.Done());
        EXPECT_EQ(Stored(), Path());
        EXPECT_EQ(forms::Form::Loaded().empty(), row.end != Runs);
        EXPECT_EQ(gDatabase != nullptr && gDatabase->IsOpen(), row.end == Runs || row.end == EndsOpen);
        EXPECT_EQ(gWorkspace != nullptr, gDatabase != nullptr);
        if (row.end == Runs) {
            EXPECT_EQ(Window().windowTitle(), QStringLiteral("Завелик - ") + Path());
        } else {
            EXPECT_EQ(test::ReadBytes(Path()), before);
        }
        Unbind();
    }
    EXPECT_TRUE(IsKept());
    EXPECT_EQ(Row(QStringLiteral("SELECT (SELECT count(*) FROM a01), v00vrid FROM v00")),
              QStringLiteral("11|3"));
}

TEST_F(StartTest, AStoreThatCannotBeWrittenDoesNotStopTheStart) {
    test::WriteBytes(Path(QStringLiteral("file")), {});
    runtime::UseSettingsFile(Path(QStringLiteral("file/store.ini")));
    test::Answers answers;
    answers.Question(NoBase, true, true)
        .Modal(QStringLiteral("frmInstall"),
               [&](QWidget& window) {
                   ControlOf<QLineEdit>(window, "txtDBPath").setText(Path());
                   QTest::mouseClick(&ControlOf(window, "cmdCreate"), Qt::LeftButton);
               })
        .Box(QStringLiteral("База данных успешно создана."), Icon::Information)
        .Failure(QStringLiteral("Класс clsRegister функция SaveKeyVal:"), 75);
    General::Main();
    EXPECT_NE(forms::MdiForm::Current(), nullptr);
    EXPECT_TRUE(QFile::exists(Path()));
}

TEST_F(StartTest, AStartThatFailsLateReleasesWhatItOpened) {
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
    answers.Failure(Main, runtime::InvalidCall).Failure(Main, engine::ObjectClosed);
    General::Main();
    EXPECT_EQ(gDatabase, nullptr);
    EXPECT_EQ(gWorkspace, nullptr);
}

TEST_F(StartTest, ExitAndCloseBoxUnloadTheChildrenAndLeaveTheFileOpen) {
    for (const auto& way :
         {std::function<void()>([] { Choose("mnuBookExit"); }), {[] { Window().close(); }}}) {
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

TEST_F(StartTest, AnotherBaseIsStoredAndEndsTheProcess) {
    Start();
    const QString other = Path(QStringLiteral("other.mdb"));
    test::WriteBytes(other, {});
    test::Answers answers;
    answers.Question(NewBase, false, false).Question(NewBase, true, false).File({});
    Choose("mnuBookNewBase");
    Choose("mnuBookNewBase");
    EXPECT_EQ(Stored(), Path());
    const runtime::EndTrap trap;
    answers.Question(NewBase, true, false).File(other);
    // By its signal: the toolkit's own frames of a trigger are not made for exceptions.
    EXPECT_THROW(Q_EMIT ControlOf<QAction>(Window(), "mnuBookNewBase").triggered(false),
                 runtime::ProcessEnded);
    EXPECT_EQ(Stored(), other);
    EXPECT_TRUE(gDatabase->IsOpen());
    EXPECT_EQ(gDatabase->Name(), Path());
}
