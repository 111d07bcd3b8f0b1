#include "database/frmInstall.h"
#include "platform/engine/EngineError.h"
#include "platform/runtime/Files.h"
#include "tests/support/BoundBook.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

using forms::Icon;

namespace {

const QString CreateHead = "frmInstall функция cmdCreate_Click:";

/// The master, driven by mouse and keys.
class Install : public test::Unbound {
protected:
    static QLineEdit& Field(const QWidget& window) { return *window.findChild<QLineEdit*>("txtDBPath"); }
    /// Types the path and presses the button that creates.
    static void Create(const QWidget& window, const QString& path) {
        EXPECT_TRUE(window.isVisible());
        EXPECT_EQ(gWorkspace, nullptr);
        Field(window).setFocus();
        Field(window).selectAll();
        Field(window).insert(path);
        QTest::mouseClick(window.findChild<QPushButton*>("cmdCreate"), Qt::LeftButton);
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
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
    test::Answers answers;
    answers.Modal("frmInstall", [&](QWidget& window) {
        for (const QString& file : {Path("no/such/folder.mdb"), folder, path, path})
            Create(window, file);
        EXPECT_FALSE(window.isVisible());
    });
    answers.BoxStarting(test::ErrorStart(CreateHead, engine::InvalidPath), Icon::Critical)
        .BoxStarting(CreateHead, Icon::Critical)
        .Question(Question(path), false, false)
        .Question(Question(path), true, false)
        .Box("База данных успешно создана.", Icon::Information);
    const std::shared_ptr<frmInstall> master = forms::Form::Default<frmInstall>();
    master->Show(true);
    EXPECT_EQ(master->Tag(), "1");
    EXPECT_EQ(Stored(), path);
    EXPECT_EQ(gDatabase->Name(), path);
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
        Create(*master->Surface(), path);
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
