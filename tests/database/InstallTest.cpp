#include "database/frmInstall.h"
#include "platform/engine/EngineError.h"
#include "platform/runtime/Files.h"
#include "tests/database/BoundBase.h"
#include "tests/support/Answers.h"
#include "tests/support/Keys.h"
#include "tests/support/System.h"
#include "tests/support/WindowWalk.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using forms::Icon;
using test::ErrorStart;

namespace {

const QString CreateHead = QStringLiteral("frmInstall функция cmdCreate_Click:");
const QString SelectHead = QStringLiteral("frmInstall функция cmdSelect_Click:");
const QString Created = QStringLiteral("База данных успешно создана.");
const QString NotCreated = QStringLiteral("Не удалось создать базу данных.");

/// The master in a modal show, driven by mouse and keys.
class Install : public test::Unbound {
protected:
    /// What the modal show ended in; `act` works on the window and, unless the master hides it, is followed
    /// by a click on the close box.
    QString Run(test::Answers& answers, const std::function<void(QWidget&)>& act,
                const std::function<void(test::Answers&)>& boxes) {
        answers.Modal(QStringLiteral("frmInstall"), [&](QWidget& window) {
            act(window);
            if (window.isVisible())
                window.close();
        });
        boxes(answers);
        const std::shared_ptr<frmInstall> master = forms::Form::Default<frmInstall>();
        master->Show(true);
        QString tag = master->Tag();
        master->Unload();
        return tag;
    }

    static QLineEdit& Field(const QWidget& window) {
        return *window.findChild<QLineEdit*>(QStringLiteral("txtDBPath"));
    }

    static void Press(const QWidget& window, const char* button) {
        QTest::mouseClick(window.findChild<QPushButton*>(QString::fromLatin1(button)), Qt::LeftButton);
    }

    static void Create(const QWidget& window, const QString& path) {
        Field(window).setFocus();
        Field(window).selectAll();
        test::Type(&Field(window), path);
        Press(window, "cmdCreate");
    }

    static QString StoredPath() { return gRegister().GetKeyVal(QStringLiteral("DB_Path")); }
    static QString Question(const QString& path) {
        return QStringLiteral("Файл ") + path + QStringLiteral("уже существует. Перезаписать его?");
    }

    static void ExpectNothingBound() {
        EXPECT_EQ(gDatabase, nullptr);
        EXPECT_EQ(gWorkspace, nullptr);
        EXPECT_EQ(StoredPath(), QString());
    }
};

} // namespace

TEST_F(Install, OffersAFileBesideTheProgramInAFixedWindow) {
    test::Answers answers;
    Run(
        answers,
        [](QWidget& window) {
            EXPECT_EQ(window.windowTitle(), QStringLiteral("Мастер создания базы данных"));
            EXPECT_EQ(Field(window).text(),
                      runtime::JoinPath(runtime::ProgramFolder(), QStringLiteral("Zavelik.mdb")));
            EXPECT_EQ(window.minimumSize(), window.maximumSize());
            EXPECT_FALSE(window.windowFlags() &
                         (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint));
            auto* label = window.findChild<QLabel*>(QStringLiteral("Label1"));
            EXPECT_EQ(test::WindowFaults(window), QStringList());
            EXPECT_GE(label->height(), label->heightForWidth(label->width())) << "the text is cut off";
        },
        [](test::Answers&) {});
    ExpectNothingBound();
}

TEST_F(Install, CreatesAFileBindsItAndStoresItsPath) {
    const QString path = Path(QStringLiteral("Мои записи.mdb"));
    test::Answers answers;
    const QString tag = Run(
        answers, [&](QWidget& window) { Create(window, path); },
        [](test::Answers& boxes) { boxes.Box(Created, Icon::Information); });
    EXPECT_EQ(tag, QStringLiteral("1"));
    EXPECT_EQ(StoredPath(), path);
    ASSERT_NE(gDatabase, nullptr);
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT v00vrid FROM v00")), QStringList({"3"}));
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT count(*) FROM t03")), QStringList({"1913"}));
}

TEST_F(Install, AnExistingFileIsOverwrittenOnlyOnYes) {
    const QString path = Path(QStringLiteral("old.mdb"));
    test::WriteBytes(Path(QStringLiteral("old.mdb")), "precious");
    {
        test::Answers answers;
        const QString tag = Run(
            answers,
            [&](QWidget& window) {
                Create(window, path);
                EXPECT_TRUE(window.isVisible());
                EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
            },
            [&](test::Answers& boxes) { boxes.Question(Question(path), false, false); });
        EXPECT_EQ(tag, QStringLiteral("0"));
        EXPECT_EQ(test::ReadBytes(path), "precious");
        ExpectNothingBound();
    }
    test::Answers answers;
    const QString tag = Run(
        answers, [&](QWidget& window) { Create(window, path); },
        [&](test::Answers& boxes) {
            boxes.Question(Question(path), true, false).Box(Created, Icon::Information);
        });
    EXPECT_EQ(tag, QStringLiteral("1"));
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT v00vrid FROM v00")), QStringList({"3"}));
}

TEST_F(Install, AFailedPathLeavesTheWindowForAnotherTry) {
    const QString bad = Path(QStringLiteral("no/such/folder.mdb"));
    const QString good = Path();
    test::Answers answers;
    const QString tag = Run(
        answers,
        [&](QWidget& window) {
            Create(window, bad);
            EXPECT_TRUE(window.isVisible());
            EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
            ExpectNothingBound();
            Create(window, good);
        },
        [](test::Answers& boxes) {
            boxes.BoxStarting(ErrorStart(CreateHead, engine::InvalidPath), Icon::Critical)
                .Box(Created, Icon::Information);
        });
    EXPECT_EQ(tag, QStringLiteral("1"));
    EXPECT_EQ(StoredPath(), good);
}

TEST_F(Install, AFolderIsNeverDeleted) {
    const QString folder = Path(QStringLiteral("folder.mdb"));
    QDir().mkdir(folder);
    test::Answers answers;
    Run(
        answers, [&](QWidget& window) { Create(window, folder); },
        [](test::Answers& boxes) {
            boxes.BoxStarting(CreateHead + QStringLiteral("\r\nпроизошла ошибка №"), Icon::Critical);
        });
    EXPECT_TRUE(QDir(folder).exists());
    ExpectNothingBound();
}

TEST_F(Install, AFullDiskLeavesNeitherTheOldNorTheNewFile) {
    const QString path = Path(QStringLiteral("old.mdb"));
    test::WriteBytes(Path(QStringLiteral("old.mdb")), "old");
    // Whether the routine that writes or the report of success meets the end of the disk is a matter of time.
    test::Boxes boxes;
    const std::shared_ptr<frmInstall> master = forms::Form::Default<frmInstall>();
    master->Show();
    {
        const test::SmallDisk full(60'000);
        Create(*master->Surface(), path);
    }

    EXPECT_TRUE(master->Visible());
    EXPECT_EQ(master->Tag(), QStringLiteral("0"));
    master->Unload();
    EXPECT_FALSE(QFile::exists(path));
    const QStringList told = boxes.Take();
    ASSERT_GE(told.size(), 2);
    EXPECT_EQ(told.front(), Question(path));
    EXPECT_TRUE(told[1].contains(QStringLiteral("произошла ошибка №30"))) << told[1].toStdString();
    EXPECT_TRUE(told.back() == NotCreated || told.back().startsWith(CreateHead)) << told.back().toStdString();
    ExpectNothingBound();
}

TEST_F(Install, AnExistingFileIsPickedUnlooked) {
    const QString path = Path(QStringLiteral("picked.mdb"));
    engine::DBEngine::Workspaces(0)->CreateDatabase(path, QString::fromUtf16(engine::dbLangGeneral))->Close();
    const QByteArray before = test::ReadBytes(path);
    test::Answers answers;
    const QString tag = Run(
        answers, [](QWidget& window) { Press(window, "cmdSelect"); },
        [&](test::Answers& boxes) {
            boxes.File(path, [](QFileDialog& dialog) {
                EXPECT_EQ(dialog.nameFilters(), QStringList({QStringLiteral("База данных Access (*.mdb)")}));
                EXPECT_EQ(dialog.directory(), QDir(runtime::ProgramFolder()));
            });
        });
    EXPECT_EQ(tag, QStringLiteral("1"));
    EXPECT_EQ(StoredPath(), path);
    ASSERT_NE(gDatabase, nullptr);
    EXPECT_EQ(gDatabase->Name(), path);
    EXPECT_EQ(test::ReadBytes(path), before);
}

TEST_F(Install, ARefusedOrCancelledChoiceLeavesTheWindow) {
    test::WriteBytes(Path(QStringLiteral("text.mdb")), "this is no database at all, whatever its name says");
    const QString path = Path(QStringLiteral("text.mdb"));
    test::Answers answers;
    const QString tag = Run(
        answers,
        [](QWidget& window) {
            Press(window, "cmdSelect");
            EXPECT_TRUE(window.isVisible());
            Press(window, "cmdSelect");
            EXPECT_TRUE(window.isVisible());
        },
        [&](test::Answers& boxes) {
            boxes.File({}).File(path).BoxStarting(ErrorStart(SelectHead, engine::UnrecognisedFormat),
                                                  Icon::Critical);
        });
    EXPECT_EQ(tag, QStringLiteral("0"));
    EXPECT_TRUE(test::ReadBytes(path).startsWith("this is no database"));
    ExpectNothingBound();
}
