// How the program starts and how it ends.

#include "platform/engine/EngineError.h"
#include "platform/runtime/Settings.h"
#include "shell/General.h"
#include "shell/frmMain.h"
#include "tests/support/WindowTest.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTimer>

using forms::Icon;

namespace {

const QString NoBase = QStringLiteral("База данных не создана. Запустить мастер создания базы данных?");
const QString NewBase = QStringLiteral("Данная процедура потребует перезапуска программы. Если у вас есть не "
                                       "сохраненные данные, они будут потеряны. Продолжить?");

class StartTest : public test::Program {};

} // namespace

TEST_F(StartTest, WithoutABookNothingIsLeftOfIt) {
    const std::tuple<const char*, QByteArray, std::function<void(test::Answers&)>, bool> rows[] = {
        {"no master", {}, [](auto& answers) { answers.Question(NoBase, false, true); }, true},
        {"master closed",
         {},
         [](auto& answers) {
             answers.Question(NoBase, true, true).Modal(QStringLiteral("frmInstall"), [](QWidget& window) {
                 window.close();
             });
         },
         false},
        {"no database", "no database",
         [](auto& answers) { answers.Failure(QStringLiteral("Функция Main:"), engine::UnrecognisedFormat); },
         false},
    };
    Store(Path());
    for (const auto& [name, bytes, expect, ends] : rows) {
        SCOPED_TRACE(name);
        if (!bytes.isNull())
            test::WriteBytes(Path(), bytes);
        test::Answers answers;
        expect(answers);
        if (ends) {
            EXPECT_THROW(General::Main(), test::ProcessEnded);
        } else {
            General::Main();
        }
        EXPECT_EQ(Stored(), Path());
        EXPECT_TRUE(forms::Form::Loaded().empty());
        EXPECT_EQ(gDatabase, nullptr);
        EXPECT_EQ(gWorkspace, nullptr);
        EXPECT_EQ(test::ReadBytes(Path()), bytes.isNull() ? "no file" : bytes);
    }
}

TEST_F(StartTest, AnOldBookIsConvertedAndOpened) {
    ASSERT_TRUE(QFile::copy(QStringLiteral(ZAVELIK_TEST_DATA "/jet/v1-old.mdb"), Path()));
    QFile::setPermissions(Path(), QFile::ReadOwner | QFile::WriteOwner);
    Store(Path());
    test::Answers answers;
    answers
        .Question(
            QStringLiteral("Файл %1 создан прежней версией программы. Преобразовать его в новый формат? "
                           "Прежний файл сохранится рядом под именем book.jet4.mdb.")
                .arg(Path()),
            true, true)
        .BoxStarting(QStringLiteral("Файл ") + Path(), Icon::Information);
    General::Main();
    EXPECT_EQ(Window().windowTitle(), QStringLiteral("Завелик - ") + Path());
    EXPECT_TRUE(QFile::exists(Path(QStringLiteral("book.jet4.mdb"))));
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
                   auto& field = ControlOf<QLineEdit>(window, "txtDBPath");
                   field.setText(Path());
                   QTest::keyClick(&field, Qt::Key_Return);
               })
        .Box(QStringLiteral("База данных успешно создана."), Icon::Information)
        .Failure(QStringLiteral("Класс clsRegister функция SaveKeyVal:"), 75);
    General::Main();
    EXPECT_NE(forms::MdiForm::Current(), nullptr);
    EXPECT_TRUE(QFile::exists(Path()));
}

TEST_F(StartTest, ExitUnloadsTheChildrenEndsTheLoopAndLeavesTheFileOpen) {
    Start();
    Choose("mnuSettingsSQLVIEW");
    Choose("mnuHelpAbout");
    Last("frmAbout")->SetVisible(false);
    constexpr int LongestWait = 5000;
    constexpr int StillRunning = 1;
    QTimer::singleShot(0, qApp, [] { Choose("mnuBookExit"); });
    QTimer::singleShot(LongestWait, qApp, [] { QCoreApplication::exit(StillRunning); });
    EXPECT_NE(QApplication::exec(), StillRunning);
    EXPECT_TRUE(forms::Form::Loaded().empty());
    EXPECT_TRUE(gDatabase->IsOpen());
}

TEST_F(StartTest, AnotherBaseIsStoredAndEndsTheProcess) {
    Start();
    const QString other = Path(QStringLiteral("other.mdb"));
    test::WriteBytes(other, {});
    test::Answers answers;
    answers.Question(NewBase, false, false);
    Choose("mnuBookNewBase");
    const QString hidden = Path(QStringLiteral(".hidden.mdb"));
    test::WriteBytes(hidden, {});
    const bool hides = QFileInfo(hidden).isHidden(); // the dot, on this system
    for (const QString& refused : {QString(), hides ? hidden : QString()}) {
        answers.Question(NewBase, true, false).File(refused);
        Choose("mnuBookNewBase");
    }
    EXPECT_EQ(Stored(), Path());
    answers.Question(NewBase, true, false).File(other);
    // By its signal: the toolkit's own frames of a trigger are not made for exceptions.
    EXPECT_THROW(Q_EMIT ControlOf<QAction>(Window(), "mnuBookNewBase").triggered(false), test::ProcessEnded);
    EXPECT_EQ(Stored(), other);
    EXPECT_TRUE(gDatabase->IsOpen());
    EXPECT_EQ(gDatabase->Name(), Path());
}

TEST_F(StartTest, AFailedDeletionOfASettingAsksWhetherToGoOn) {
    const QString text =
        forms::ErrorText(QStringLiteral("Класс clsRegister функция DeleteKey:"),
                         {runtime::InvalidCall, runtime::RuntimeText(runtime::InvalidCall)}) +
        QStringLiteral("\r\nПродолжить работу программы?");
    test::Answers answers;
    answers.Question(text, true, false, Icon::Critical).Question(text, false, false, Icon::Critical);
    gRegister().DeleteKey(QStringLiteral("none"));
    EXPECT_THROW(gRegister().DeleteKey(QStringLiteral("none")), test::ProcessEnded);
}
