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
    using Act = std::function<void(QWidget&)>;

    /// `act` works on the window while these boxes come; where the master is not done then, its close box is
    /// clicked. Whether a book is bound and stored.
    bool Run(const Act& act, const std::function<void(test::Answers&)>& boxes = {}) {
        test::Answers answers;
        answers.Modal(QStringLiteral("frmInstall"), [&](QWidget& window) {
            act(window);
            EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
            if (window.isVisible())
                window.close();
        });
        if (boxes)
            boxes(answers);
        const std::shared_ptr<frmInstall> master = forms::Form::Default<frmInstall>();
        master->Show(true);
        const bool done = master->Tag() == u"1";
        master->Unload();
        EXPECT_TRUE(answers.Done());
        EXPECT_EQ(gDatabase != nullptr, done);
        EXPECT_EQ(gWorkspace != nullptr, done);
        EXPECT_EQ(gRegister().GetKeyVal(QStringLiteral("DB_Path")), done ? gDatabase->Name() : QString());
        return done;
    }

    static QLineEdit& Field(const QWidget& window) {
        return *window.findChild<QLineEdit*>(QStringLiteral("txtDBPath"));
    }
    static void Press(const QWidget& window, const char* button) {
        QTest::mouseClick(window.findChild<QPushButton*>(QString::fromLatin1(button)), Qt::LeftButton);
    }
    /// Types the paths one by one and presses the button that creates.
    static Act Create(const QStringList& paths) {
        return [=](QWidget& window) {
            for (const QString& path : paths) {
                EXPECT_TRUE(window.isVisible());
                Field(window).setFocus();
                Field(window).selectAll();
                test::Type(&Field(window), path);
                Press(window, "cmdCreate");
            }
        };
    }
    static QString Question(const QString& path) {
        return QStringLiteral("Файл ") + path + QStringLiteral("уже существует. Перезаписать его?");
    }
    static void ExpectNewBook(const QString& path) {
        EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT v00vrid, (SELECT count(*) FROM t03) FROM v00")),
                  QStringList({"3|1913"}));
    }
};

} // namespace

TEST_F(Install, OffersAFileBesideTheProgramInAFixedWindow) {
    EXPECT_FALSE(Run([](QWidget& window) {
        EXPECT_EQ(window.windowTitle(), QStringLiteral("Мастер создания базы данных"));
        EXPECT_EQ(Field(window).text(),
                  runtime::JoinPath(runtime::ProgramFolder(), QStringLiteral("Zavelik.mdb")));
        EXPECT_EQ(window.minimumSize(), window.maximumSize());
        EXPECT_FALSE(window.windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint));
        auto* label = window.findChild<QLabel*>(QStringLiteral("Label1"));
        EXPECT_EQ(test::WindowFaults(window), QStringList());
        EXPECT_GE(label->height(), label->heightForWidth(label->width())) << "the text is cut off";
    }));
}

TEST_F(Install, AFailedPathLeavesTheWindowForAnotherTry) {
    const QString path = Path(QStringLiteral("Мои записи.mdb"));
    EXPECT_TRUE(Run(Create({Path(QStringLiteral("no/such/folder.mdb")), path}), [](test::Answers& boxes) {
        boxes.BoxStarting(ErrorStart(CreateHead, engine::InvalidPath), Icon::Critical)
            .Box(Created, Icon::Information);
    }));
    ExpectNewBook(path);
}

TEST_F(Install, AnExistingFileIsOverwrittenOnlyOnYesAndAFolderNever) {
    const QString path = Path(QStringLiteral("old.mdb"));
    const QString folder = Path(QStringLiteral("folder.mdb"));
    test::WriteBytes(path, "precious");
    QDir().mkdir(folder);
    EXPECT_FALSE(Run(Create({path, folder}), [&](test::Answers& boxes) {
        boxes.Question(Question(path), false, false)
            .BoxStarting(CreateHead + QStringLiteral("\r\nпроизошла ошибка №"), Icon::Critical);
    }));
    EXPECT_EQ(test::ReadBytes(path), "precious");
    EXPECT_TRUE(QDir(folder).exists());
    EXPECT_TRUE(Run(Create({path}), [&](test::Answers& boxes) {
        boxes.Question(Question(path), true, false).Box(Created, Icon::Information);
    }));
    ExpectNewBook(path);
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
        Create({path})(*master->Surface());
    }

    EXPECT_TRUE(master->IsLoaded() && master->Surface()->isVisible());
    EXPECT_EQ(master->Tag(), QStringLiteral("0"));
    master->Unload();
    EXPECT_FALSE(QFile::exists(path));
    const QStringList told = boxes.Take();
    ASSERT_GE(told.size(), 2);
    EXPECT_EQ(told.front(), Question(path));
    EXPECT_TRUE(told[1].contains(QStringLiteral("произошла ошибка №30"))) << told[1].toStdString();
    EXPECT_TRUE(told.back() == NotCreated || told.back().startsWith(CreateHead)) << told.back().toStdString();
    EXPECT_EQ(gDatabase, nullptr);
    EXPECT_EQ(gRegister().GetKeyVal(QStringLiteral("DB_Path")), QString());
}

TEST_F(Install, AFileIsPickedUnlooked) {
    const QString text = Path(QStringLiteral("text.mdb"));
    test::WriteBytes(text, "this is no database at all, whatever its name says");
    const QString path = Path(QStringLiteral("picked.mdb"));
    engine::DBEngine::Workspaces(0)->CreateDatabase(path, QString::fromUtf16(engine::dbLangGeneral))->Close();
    const QByteArray before = test::ReadBytes(path);
    const auto select = [](QWidget& window) {
        for (int tries = 0; tries < 3; ++tries) {
            EXPECT_TRUE(window.isVisible());
            EXPECT_EQ(gDatabase, nullptr);
            Press(window, "cmdSelect");
        }
    };
    EXPECT_TRUE(Run(select, [&](test::Answers& boxes) {
        boxes
            .File({}, // cancelled
                  [](QFileDialog& dialog) {
                      EXPECT_EQ(dialog.nameFilters(),
                                QStringList({QStringLiteral("База данных Access (*.mdb)")}));
                      EXPECT_EQ(dialog.directory(), QDir(runtime::ProgramFolder()));
                  })
            .File(text)
            .BoxStarting(ErrorStart(SelectHead, engine::UnrecognisedFormat), Icon::Critical)
            .File(path);
    }));
    EXPECT_EQ(gDatabase->Name(), path);
    EXPECT_EQ(test::ReadBytes(path), before);
    EXPECT_TRUE(test::ReadBytes(text).startsWith("this is no database"));
}
