// Message boxes and file dialogs, answered as a user does.

#include "platform/engine/EngineError.h"
#include "platform/engine/dao/DBEngine.h"
#include "platform/forms/Application.h"
#include "platform/forms/CommonDialog.h"
#include "platform/forms/MsgBox.h"
#include "tests/support/Answers.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QStyledItemDelegate>
#include <QTest>
#include <QTreeView>

using forms::Answer;
using forms::Icon;

namespace {

void Touch(const QString& path) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

QString ButtonText(QMessageBox& box, QMessageBox::StandardButton which) {
    return box.button(which)->text().remove(u'&');
}

} // namespace

TEST(MsgBoxTest, IconsButtonsAndAnswers) {
    const QString text = QStringLiteral("<b>Имя</b> & путь\r\nвторая строка");
    test::Answers answers;
    for (const Icon icon : {Icon::Critical, Icon::Question, Icon::Exclamation, Icon::Information}) {
        answers.Box(text, icon);
        EXPECT_EQ(forms::MsgBox(text, icon), Answer::Ok);
    }
    struct Case {
        bool yes;
        bool yesPreselected;
    };
    for (const Case& c : {Case{true, true}, Case{true, false}, Case{false, true}, Case{false, false}}) {
        answers.Question(text, c.yes, c.yesPreselected);
        EXPECT_EQ(c.yesPreselected ? forms::AskYes(text) : forms::AskNo(text), c.yes);
    }
    answers.Question(text, true, false, Icon::Critical);
    EXPECT_TRUE(forms::AskNo(text, Icon::Critical));
    QIcon::setThemeName(QStringLiteral("none"));
    for (const auto which : {QStyle::SP_MessageBoxCritical, QStyle::SP_MessageBoxQuestion,
                             QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxInformation}) {
        const QIcon drawn = QApplication::style()->standardIcon(which);
        EXPECT_EQ(drawn.pixmap(QSize(256, 256)).size(), QSize(256, 256)) << "sharp at every size";
        EXPECT_NE(drawn.pixmap(QSize(32, 32)).toImage().pixelColor(16, 16).alpha(), 0);
    }
    answers.BoxStarting(text, Icon::Critical, [](const QString& shown) { EXPECT_LT(shown.size(), 10'000); });
    forms::MsgBox(text + QString(10'000'000, u'x'), Icon::Critical);
}

TEST(MsgBoxTest, EscAndTheCloseBoxOfAQuestionMeanNo) {
    test::Answers answers;
    const auto ask = [&](bool yesPreselected, const std::function<void(QWidget&)>& leave) {
        answers.Modal(QStringLiteral("MsgBox"), [&](QWidget& window) {
            auto& box = dynamic_cast<QMessageBox&>(window);
            EXPECT_EQ(ButtonText(box, QMessageBox::Yes), QStringLiteral("Да"));
            EXPECT_EQ(ButtonText(box, QMessageBox::No), QStringLiteral("Нет"));
            EXPECT_TRUE(box.windowFlags() & Qt::WindowCloseButtonHint);
            leave(window);
            EXPECT_FALSE(box.isVisible());
        });
        const QString text = QStringLiteral("Вопрос?");
        return yesPreselected ? forms::AskYes(text) : forms::AskNo(text);
    };
    const auto press = [](Qt::Key key) { return [key](QWidget& box) { QTest::keyClick(&box, key); }; };
    for (const bool yesPreselected : {false, true}) {
        EXPECT_FALSE(ask(yesPreselected, press(Qt::Key_Escape)));
        EXPECT_FALSE(ask(yesPreselected, [](QWidget& box) { box.close(); }));
        EXPECT_EQ(ask(yesPreselected, press(Qt::Key_Return)), yesPreselected);
    }
}

TEST(MsgBoxTest, OkBoxIsLeftByEscToo) {
    test::Answers answers;
    answers.Modal(QStringLiteral("MsgBox"),
                  [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    EXPECT_EQ(forms::MsgBox(QStringLiteral("Готово."), Icon::Information), Answer::Ok);
}

TEST(MsgBoxTest, TextIsShownAsItIsAndFitsTheBox) {
    const QString path =
        QStringLiteral("/home/user/") + QStringLiteral("очень длинное имя папки/").repeated(20);
    const QString text = QStringLiteral("<i>Файл</i> &") + path;
    test::Answers answers;
    answers.Modal(QStringLiteral("MsgBox"), [&](QWidget& window) {
        const auto* label = window.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        EXPECT_EQ(label->textFormat(), Qt::PlainText);
        EXPECT_EQ(label->text(), text);
        EXPECT_TRUE(label->wordWrap());
        EXPECT_LE(window.width(), 1024);
        EXPECT_GE(label->height(), label->heightForWidth(label->width()));
        QTest::keyClick(&window, Qt::Key_Return);
    });
    forms::MsgBox(text, Icon::Exclamation);
}

TEST(MsgBoxTest, ErrorBox) {
    const runtime::Failure failure(3044, QStringLiteral("Путь не найден"));
    test::Answers answers;
    answers.Box(
        QStringLiteral("frmInstall функция cmdCreate_Click:\r\nпроизошла ошибка №3044 Путь не найден"),
        Icon::Critical);
    forms::ShowErrorBox(QStringLiteral("frmInstall функция cmdCreate_Click:"), failure);
    answers.Box(QStringLiteral("Глава\r\nпроизошла ошибка №3044 Путь не найден"), Icon::Exclamation);
    forms::ShowErrorBox(QStringLiteral("Глава"), failure, Icon::Exclamation);
    answers.Box(QStringLiteral("произошла ошибка №3044 Путь не найден"), Icon::Critical);
    forms::ShowErrorBox({}, failure);
}

TEST(MsgBoxTest, AGroupLostOnTheWayToAnErrorBoxIsToldInASecondOne) {
    const test::TestFolder folder;
    bool full = false;
    const test::FaultyFiles files([&](test::FaultyFiles::Call call) {
        return full && call == test::FaultyFiles::Call::Write ? SQLITE_FULL : SQLITE_OK;
    });
    const auto book = engine::DBEngine::Workspaces(0)->CreateDatabase(
        folder.Path(QStringLiteral("book.mdb")), QString::fromUtf16(engine::dbLangGeneral));
    book->Execute(QStringLiteral("CREATE TABLE t (a INTEGER)"), engine::dbFailOnError);
    for (const int told : {3044, 3026}) {
        engine::DBEngine::Commit();
        book->Execute(QStringLiteral("INSERT INTO t (a) VALUES (1)"), engine::dbFailOnError);
        full = true;
        test::Answers answers;
        answers.BoxStarting(QStringLiteral("Глава\r\nпроизошла ошибка №%1 ").arg(told), Icon::Critical);
        if (told != 3026)
            answers.BoxStarting(QStringLiteral("Глава\r\nпроизошла ошибка №3026 "), Icon::Critical);
        forms::ShowErrorBox(QStringLiteral("Глава"), runtime::Failure(told, engine::EngineText(told)));
        EXPECT_TRUE(answers.Done()) << told;
        full = false;
    }
    book->Close();
}

TEST(MsgBoxTest, ALogOutIsHeldUpByNoBox) {
    const test::TestFolder folder;
    const QString path = folder.Path(QStringLiteral("book.mdb"));
    const auto book =
        engine::DBEngine::Workspaces(0)->CreateDatabase(path, QString::fromUtf16(engine::dbLangGeneral));
    book->Execute(QStringLiteral("CREATE TABLE t (a INTEGER)"), engine::dbFailOnError);
    test::Answers answers;
    static_cast<forms::Application*>(qApp)->EndSession([] { return false; });
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT * FROM t")), QStringList()) << "the table is there";
    EXPECT_FALSE(forms::AskYes(QStringLiteral("Удалить?")));
    forms::MsgBox(QStringLiteral("Готово."), Icon::Information);

    QWidget window;
    QTest::keyClick(&window, Qt::Key_Shift);
    answers.Question(QStringLiteral("Удалить?"), true, true);
    EXPECT_TRUE(forms::AskYes(QStringLiteral("Удалить?"))) << "the user goes on";
    book->Close();
}

/// Lets a test ask a delegate what it would draw.
struct Reader : QStyledItemDelegate {
    using QStyledItemDelegate::initStyleOption;
};

class CommonDialogTest : public testing::Test {
protected:
    QString Native(const QString& name) const { return QDir::toNativeSeparators(folder.Path(name)); }

    test::TestFolder folder;
    forms::CommonDialog dialog{QStringLiteral("cdlTest")};
    test::Answers answers;
};

TEST_F(CommonDialogTest, SaveAddsTheExtensionAndNeverAsks) {
    Touch(folder.Path(QStringLiteral("old.csv")));
    struct Case {
        const char* typed;
        const char* result;
    };
    for (const Case& c : {Case{"new", "new.csv"}, Case{"new.txt", "new.txt"}, Case{"old.csv", "old.csv"},
                          Case{"old", "old.csv"}}) {
        dialog.InitDir = folder.Path(QString());
        dialog.Flags = forms::cdlOFNPathMustExist;
        dialog.Filter = QStringLiteral("Файл с разделителями (*.csv)|*.csv");
        dialog.FileName.clear();
        answers.File(folder.Path(QString::fromLatin1(c.typed)), [this](QFileDialog& window) {
            EXPECT_EQ(window.objectName(), QStringLiteral("cdlTest"));
            EXPECT_EQ(window.nameFilters(), QStringList(QStringLiteral("Файл с разделителями (*.csv)")));
            EXPECT_EQ(QDir(window.directory()), QDir(folder.Path(QString())));
            auto* buttons = window.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
            EXPECT_EQ(buttons->button(QDialogButtonBox::Save)->text().remove(u'&'),
                      QStringLiteral("Сохранить"));
        });
        dialog.ShowSave(nullptr);
        EXPECT_EQ(dialog.FileName, Native(QString::fromLatin1(c.result))) << c.typed;
    }
}

TEST_F(CommonDialogTest, ListsFilesInRussian) {
    EXPECT_EQ(QLocale::system().toString(QDate(2006, 12, 5), QStringLiteral("MMMM")),
              QStringLiteral("декабря"))
        << "by this the dialog writes its dates, whatever the language of the system";
    EXPECT_NE(qgetenv("LC_ALL"), QByteArray("ru_RU.UTF-8"));

    ASSERT_TRUE(QDir().mkpath(folder.Path(QStringLiteral("books/old"))));
    QFile book(folder.Path(QStringLiteral("books/my.mdb")));
    ASSERT_TRUE(book.open(QFile::WriteOnly) && book.resize(1536));
    dialog.InitDir = folder.Path(QStringLiteral("books"));
    answers.File(QString(), [](QFileDialog& window) {
        const auto* files = window.findChild<QTreeView*>(QStringLiteral("treeView"));
        const QAbstractItemView& list = *files;
        const auto row = [files](int number) { return files->model()->index(number, 0, files->rootIndex()); };
        ASSERT_TRUE(QTest::qWaitFor([&] { return !row(1).siblingAtColumn(1).data().toString().isEmpty(); }));
        for (int column = 0; column < 4; ++column)
            EXPECT_GE(files->columnWidth(column), list.sizeHintForColumn(column));
        EXPECT_EQ(row(0).siblingAtColumn(2).data(), QStringLiteral("Папка"));
        QStyleOptionViewItem size;
        const auto* delegate = qobject_cast<QStyledItemDelegate*>(files->itemDelegateForColumn(1));
        (delegate->*&Reader::initStyleOption)(&size, row(1).siblingAtColumn(1));
        EXPECT_EQ(size.text, QStringLiteral("1,5 кБ"));
    });
    dialog.ShowOpen(nullptr);
}

TEST_F(CommonDialogTest, LeadsToTheFoldersOfTheUser) {
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", QFile::encodeName(folder.Path(QString())));
    for (const auto kind : {QStandardPaths::DocumentsLocation, QStandardPaths::DownloadLocation})
        ASSERT_TRUE(QDir().mkpath(QStandardPaths::writableLocation(kind)));
    const auto leadsTo = [](const QFileDialog& window, QStandardPaths::StandardLocation kind) {
        return window.sidebarUrls().contains(QUrl::fromLocalFile(QStandardPaths::writableLocation(kind)));
    };
    answers.File(QString(), [&](QFileDialog& window) {
        EXPECT_TRUE(leadsTo(window, QStandardPaths::DocumentsLocation));
        EXPECT_TRUE(leadsTo(window, QStandardPaths::DownloadLocation));
        EXPECT_FALSE(leadsTo(window, QStandardPaths::DesktopLocation)) << "there is none";
    });
    dialog.ShowOpen(nullptr);
    QFileDialog another;
    another.setOption(QFileDialog::DontUseNativeDialog);
    EXPECT_FALSE(leadsTo(another, QStandardPaths::DocumentsLocation)) << "other programs keep theirs";
    qputenv("HOME", home);
}

TEST_F(CommonDialogTest, CancelLeavesTheNameEmpty) {
    dialog.FileName = Native(QStringLiteral("before.mdb"));
    answers.File(QString());
    dialog.ShowOpen(nullptr);
    EXPECT_EQ(dialog.FileName, QString());
}

TEST_F(CommonDialogTest, WhatMustExistIsAskedForAgain) {
    Touch(folder.Path(QStringLiteral("book.mdb")));
    dialog.InitDir = folder.Path(QString());
    dialog.Flags = forms::cdlOFNPathMustExist | forms::cdlOFNFileMustExist;
    dialog.Filter = QStringLiteral("База данных Access (*.mdb)|*.mdb");
    answers.File(folder.Path(QStringLiteral("none.mdb")))
        .BoxStarting(Native(QStringLiteral("none.mdb")), Icon::Exclamation)
        .File(folder.Path(QStringLiteral("nofolder/book.mdb")))
        .BoxStarting(Native(QStringLiteral("nofolder/book.mdb")), Icon::Exclamation)
        .File(folder.Path(QStringLiteral("book.mdb")));
    dialog.ShowOpen(nullptr);
    EXPECT_EQ(dialog.FileName, Native(QStringLiteral("book.mdb")));

    dialog.Flags = forms::cdlOFNPathMustExist;
    answers.File(folder.Path(QStringLiteral("nofolder/new.mdb")))
        .BoxStarting(Native(QStringLiteral("nofolder/new.mdb")), Icon::Exclamation)
        .File(folder.Path(QStringLiteral("new.mdb")));
    dialog.FileName.clear();
    dialog.ShowSave(nullptr);
    EXPECT_EQ(dialog.FileName, Native(QStringLiteral("new.mdb")));

    dialog.Flags = 0;
    answers.File(folder.Path(QStringLiteral("none.mdb")));
    dialog.ShowOpen(nullptr);
    EXPECT_EQ(dialog.FileName, Native(QStringLiteral("none.mdb"))) << "without flags nothing has to exist";
}
