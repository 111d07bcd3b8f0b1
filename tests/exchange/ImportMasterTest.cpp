#include "tests/exchange/ImportMaster.h"

#include "platform/runtime/Failure.h"
#include "platform/runtime/System.h"
#include "tests/support/ShortLockWait.h"
#include "tests/support/WindowWalk.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileDialog>

namespace {

const QString Box = QStringLiteral("frmImportMasterStep1 функция %1:\r\nпроизошла ошибка №%2 ");

class ImportMasterTest : public test::ExchangeTest {
protected:
    void Write(QStringView text) const { test::WriteBytes(path, runtime::To1251(text)); }

    QString path = Beside(QStringLiteral("in.csv"));
};

TEST_F(ImportMasterTest, TheFileHasToBeKnown) {
    test::ImportMaster master;
    EXPECT_EQ(master.form->Caption(), QStringLiteral("Мастер импорта телефонов"));
    EXPECT_EQ(test::WindowFaults(*master.form->Surface()), QStringList());
    const struct {
        QString file;
        QString message;
    } cases[] = {
        {"", "Сначала необходимо выбрать файл из которого будут импортироваться данные (шаг первый)."},
        {"   ", "Сначала необходимо выбрать файл из которого будут импортироваться данные (шаг первый)."},
        {path, "Выбранного Вами файла не существует."},
        {QFileInfo(bookPath).path(), "Выбранного Вами файла не существует."},
    };
    for (const auto& c : cases) {
        for (const int step : {1, 2}) {
            master.TypeFile(c.file);
            test::Answers answers;
            answers.Box(c.message, forms::Icon::Information);
            master.Go(step);
            EXPECT_TRUE(answers.Done());
            EXPECT_EQ(master.Tabs().currentIndex(), 0);
            master.Activate();
            EXPECT_EQ(QApplication::focusWidget(), &master.Control<QLineEdit>("txtFile"));
        }
    }
    Write(u"Name\r\n");
    master.TypeFile(path);
    master.Go(1);
    EXPECT_EQ(master.Tabs().currentIndex(), 1);
    // A blank in front passes the test of the path, not the opening.
    master.TypeFile(u' ' + path);
    test::Answers answers;
    const int missing = runtime::IsPossiblePath(u' ' + path) ? runtime::FileNotFound : runtime::BadFileName;
    answers.BoxStarting(Box.arg("tabImport_Click").arg(missing), forms::Icon::Critical);
    master.Go(2);
    EXPECT_EQ(master.Tabs().currentIndex(), 2);
    EXPECT_TRUE(master.Items().isEmpty());
}

TEST_F(ImportMasterTest, ChoosingTheFile) {
    Write(u"Name\r\n");
    test::ImportMaster master;
    auto& field = master.Control<QLineEdit>("txtFile");
    EXPECT_EQ(field.maxLength(), 150);
    {
        test::Answers answers;
        answers.File(path, [](QFileDialog& dialog) {
            EXPECT_EQ(dialog.objectName(), QStringLiteral("cdlImport"));
            EXPECT_EQ(dialog.nameFilters(), QStringList{"Завелик (*.csv)"});
        });
        QTest::mouseClick(&master.Control<QPushButton>("cmdSelect"), Qt::LeftButton);
    }
    EXPECT_EQ(field.text(), path);
    {
        test::Answers answers;
        answers.File({});
        QTest::mouseClick(&master.Control<QPushButton>("cmdSelect"), Qt::LeftButton);
    }
    EXPECT_EQ(field.text(), path) << "a cancelled dialog changes nothing";
    master.Activate();
    field.clearFocus();
    field.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(field.selectedText(), path);
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_FALSE(master.form->IsLoaded());
}

/// Which header cells make the list.
TEST_F(ImportMasterTest, TheHeader) {
    const struct {
        const char16_t* header;
        bool semicolon;
        QStringList items;
    } cases[] = {
        {u"First Name,Last Name,Middle Name,Name,Home Phone,Mobile Phone,Business Phone,Notes\r\n",
         false,
         {"First Name", "Last Name", "Middle Name", "Name", "Home Phone", "Mobile Phone", "Business Phone"}},
        {u"first name,E-mail,, ,NAME\r\nx", false, {"first name", "NAME"}},
        {u"Last Name ; Name;\"Name\";Home Phone;home phone", true, {"Home Phone", "home phone"}},
        {u"Last Name;Name", false, {}},
        {u"\r\nName\r\n", false, {}},
        {u"п»їFirst Name,Last Name\r\n", false, {"Last Name"}},
        {u"Last Name,Name\nИванов,Иван\n", false, {"Last Name"}}, // LF is no end of a line
    };
    test::ImportMaster master;
    master.TypeFile(path);
    for (const auto& c : cases) {
        Write(c.header);
        master.Go(1);
        master.Control<QRadioButton>(c.semicolon ? "optDelimiter_1" : "optDelimiter_0").click();
        master.Go(2);
        EXPECT_EQ(master.Items(), c.items);
        EXPECT_TRUE(master.Ticked().isEmpty());
        EXPECT_FALSE(master.Import().isEnabled());
    }
    Write(u"");
    master.Go(0);
    test::Answers answers;
    answers.BoxStarting(Box.arg("tabImport_Click").arg(62), forms::Icon::Critical);
    master.Go(2);
    EXPECT_TRUE(master.Items().isEmpty());
}

TEST_F(ImportMasterTest, NameAndFirstNameExcludeEachOther) {
    Write(u"name,Last Name,First Name,Home Phone,First Name\r\n");
    test::ImportMaster master;
    master.TypeFile(path);
    master.Go(2);
    const struct {
        int item;
        bool byMouse;
        QStringList ticked;
    } steps[] = {
        {0, true, {"name"}},
        {1, true, {"name", "Last Name"}},
        {2, true, {"Last Name", "First Name"}},
        {0, false, {"name", "Last Name"}},
        {2, false, {"Last Name", "First Name"}},
        {4, false, {"Last Name", "First Name", "First Name"}},
        {0, true, {"name", "Last Name", "First Name"}}, // only the first of two is found
        {0, true, {"Last Name", "First Name"}},
        {1, false, {"First Name"}},
    };
    for (const auto& step : steps) {
        step.byMouse ? master.ClickBoxOf(step.item) : master.PressSpaceOn(step.item);
        EXPECT_EQ(master.Ticked(), step.ticked);
        EXPECT_TRUE(master.Import().isEnabled()) << "unticking enables it too";
    }
    master.Go(1);
    EXPECT_FALSE(master.Import().isEnabled());
    master.Go(2);
    EXPECT_TRUE(master.Ticked().isEmpty()) << "the list is built anew";
    EXPECT_FALSE(master.Import().isEnabled());
}

TEST_F(ImportMasterTest, WhatHasToBeTicked) {
    Write(u"Last Name,Home Phone\r\nИванов,1\r\n");
    test::ImportMaster master;
    master.TypeFile(path);
    master.Go(2);
    master.PressSpaceOn(1);
    {
        test::Answers answers;
        answers.Box(
            "Необходимо выбрать хотя бы один из следующих параметров: first name, last name, middle name, "
            "name.",
            forms::Icon::Exclamation);
        QTest::keyClick(&master.Parameters(), Qt::Key_Return); // the default button
    }
    master.PressSpaceOn(1);
    {
        test::Answers answers;
        answers.Box("Не выбрано ни одного параметра для импорта.", forms::Icon::Exclamation);
        master.PressImport();
    }
    EXPECT_TRUE(master.form->IsLoaded());
    EXPECT_TRUE(Cards().isEmpty());
}

/// Files and what the import of all their columns makes of them.
TEST_F(ImportMasterTest, Imports) {
    const struct {
        const char* name;
        const char16_t* text;
        QStringList items;
        QString result;
        QStringList cards;
        QStringList phones;
    } cases[] = {
        {"a header alone", u"Name\r\n", {"Name"}, test::ImportedAll(0, 0), {}, {}},
        {"columns by place, surplus cells ignored",
         u"x,Mobile Phone,,Last Name\r\n1,2,3,А,5\r\n1,3,3,а\r\n",
         {"Mobile Phone", "Last Name"},
         test::ImportedAll(1, 1),
         {"А||"},
         {"1|2|3"}},
        {"an empty number is an error row, the card stays",
         u"Last Name,Home Phone,Mobile Phone\r\nА,,2\r\n,1,1\r\nБ,3,4\r\n",
         {"Last Name", "Home Phone", "Mobile Phone"},
         test::ImportedWithErrors(3, 2),
         {"А||", "Б||"},
         {"2|1|3", "2|2|4"}},
        {"quotes mean nothing",
         u"Last Name,First Name\r\n\"Иванов, мл.\",Иван\r\n",
         {"Last Name", "First Name"},
         test::ImportedAll(0, 1),
         {"\"Иванов| мл.\"|"},
         {}},
        {"a column not ticked is not read",
         u"Last Name,First Name,Home Phone\r\nА,Б,1\r\n",
         {"Last Name"},
         test::ImportedAll(0, 1),
         {"А||"},
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Write(c.text);
        test::ImportFile(path, c.items, c.result);
        EXPECT_EQ(Rows("SELECT a01last, a01frst, a01midl FROM a01 ORDER BY a01clid"), c.cards);
        EXPECT_EQ(Phones(), c.phones);
        Execute("DELETE FROM a01");
        Execute("DELETE FROM a02");
    }
}

/// UTF-8 comes in as the bytes read in the code page; nothing but the texts suffers.
TEST_F(ImportMasterTest, Utf8) {
    const QByteArray bytes = QStringLiteral("Last Name,Home Phone\r\nИван,1\r\n").toUtf8();
    test::WriteBytes(path, bytes);
    test::ImportFile(path, {"Last Name", "Home Phone"}, test::ImportedAll(0, 1));
    EXPECT_EQ(Cards(), QStringList{QStringLiteral("1|") + runtime::From1251(QStringLiteral("Иван").toUtf8()) +
                                   QStringLiteral("|||Импортирован из файла|NULL")});
    // With a mark the first column is not known.
    test::WriteBytes(path, "\xEF\xBB\xBF" + bytes);
    test::ImportMaster master;
    master.TypeFile(path);
    master.Go(2);
    EXPECT_EQ(master.Items(), QStringList{"Home Phone"});
}

TEST_F(ImportMasterTest, ALockThatStaysIsWaitedForOnce) {
    constexpr int Rows = 100;
    constexpr std::chrono::milliseconds Wait{200};
    Write(QStringLiteral("Name\r\n") + QStringLiteral("я\r\n").repeated(Rows));
    const test::ShortLockWait wait(Wait);
    const auto other = engine::DBEngine::CreateWorkspace({}, {}, {});
    engine::DBEngine::Commit();
    const auto book = other->OpenDatabase(bookPath);
    other->BeginTrans();
    book->Execute(QStringLiteral("DELETE FROM a01"), engine::dbFailOnError);
    QElapsedTimer clock;
    clock.start();
    test::ImportFile(path, {"Name"}, test::ImportedWithErrors(Rows, Rows));
    EXPECT_LT(clock.elapsed(), Rows * Wait.count() / 2);
    other->Rollback();
    test::ImportFile(path, {"Name"}, test::ImportedAll(Rows - 1, 1));
}

TEST_F(ImportMasterTest, AShortLineStopsTheRunAndItCanBeStartedAgain) {
    Write(u"Last Name,Home Phone\r\nА,1\r\nБ\r\nВ,3\r\n");
    test::ImportMaster master;
    master.TypeFile(path);
    master.Go(2);
    master.Tick({"Last Name", "Home Phone"});
    {
        test::Answers answers;
        answers.BoxStarting(Box.arg("cmdImport_Click").arg(9), forms::Icon::Critical, [](const QString&) {
            EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the pointer is back before the box";
        });
        master.PressImport();
        EXPECT_TRUE(answers.Done());
    }
    EXPECT_TRUE(master.form->IsLoaded());
    EXPECT_TRUE(master.Import().isEnabled());
    EXPECT_EQ(Phones(), QStringList{"1|1|1"});

    // The counters add to those of the first attempt; a blank line at the end is reached too.
    Write(u"Last Name,Home Phone\r\nА,5\r\nБ,2\r\n\r\n");
    {
        test::Answers answers;
        answers.BoxStarting(Box.arg("cmdImport_Click").arg(9), forms::Icon::Critical);
        master.PressImport();
    }
    Write(u"Last Name,Home Phone\r\nА,5\r\nБ,2\r\n");
    test::Answers answers;
    answers.Box(test::ImportedAll(3, 2), forms::Icon::Information);
    master.PressImport();
    EXPECT_FALSE(master.form->IsLoaded());
    EXPECT_EQ(Phones(), (QStringList{"1|1|5", "2|1|2"}));
}

TEST_F(ImportMasterTest, AFileThatHasGone) {
    Write(u"Last Name\r\nА\r\n");
    test::ImportMaster master;
    master.TypeFile(path);
    master.Go(2);
    master.Tick({"Last Name"});
    ASSERT_TRUE(QFile::remove(path));
    test::Answers answers;
    answers.BoxStarting(Box.arg("cmdImport_Click").arg(53), forms::Icon::Critical);
    master.PressImport();
    EXPECT_TRUE(master.form->IsLoaded());
}

/// The line counter counts the header.
TEST_F(ImportMasterTest, Limits) {
    QString text = QStringLiteral("Last Name\r\n");
    for (int i = 0; i < 32766; ++i)
        text += QStringLiteral("Ц\r\n");
    Write(text);
    test::ImportFile(path, {"Last Name"}, test::ImportedAll(32765, 1));

    Write(text + QStringLiteral("Последний\r\n"));
    test::ImportMaster master;
    master.TypeFile(path);
    master.Go(2);
    master.Tick({"Last Name"});
    test::Answers answers;
    answers.Box(Box.arg("cmdImport_Click").arg(6) + QStringLiteral("Переполнение"), forms::Icon::Critical);
    master.PressImport();
    EXPECT_TRUE(master.form->IsLoaded());
    EXPECT_EQ(Cards().size(), 2) << "the row itself went in";
}

} // namespace
