#include "database/frmInstall.h"
#include "platform/engine/EngineError.h"
#include "platform/runtime/Files.h"
#include "tests/support/BoundBook.h"
#include "tests/support/Keys.h"

#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using forms::Icon;
using test::ErrorStart;

namespace {

const QString CreateHead = "frmInstall функция cmdCreate_Click:";

/// The master in a modal show, driven by mouse and keys.
class Install : public test::Unbound {
protected:
    using Act = std::function<void(QWidget&)>;

    /// `act` works on the window while these boxes come, and ends with a book.
    static void Run(const Act& act, const std::function<void(test::Answers&)>& boxes) {
        test::Answers answers;
        answers.Modal("frmInstall", [&](QWidget& window) {
            act(window);
            EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
            EXPECT_FALSE(window.isVisible());
        });
        boxes(answers);
        const std::shared_ptr<frmInstall> master = forms::Form::Default<frmInstall>();
        master->Show(true);
        EXPECT_EQ(master->Tag(), "1");
        master->Unload();
        EXPECT_TRUE(answers.Done());
        EXPECT_EQ(Stored(), gDatabase->Name());
    }

    static QLineEdit& Field(const QWidget& window) { return *window.findChild<QLineEdit*>("txtDBPath"); }
    static void Press(const QWidget& window, const char* button) {
        EXPECT_TRUE(window.isVisible());
        EXPECT_EQ(gWorkspace, nullptr);
        QTest::mouseClick(window.findChild<QPushButton*>(button), Qt::LeftButton);
    }
    /// Types the paths one by one and presses the button that creates.
    static Act Create(const QStringList& paths) {
        return [=](QWidget& window) {
            for (const QString& path : paths) {
                Field(window).setFocus();
                Field(window).selectAll();
                test::Type(&Field(window), path);
                Press(window, "cmdCreate");
            }
        };
    }
    static QString Question(const QString& path) {
        return "Файл " + path + "уже существует. Перезаписать его?";
    }
};

} // namespace

TEST_F(Install, OffersAFileBesideTheProgramInAFixedWindow) {
    const std::shared_ptr<frmInstall> master = forms::Form::Default<frmInstall>();
    master->Show();
    const QWidget& window = *master->Surface()->window();
    EXPECT_EQ(Field(window).text(), runtime::JoinPath(runtime::ProgramFolder(), "Zavelik.mdb"));
    EXPECT_EQ(window.minimumSize(), window.maximumSize());
    const auto* label = window.findChild<QLabel*>("Label1");
    EXPECT_GE(label->height(), label->heightForWidth(label->width())) << "the text is cut off";
}

TEST_F(Install, ABookIsMadeAtLast) {
    const QString path = Path("Мои записи.mdb");
    const QString folder = Path("folder.mdb");
    test::WriteBytes(path, "precious");
    QDir().mkdir(folder);
    Run(Create({Path("no/such/folder.mdb"), folder, path, path}), [&](test::Answers& boxes) {
        boxes.BoxStarting(ErrorStart(CreateHead, engine::InvalidPath), Icon::Critical)
            .BoxStarting(CreateHead, Icon::Critical)
            .Question(Question(path), false, false)
            .Question(Question(path), true, false, Icon::Question)
            .Box("База данных успешно создана.", Icon::Information);
    });
    EXPECT_TRUE(QDir(folder).exists());
    EXPECT_EQ(test::ReadRows(path, "SELECT v00vrid, (SELECT count(*) FROM t03) FROM v00"),
              QStringList("3|1913"));
}

TEST_F(Install, AFullDiskLeavesNeitherTheOldNorTheNewFile) {
    const QString path = Path("old.mdb");
    test::WriteBytes(path, "old");
    // Whether the routine that writes or the report of success meets the end of the disk is a matter of time.
    test::Boxes boxes;
    const std::shared_ptr<frmInstall> master = forms::Form::Default<frmInstall>();
    master->Show();
    {
        const test::SmallDisk full(60'000);
        Create({path})(*master->Surface());
    }
    EXPECT_TRUE(master->Surface()->isVisible());
    EXPECT_FALSE(QFile::exists(path));
    const QStringList told = boxes.Take();
    ASSERT_GE(told.size(), 2);
    EXPECT_EQ(told.front(), Question(path));
    EXPECT_TRUE(told[1].contains("произошла ошибка №30")) << told[1].toStdString();
    EXPECT_TRUE(told.back() == "Не удалось создать базу данных." || told.back().startsWith(CreateHead))
        << told.back().toStdString();
    EXPECT_EQ(gDatabase, nullptr);
    EXPECT_EQ(Stored(), "");
}

TEST_F(Install, AFileIsPickedUnlooked) {
    const QString text = Path("text.mdb");
    test::WriteBytes(text, "this is no database at all, whatever its name says");
    const QString path = Path("picked.mdb");
    Unbound::Create(path)->Close();
    const QByteArray before = test::ReadBytes(path);
    const auto select = [](QWidget& window) {
        for (int tries = 0; tries < 3; ++tries)
            Press(window, "cmdSelect");
    };
    Run(select, [&](test::Answers& boxes) {
        boxes
            .File({}, // cancelled
                  [](QFileDialog& dialog) {
                      EXPECT_EQ(dialog.nameFilters(), QStringList("База данных Access (*.mdb)"));
                      EXPECT_EQ(dialog.directory(), QDir(runtime::ProgramFolder()));
                  })
            .File(text)
            .Failure("frmInstall функция cmdSelect_Click:", engine::UnrecognisedFormat)
            .File(path);
    });
    EXPECT_EQ(gDatabase->Name(), path);
    EXPECT_EQ(test::ReadBytes(path), before);
    EXPECT_TRUE(test::ReadBytes(text).startsWith("this is no database"));
}
