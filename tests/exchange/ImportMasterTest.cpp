#include "tests/exchange/ImportMaster.h"

#include "platform/runtime/Failure.h"
#include "platform/runtime/System.h"
#include "tests/support/ShortLockWait.h"
#include "tests/support/WindowWalk.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileDialog>

using forms::Icon;
using test::ImportedAll;
using test::ImportedWithErrors;

namespace {

const QString TabHead = QStringLiteral("frmImportMasterStep1 функция tabImport_Click:");
const QString ImportHead = QStringLiteral("frmImportMasterStep1 функция cmdImport_Click:");

class ImportMasterTest : public test::ExchangeTest {
protected:
    void Write(QStringView text) const { test::WriteBytes(path, runtime::To1251(text)); }

    /// The master at its third step on a file of that text, these columns ticked.
    std::unique_ptr<test::ImportMaster> Ready(QStringView text, const QStringList& ticked) const {
        Write(text);
        auto master = std::make_unique<test::ImportMaster>();
        master->TypeFile(path);
        master->Go(2);
        master->Tick(ticked);
        return master;
    }
    /// Imports; the box comes behind it.
    static void Press(const test::ImportMaster& master, const QString& start, Icon icon = Icon::Critical) {
        test::Answers answers;
        answers.BoxStarting(start, icon, [](const QString&) {
            EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "the pointer is back before the box";
        });
        master.PressImport();
        EXPECT_TRUE(answers.Done());
        EXPECT_EQ(master.form->IsLoaded(), icon != Icon::Information);
    }

    QString path = Beside(QStringLiteral("in.csv"));
};

TEST_F(ImportMasterTest, TheFileHasToBeKnown) {
    test::ImportMaster master;
    EXPECT_EQ(master.form->Caption(), QStringLiteral("Мастер импорта телефонов"));
    EXPECT_EQ(test::WindowFaults(*master.form->Surface()), QStringList());
    const QString choose =
        "Сначала необходимо выбрать файл из которого будут импортироваться данные (шаг первый).";
    const QString missing = "Выбранного Вами файла не существует.";
    const QPair<QString, QString> cases[] = {{"", choose},
                                             {"   ", choose},
                                             {path, missing},
                                             {QFileInfo(bookPath).path(), missing},
                                             {test::MakePipe(Beside("pipe")), missing},
                                             {test::DevicePath(), missing}};
    for (const auto& [file, message] : cases) {
        for (const int step : {1, 2}) {
            master.TypeFile(file);
            test::Answers answers;
            answers.Box(message, Icon::Information);
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
    answers.Failure(TabHead,
                    runtime::IsPossiblePath(u' ' + path) ? runtime::FileNotFound : runtime::BadFileName);
    master.Go(2);
    EXPECT_EQ(master.Tabs().currentIndex(), 2);
    EXPECT_TRUE(master.Items().isEmpty());
}

TEST_F(ImportMasterTest, ChoosingTheFile) {
    Write(u"Name\r\n");
    test::ImportMaster master;
    auto& field = master.Control<QLineEdit>("txtFile");
    EXPECT_EQ(field.maxLength(), 150);
    for (const QString& chosen : {path, QString()}) { // a cancelled dialog changes nothing
        test::Answers answers;
        answers.File(chosen, [](QFileDialog& dialog) {
            EXPECT_EQ(dialog.objectName(), QStringLiteral("cdlImport"));
            EXPECT_EQ(dialog.nameFilters(), QStringList{"Завелик (*.csv)"});
        });
        QTest::mouseClick(&master.Control<QPushButton>("cmdSelect"), Qt::LeftButton);
        EXPECT_EQ(field.text(), path);
    }
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
        {u"п»їFirst Name,Last Name\r\n", false, {"Last Name"}},   // a mark of UTF-8
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
    const QString hole = Beside("hole.csv");
    const QString locked = Beside("locked.csv");
    for (const QString& file : {path, hole, locked})
        test::WriteBytes(file, {});
    QFile::resize(hole, qint64{1} << 40);
    const test::Unreadable nobody(locked);
    const QPair<QString, int> failures[] = {{path, 62}, {hole, 7}, {locked, 75}};
    for (const auto& [file, number] : failures) {
        master.Go(0);
        master.TypeFile(file);
        test::Answers answers;
        answers.Failure(TabHead, number);
        master.Go(2);
        EXPECT_TRUE(master.Items().isEmpty());
    }
}

TEST_F(ImportMasterTest, NameAndFirstNameExcludeEachOther) {
    const auto master = Ready(u"name,Last Name,First Name,Home Phone,First Name\r\n", {});
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
        step.byMouse ? master->ClickBoxOf(step.item) : master->PressSpaceOn(step.item);
        EXPECT_EQ(master->Ticked(), step.ticked);
        EXPECT_TRUE(master->Import().isEnabled()) << "unticking enables it too";
    }
    for (const int step : {1, 2}) { // the list is built anew
        master->Go(step);
        EXPECT_FALSE(master->Import().isEnabled());
    }
    EXPECT_TRUE(master->Ticked().isEmpty());
}

TEST_F(ImportMasterTest, WhatHasToBeTicked) {
    const auto master = Ready(u"Last Name,Home Phone\r\nИванов,1\r\n", {"Home Phone"});
    {
        test::Answers answers;
        answers.Box("Необходимо выбрать хотя бы один из следующих параметров: first name, last name, middle "
                    "name, name.",
                    Icon::Exclamation);
        QTest::keyClick(&master->Parameters(), Qt::Key_Return); // the default button
    }
    master->PressSpaceOn(1);
    Press(*master, "Не выбрано ни одного параметра для импорта.", Icon::Exclamation);
    EXPECT_TRUE(Cards().isEmpty());
}

/// What the import of all columns of a file makes of a book.
TEST_F(ImportMasterTest, Imports) {
    const QString fifty(50, u'ы');
    const struct {
        const char* name;
        QStringList before; ///< values of cards and of phones
        QString text;
        QString result;
        QStringList cards;
        QStringList phones;
        QStringList unticked = {};
    } cases[] = {
        {"a header alone", {}, "Name", ImportedAll(0, 0), {}, {}},
        {"columns by place, surplus cells ignored",
         {},
         "x,Mobile Phone,,Last Name;1,2,3,А,5;1,3,3,а",
         ImportedAll(1, 1),
         {"1|А|||*"},
         {"1|2|3"}},
        {"quotes mean nothing",
         {},
         "Last Name,First Name;\"Иванов, мл.\",Иван",
         ImportedAll(0, 1),
         {"1|\"Иванов| мл.\"||*"},
         {}},
        {"a column not ticked is not read",
         {},
         "Last Name,First Name,Home Phone;А,Б,1",
         ImportedAll(0, 1),
         {"1|А|||*"},
         {},
         {"First Name", "Home Phone"}},
        {"texts come as they are, and a row leaves nothing to the next",
         {},
         "last name,FIRST NAME,mObIlE PhOnE; Иванов ,Иван,8 (9);Иной,,7",
         ImportedAll(0, 2),
         {"1| Иванов |Иван||*", "2|Иной|||*"},
         {"1|2|8 (9)", "2|2|7"}},
        {"a whole name goes where the first one goes",
         {},
         "Name,Notes;Иванова Анна Сергеевна,заметка",
         ImportedAll(0, 1),
         {"1||Иванова Анна Сергеевна||*"},
         {}},
        {"blanks are no name, a tab is one",
         {},
         "Last Name,First Name,Middle Name; ,  , ;\t,,",
         ImportedWithErrors(2, 1),
         {"1|\t|||*"},
         {}},
        {"numbers are replaced of the codes that the row carries",
         {"a01 5, 'Иванов', 'Иван', 'Иванович', 'друг'", "a02 5, 1, 'a1'", "a02 5, 2, 'a2'", "a02 5, 2, 'b2'",
          "a02 5, 4, 'a4'"},
         "Last Name,First Name,Middle Name,Mobile Phone;Иванов,Иван,Иванович,новый",
         ImportedAll(1, 0),
         {"5|Иванов|Иван|Иванович|друг"},
         {"5|1|a1", "5|2|новый", "5|4|a4"}},
        {"without a phone column nothing changes, it counts all the same",
         {"a01 5, 'Иванов', '', '', 'друг'", "a02 5, 1, 'a1'"},
         "Last Name;Иванов",
         ImportedAll(1, 0),
         {"5|Иванов|||друг"},
         {"5|1|a1"}},
        {"the key is the three names under LIKE; NULL is like nothing",
         {"a01 1, 'Иванов', 'Иван', '', ''", "a01 2, 'Иванов', '', '', ''",
          "a01 3, 'Петров', 'Пётр', 'Петрович', ''", "a01 4, 'ПЕТРОВ', 'ПЁТР', 'ПЕТРОВИЧ', ''",
          "a01 5, 'Пустой', NULL, '', ''", "a01 6, 'a%b_c', '', '', ''"},
         "Last Name,First Name,Middle Name,Home Phone,Mobile Phone,Business Phone;Иванов,,,1,1,1;"
         "иВАНОВ,иван,,2,2,2;петров,пётр,петрович,3,3,3;Петров,Петр,Петрович,4,4,4;Пустой,,,5,5,5;"
         "a%b_c,,,6,6,6;a%,,,7,7,7;Иванов ,,,8,8,8",
         ImportedAll(4, 4),
         {"1|Иванов|Иван||", "2|Иванов|||", "3|Петров|Пётр|Петрович|", "4|ПЕТРОВ|ПЁТР|ПЕТРОВИЧ|",
          "5|Пустой|NULL||", "6|a%b_c|||", "7|Петров|Петр|Петрович|*", "8|Пустой|||*", "9|a%|||*",
          "10|Иванов |||*"},
         {"1|1|2", "2|1|1", "3|1|3", "6|1|6", "7|1|4", "8|1|5", "9|1|7", "10|1|8"},
         {"Mobile Phone", "Business Phone"}},
        {"a pattern finds the first",
         {"a01 3, 'Петров', 'Пётр', '', ''", "a01 4, 'ПЕТРОВ', 'ПЁТР', '', ''"},
         "Last Name,First Name,Middle Name,Home Phone;П*,?ё*,*,1",
         ImportedAll(1, 0),
         {"3|Петров|Пётр||", "4|ПЕТРОВ|ПЁТР||"},
         {"3|1|1"}},
        {"an empty number is an error row: what is done stays, later codes are not reached",
         {"a01 7, 'Старый', '', '', ''", "a02 7, 1, 'a'", "a02 7, 2, 'b'", "a02 7, 3, 'c'"},
         "Last Name,Home Phone,Mobile Phone,Business Phone;Старый,1,,3;,1,1,1;Новый,,2,3",
         ImportedWithErrors(3, 3),
         {"7|Старый|||", "8|Новый|||*"},
         {"7|1|1", "7|3|c"}},
        {"an apostrophe in a name stops at the look-up, in a number behind the card; no patterns; lengths",
         {"a01 7, 'Старый', '', '', ''"},
         "Last Name,First Name,Home Phone;О'Нил,,1;Новый,,1'2;Старый[,нет,1;нет,[я-а],2;" + fifty + ",," +
             QString(50, u'1') + ";" + fifty + "ы,,1;Длинный,," + QString(51, u'1') + ";Старый,,9",
         ImportedWithErrors(8, 6),
         {"7|Старый|||", "8|Новый|||*", "9|" + fifty + "|||*", "10|Длинный|||*"},
         {"7|1|9", "9|1|" + QString(50, u'1')}},
        {"numbers of cards end at 16 bits, also for a row that would find its card",
         {"a01 32766, 'Почти', '', '', ''"},
         "Last Name;Последний;Новый;Почти",
         ImportedWithErrors(3, 2),
         {"32766|Почти|||", "32767|Последний|||*"},
         {}},
        {"the next number, below nought too",
         {"a01 -3, 'Ниже', '', '', ''"},
         "Last Name;Новый",
         ImportedAll(0, 1),
         {"-3|Ниже|||", "-2|Новый|||*"},
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const QString& values : c.before)
            Execute((values.startsWith(u"a01") ? QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, "
                                                                "a01midl, a01memo) VALUES (%1)")
                                               : QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) "
                                                                "VALUES (%1)"))
                        .arg(values.mid(4)));
        QStringList ticked = c.text.section(u';', 0, 0).split(u',');
        ticked.removeIf([&](const QString& column) { return c.unticked.contains(column); });
        const auto master = Ready(QString(c.text).replace(u';', QStringLiteral("\r\n")) + "\r\n", ticked);
        Press(*master, c.result, Icon::Information);
        QStringList cards =
            Rows("SELECT a01clid, a01last, a01frst, a01midl, a01memo FROM a01 ORDER BY a01clid");
        EXPECT_EQ(cards.replaceInStrings("Импортирован из файла", "*"), c.cards);
        EXPECT_EQ(Phones(), c.phones);
        Execute("DELETE FROM a01");
        Execute("DELETE FROM a02");
    }
}

/// UTF-8 comes in as the bytes read in the code page; nothing but the texts suffers.
TEST_F(ImportMasterTest, Utf8) {
    const QByteArray name = QStringLiteral("Иван").toUtf8();
    test::WriteBytes(path, "Last Name,Home Phone\r\n" + name + ",1\r\n");
    test::ImportFile(path, {"Last Name", "Home Phone"}, ImportedAll(0, 1));
    EXPECT_EQ(Cards(), QStringList{"1|" + runtime::From1251(name) + "|||Импортирован из файла|NULL"});
}

TEST_F(ImportMasterTest, ALockThatStaysIsWaitedForOnce) {
    constexpr int Rows = 100;
    constexpr std::chrono::milliseconds Wait{100};
    Write(QStringLiteral("Name\r\n") + QStringLiteral("я\r\n").repeated(Rows));
    const test::ShortLockWait wait(Wait);
    const auto other = engine::DBEngine::CreateWorkspace({}, {}, {});
    engine::DBEngine::Commit();
    const auto book = other->OpenDatabase(bookPath);
    other->BeginTrans();
    book->Execute(QStringLiteral("DELETE FROM a01"), engine::dbFailOnError);
    QElapsedTimer clock;
    clock.start();
    test::ImportFile(path, {"Name"}, ImportedWithErrors(Rows, Rows));
    EXPECT_LT(clock.elapsed(), Rows * Wait.count() / 2);
    other->Rollback();
    test::ImportFile(path, {"Name"}, ImportedAll(Rows - 1, 1));
}

/// A short line stops the run, a blank one at the end too, and it can be started again: the counters add up.
TEST_F(ImportMasterTest, AStoppedRunCanBeStartedAgain) {
    const auto master = Ready(u"Last Name,Home Phone\r\nА,1\r\nБ\r\nВ,3\r\n", {"Last Name", "Home Phone"});
    Press(*master, test::ErrorStart(ImportHead, 9));
    EXPECT_TRUE(master->Import().isEnabled());
    EXPECT_EQ(Phones(), QStringList{"1|1|1"});
    Write(u"Last Name,Home Phone\r\nА,5\r\nБ,2\r\n\r\n");
    Press(*master, test::ErrorStart(ImportHead, 9));
    ASSERT_TRUE(QFile::remove(path));
    Press(*master, test::ErrorStart(ImportHead, 53));
    // With other columns it knows nothing of the numbers that it has read before.
    master->PressSpaceOn(1);
    Write(u"Last Name,Home Phone\r\nА,7\r\nВ,9\r\n");
    Press(*master, ImportedAll(2, 3), Icon::Information);
    EXPECT_EQ(Phones(), (QStringList{"1|1|5", "2|1|2"}));
}

/// The 16-bit counter of lines counts the header.
TEST_F(ImportMasterTest, Limits) {
    const auto text = QStringLiteral("Last Name\r\n") + QStringLiteral("Ц\r\n").repeated(32766);
    Press(*Ready(text, {"Last Name"}), ImportedAll(32765, 1), Icon::Information);
    const auto master = Ready(text + QStringLiteral("Последний\r\n"), {"Last Name"});
    Press(*master, test::ErrorStart(ImportHead, 6) + QStringLiteral("Переполнение"));
    EXPECT_EQ(Cards().size(), 2) << "the row itself went in";
}

} // namespace
