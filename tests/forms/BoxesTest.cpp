// Message boxes and file dialogs, answered as a user does.

#include "platform/engine/EngineError.h"
#include "platform/forms/Application.h"
#include "platform/forms/CommonDialog.h"
#include "platform/forms/MsgBox.h"
#include "tests/support/Answers.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/TestBook.h"

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

using forms::Icon;

namespace {

const QString Text = QStringLiteral("<b>Имя</b> & путь\r\nвторая строка");

class MsgBoxTest : public test::FolderTest {
protected:
    test::Answers answers;
};

} // namespace

TEST_F(MsgBoxTest, IconsButtonsAndAnswers) {
    for (const Icon icon : {Icon::Critical, Icon::Question, Icon::Exclamation, Icon::Information}) {
        answers.Box(Text, icon);
        forms::MsgBox(Text, icon);
    }
    for (const bool yes : {true, false}) {
        answers.Question(Text, yes, true)
            .Question(Text, yes, false)
            .Question(Text, yes, false, Icon::Critical);
        EXPECT_EQ(forms::AskYes(Text), yes);
        EXPECT_EQ(forms::AskNo(Text), yes);
        EXPECT_EQ(forms::AskNo(Text, Icon::Critical), yes);
    }
    QIcon::setThemeName(QStringLiteral("none"));
    for (const auto which : {QStyle::SP_MessageBoxCritical, QStyle::SP_MessageBoxQuestion,
                             QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxInformation}) {
        const QIcon drawn = QApplication::style()->standardIcon(which);
        EXPECT_EQ(drawn.pixmap(QSize(256, 256)).size(), QSize(256, 256)) << "sharp at every size";
        EXPECT_NE(drawn.pixmap(QSize(32, 32)).toImage().pixelColor(16, 16).alpha(), 0);
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
            answers.Modal(QStringLiteral("MsgBox"), [&](QWidget& box) {
                EXPECT_TRUE(box.windowFlags() & Qt::WindowCloseButtonHint);
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

/// Lets a test ask a delegate what it would draw.
struct Reader : QStyledItemDelegate {
    using QStyledItemDelegate::initStyleOption;
};

class CommonDialogTest : public test::FolderTest {
protected:
    forms::CommonDialog dialog{QStringLiteral("cdlTest")};
    test::Answers answers;
};

} // namespace

TEST_F(CommonDialogTest, SaveAddsTheExtensionAndNeverAsks) {
    test::WriteBytes(Path(QStringLiteral("old.csv")), {});
    for (const auto& [typed, result] : {std::pair("new", "new.csv"),
                                        {"new.txt", "new.txt"},
                                        {"old.csv", "old.csv"},
                                        {"old", "old.csv"},
                                        {"", ""}}) {
        dialog.InitDir = Path(QString());
        dialog.Flags = forms::cdlOFNPathMustExist;
        dialog.Filter = QStringLiteral("Файл с разделителями (*.csv)|*.csv");
        dialog.FileName = QStringLiteral("before");
        const auto full = [this](const char* name) {
            return *name ? Path(QString::fromLatin1(name)) : QString();
        };
        answers.File(full(typed), [this](QFileDialog& window) {
            EXPECT_EQ(window.objectName(), QStringLiteral("cdlTest"));
            EXPECT_EQ(window.nameFilters(), QStringList(QStringLiteral("Файл с разделителями (*.csv)")));
            EXPECT_EQ(QDir(window.directory()), QDir(Path(QString())));
            auto* buttons = window.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
            EXPECT_EQ(buttons->button(QDialogButtonBox::Save)->text().remove(u'&'),
                      QStringLiteral("Сохранить"));
        });
        dialog.ShowSave(nullptr);
        EXPECT_EQ(dialog.FileName, full(result)) << typed;
    }
}

TEST_F(CommonDialogTest, ListsFilesInRussian) {
    EXPECT_EQ(QLocale::system().toString(QDate(2006, 12, 5), QStringLiteral("MMMM")),
              QStringLiteral("декабря"))
        << "by this the dialog writes its dates, whatever the language of the system";
    EXPECT_NE(qgetenv("LC_ALL"), QByteArray("ru_RU.UTF-8"));

    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("books/old"))));
    test::WriteBytes(Path(QStringLiteral("books/my.mdb")), QByteArray(1536, 'x'));
    dialog.InitDir = Path(QStringLiteral("books"));
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
    qputenv("HOME", QFile::encodeName(Path(QString())));
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

TEST_F(CommonDialogTest, WhatMustExistIsAskedForAgain) {
    test::WriteBytes(Path(QStringLiteral("book.mdb")), {});
    constexpr int Folder = forms::cdlOFNPathMustExist;
    const struct {
        int flags;
        bool save;
        QStringList refused;
        const char* taken;
    } rows[] = {
        {Folder | forms::cdlOFNFileMustExist, false, {"none.mdb", "nofolder/book.mdb"}, "book.mdb"},
        {Folder, true, {"nofolder/new.mdb"}, "new.mdb"},
        {0, false, {}, "none.mdb"}, // without flags nothing has to exist
    };
    for (const auto& row : rows) {
        for (const QString& name : row.refused)
            answers.File(Path(name))
                .Box(Path(name) +
                         (name.contains(u'/')
                              ? QStringLiteral("\r\nТакой папки нет. Проверьте правильность пути.")
                              : QStringLiteral("\r\nФайл не найден. Проверьте правильность имени файла.")),
                     Icon::Exclamation);
        answers.File(Path(QString::fromLatin1(row.taken)));
        dialog.Flags = row.flags;
        dialog.FileName.clear();
        if (row.save)
            dialog.ShowSave(nullptr);
        else
            dialog.ShowOpen(nullptr);
        EXPECT_EQ(dialog.FileName, Path(QString::fromLatin1(row.taken)));
        EXPECT_TRUE(answers.Done());
    }
}
