// Message boxes and file dialogs, answered as a user does.

#include "platform/engine/EngineError.h"
#include "platform/forms/Application.h"
#include "platform/forms/CommonDialog.h"
#include "platform/forms/MsgBox.h"
#include "tests/support/Answers.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/TestBook.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTest>
#include <QTreeView>

using forms::Icon;

namespace {

const QString Text = QStringLiteral("<b>Имя</b> & путь\r\nвторая строка");

class MsgBoxTest : public test::FolderTest {
protected:
    test::Answers answers;
};

} // namespace

TEST_F(MsgBoxTest, IconsAreDrawnWhereNoThemeHasThem) {
    QIcon::setThemeName(QStringLiteral("none"));
    for (const auto which : {QStyle::SP_MessageBoxCritical, QStyle::SP_MessageBoxQuestion,
                             QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxInformation}) {
        const QImage drawn =
            QApplication::style()->standardIcon(which).pixmap(QSize(256, 256), 1.0).toImage();
        EXPECT_EQ(drawn.size(), QSize(256, 256)) << "sharp at every size";
        EXPECT_NE(drawn.pixelColor(128, 128).alpha(), 0) << which;
        EXPECT_EQ(drawn.pixelColor(0, 0).alpha(), 0) << which;
    }
}

TEST_F(MsgBoxTest, KeysAndTheCloseBox) {
    const std::tuple<const char*, std::function<void(QWidget&)>, bool, bool> rows[] = {
        {"Esc", [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); }, false, false},
        {"close box", [](QWidget& box) { box.close(); }, false, false},
        {"Enter", [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); }, true, false},
    };
    for (const auto& [name, leave, yesIfPreselected, yesElse] : rows) {
        SCOPED_TRACE(name);
        for (int i = 0; i < 3; ++i)
            answers.Modal(QStringLiteral("MsgBox"), [leave = leave](QWidget& box) {
                leave(box);
                EXPECT_FALSE(box.isVisible());
            });
        EXPECT_EQ(forms::AskYes(Text), yesIfPreselected);
        EXPECT_EQ(forms::AskNo(Text), yesElse);
        forms::MsgBox(Text, Icon::Information);
        EXPECT_TRUE(answers.Done());
    }
}

TEST_F(MsgBoxTest, TextIsShownAsItIsAndFitsTheBox) {
    const QString text = Text + QStringLiteral("очень длинное имя папки/").repeated(20);
    answers.Modal(QStringLiteral("MsgBox"), [&](QWidget& window) {
        const auto* label = window.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
        EXPECT_LE(window.width(), 1024);
        EXPECT_GE(label->height(), label->heightForWidth(label->width()));
        window.close();
    });
    forms::MsgBox(text, Icon::Exclamation);
    answers.BoxStarting(text, Icon::Critical, [](const QString& shown) { EXPECT_LT(shown.size(), 10'000); });
    forms::MsgBox(text + QString(10'000'000, u'x'), Icon::Critical);
}

TEST_F(MsgBoxTest, AGroupLostOnTheWayToAnErrorBoxIsToldInASecondOne) {
    bool full = false;
    const test::FaultyFiles files([&](test::FaultyFiles::Call call) {
        return full && call == test::FaultyFiles::Call::Write ? SQLITE_FULL : SQLITE_OK;
    });
    const auto book = Create(Path());
    book->Execute(QStringLiteral("CREATE TABLE t (a INTEGER)"), engine::dbFailOnError);
    for (const engine::EngineError& told : {engine::InvalidPath, engine::DiskFull}) {
        engine::DBEngine::Commit();
        book->Execute(QStringLiteral("INSERT INTO t (a) VALUES (1)"), engine::dbFailOnError);
        full = true;
        answers.Failure(QStringLiteral("Глава"), told);
        if (told != engine::DiskFull)
            answers.Failure(QStringLiteral("Глава"), engine::DiskFull);
        forms::ShowErrorBox(QStringLiteral("Глава"), runtime::Failure(told, engine::EngineText(told)));
        EXPECT_TRUE(answers.Done()) << told.number;
        full = false;
    }
    book->Close();
}

TEST_F(MsgBoxTest, ALogOutIsHeldUpByNoBox) {
    const auto book = Create(Path());
    book->Execute(QStringLiteral("CREATE TABLE t (a INTEGER)"), engine::dbFailOnError);
    static_cast<forms::Application*>(qApp)->EndSession([] { return false; });
    EXPECT_EQ(test::ReadRows(Path(), QStringLiteral("SELECT * FROM t")), QStringList())
        << "the table is there";
    EXPECT_FALSE(forms::AskYes(Text));
    forms::MsgBox(Text, Icon::Information);

    QWidget window;
    QTest::keyClick(&window, Qt::Key_Shift);
    answers.Question(Text, true, true);
    EXPECT_TRUE(forms::AskYes(Text)) << "the user goes on";
    book->Close();
}

namespace {

class CommonDialogTest : public test::FolderTest {
protected:
    forms::CommonDialog dialog{QStringLiteral("cdlTest")};
    test::Answers answers;
};

} // namespace

TEST_F(CommonDialogTest, LeadsInRussianToTheFoldersOfTheUser) {
    EXPECT_EQ(QLocale::system().toString(QDate(2006, 12, 5), QStringLiteral("MMMM")),
              QStringLiteral("декабря"))
        << "by this the dialog writes its dates, whatever the language of the system";
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(Path(QString())));
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    ASSERT_TRUE(QDir().mkpath(folder));
    dialog.InitDir = QFileInfo(folder).path();
    answers.File({}, [&](const QFileDialog& window) {
        EXPECT_TRUE(window.sidebarUrls().contains(QUrl::fromLocalFile(folder)));
        const auto* files = window.findChild<QTreeView*>(QStringLiteral("treeView"));
        const QAbstractItemModel& model = *files->model();
        ASSERT_TRUE(QTest::qWaitFor([&] { return model.rowCount(files->rootIndex()) > 0; }));
        EXPECT_EQ(model.index(0, 2, files->rootIndex()).data(), QStringLiteral("Папка"));
    });
    dialog.ShowOpen(nullptr);
    EXPECT_EQ(dialog.FileName, QString()) << "cancelled";
    qputenv("HOME", home);
}

TEST_F(CommonDialogTest, SaveAddsTheExtensionAndWhatMustExistIsAskedForAgain) {
    const QString noFolder = QStringLiteral("\r\nТакой папки нет. Проверьте правильность пути.");
    const QString noFile = QStringLiteral("\r\nФайл не найден. Проверьте правильность имени файла.");
    test::WriteBytes(Path(QStringLiteral("old.csv")), {});
    dialog.Filter = QStringLiteral("Файл с разделителями (*.csv)|*.csv");
    const std::tuple<bool, QString, QString, QString, QString> rows[] = {
        {true, {}, {}, "new", "new.csv"},
        {true, {}, {}, "new.txt", "new.txt"},
        {true, {}, {}, "old", "old.csv"}, // and no question
        {true, "nofolder/new.mdb", noFolder, "new", "new.csv"},
        {false, "none.mdb", noFile, "old.csv", "old.csv"},
        {false, "nofolder/old.csv", noFolder, "old.csv", "old.csv"},
    };
    for (const auto& [save, refused, told, typed, taken] : rows) {
        if (!refused.isNull())
            answers.File(Path(refused)).Box(Path(refused) + told, Icon::Exclamation);
        answers.File(Path(typed));
        dialog.Flags = forms::cdlOFNPathMustExist | (save ? 0 : forms::cdlOFNFileMustExist);
        dialog.FileName.clear();
        if (save)
            dialog.ShowSave(nullptr);
        else
            dialog.ShowOpen(nullptr);
        EXPECT_EQ(dialog.FileName, Path(taken)) << refused.toStdString() << typed.toStdString();
        EXPECT_TRUE(answers.Done());
    }
}
