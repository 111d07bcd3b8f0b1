#include "tests/exchange/ImportMaster.h"

#include "platform/runtime/Codec1251.h"
#include "platform/runtime/System.h"
#include "tests/support/ShortLockWait.h"

#include <QElapsedTimer>
#include <QFileDialog>
#include <QRadioButton>

using forms::Icon;
using test::ImportedAll;
using test::ImportedWithErrors;

namespace {

const QString TabHead = "frmImportMasterStep1 функция tabImport_Click:";
const QString ImportHead = "frmImportMasterStep1 функция cmdImport_Click:";

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
    static QStringList Items(const test::ImportMaster& master, bool tickedAlone = false) {
        QStringList items;
        for (int i = 0; i < master.Parameters().count(); ++i) {
            const QListWidgetItem* item = master.Parameters().item(i);
            if (!tickedAlone || item->checkState() == Qt::Checked)
                items.append(item->text());
        }
        return items;
    }

    QString path = Path("in.csv");
};

TEST_F(ImportMasterTest, TheFileHasToBeKnown) {
    const test::ImportMaster master;
    const QString choose =
        "Сначала необходимо выбрать файл из которого будут импортироваться данные (шаг первый).";
    const QString missing = "Выбранного Вами файла не существует.";
    const auto& step = master.Control<QTabWidget>("tabImport");
    const std::tuple<QString, int, QString> cases[] = {
        {"   ", 1, choose}, {path, 2, missing}, {QDir::tempPath(), 2, missing}};
    for (const auto& [file, next, message] : cases) {
        master.TypeFile(file);
        test::Answers answers;
        answers.Box(message, Icon::Information);
        master.Go(next);
        EXPECT_TRUE(answers.Done()) << file.toStdString();
        EXPECT_EQ(step.currentIndex(), 0);
        EXPECT_EQ(FocusName(), "txtFile");
    }
    Write(u"Name\r\n");
    for (const QString& chosen : {path, QString()}) { // a cancelled dialog changes nothing
        test::Answers answers;
        answers.File(chosen, [](QFileDialog& dialog) {
            EXPECT_EQ(dialog.nameFilters(), QStringList{"Завелик (*.csv)"});
        });
        Click(master.Control<QPushButton>("cmdSelect"));
        EXPECT_EQ(master.Control<QLineEdit>("txtFile").text(), path);
    }
    master.Go(1);
    EXPECT_EQ(step.currentIndex(), 1);
    // A blank in front passes the test of the path, not the opening.
    master.TypeFile(u' ' + path);
    test::Answers answers;
    answers.Failure(TabHead,
                    runtime::IsPossiblePath(u' ' + path) ? runtime::FileNotFound : runtime::BadFileName);
    master.Go(2);
    EXPECT_EQ(step.currentIndex(), 2);
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
        {u"п»їFirst Name,Last Name\r\n", false, {"Last Name"}}, // a mark of UTF-8
    };
    const test::ImportMaster master;
    master.TypeFile(path);
    for (const auto& c : cases) {
        Write(c.header);
        master.Go(1);
        master.Control<QRadioButton>(c.semicolon ? "optDelimiter_1" : "optDelimiter_0").click();
        master.Go(2);
        EXPECT_EQ(Items(master), c.items);
        EXPECT_TRUE(Items(master, true).isEmpty());
    }
    Write(u"");
    master.Go(0);
    test::Answers answers;
    answers.Failure(TabHead, runtime::InputPastEnd);
    master.Go(2);
    EXPECT_TRUE(Items(master).isEmpty());
}

TEST_F(ImportMasterTest, NameAndFirstNameExcludeEachOther) {
    const auto master = Ready(u"name,Last Name,First Name,Home Phone,First Name\r\n", {});
    EXPECT_FALSE(master->Import().isEnabled());
    const struct {
        int item;
        QStringList ticked;
    } steps[] = {
        {0, {"name"}},
        {1, {"name", "Last Name"}},
        {2, {"Last Name", "First Name"}},
        {0, {"name", "Last Name"}},
        {4, {"Last Name", "First Name"}},
        {0, {"name", "Last Name", "First Name"}}, // only the first of two is found
        {0, {"Last Name", "First Name"}},
    };
    for (const auto& step : steps) {
        master->PressSpaceOn(step.item);
        EXPECT_EQ(Items(*master, true), step.ticked);
        EXPECT_TRUE(master->Import().isEnabled()) << "unticking enables it too";
    }
    const QRect row = master->Parameters().visualItemRect(master->Parameters().item(1));
    Click(*master->Parameters().viewport(), {row.left() + row.height() / 2, row.center().y()});
    EXPECT_EQ(Items(*master, true), QStringList{"First Name"}) << "by the mouse";
    for (const int step : {1, 2}) { // the list is built anew
        master->Go(step);
        EXPECT_FALSE(master->Import().isEnabled());
    }
}

TEST_F(ImportMasterTest, WhatHasToBeTicked) {
    const auto master = Ready(u"Last Name,Home Phone\r\nИванов,1\r\n", {"Home Phone"});
    Press(*master,
          "Необходимо выбрать хотя бы один из следующих параметров: first name, last name, middle name, "
          "name.",
          Icon::Exclamation);
    master->PressSpaceOn(1);
    Press(*master, "Не выбрано ни одного параметра для импорта.", Icon::Exclamation);
    EXPECT_TRUE(Cards().isEmpty());
}

/// What the import of all columns of a file makes of a book. Rows are joined by ';', cells of the book by
/// '|'.
TEST_F(ImportMasterTest, Imports) {
    const QString fifty(50, u'ы');
    const QString ones(50, u'1');
    const struct {
        const char* name;
        QString text;
        QString result;
        QString cards;
        QString phones;
        QString cardsBefore = {};
        QString phonesBefore = {};
        QString unticked = {};
    } cases[] = {
        {"columns by place, surplus cells ignored", "x,Mobile Phone,,Last Name;1,2,3,А,5;1,3,3,а",
         ImportedAll(1, 1), "1|А|||*", "1|2|3"},
        {"texts as they are, the whole name where the first one goes",
         "last name,NAME,mObIlE PhOnE; Иванов ,Анна Ивановна,8 (9)", ImportedAll(0, 1),
         "1| Иванов |Анна Ивановна||*", "1|2|8 (9)"},
        {"blanks are no name, a tab is one", "Last Name,First Name,Middle Name; ,  , ;\t,,",
         ImportedWithErrors(2, 1), "1|\t|||*", ""},
        {"numbers are replaced of the codes that the row carries",
         "Last Name,First Name,Middle Name,Mobile Phone;Иванов,Иван,Иванович,новый", ImportedAll(1, 0),
         "5|Иванов|Иван|Иванович|друг", "5|1|a1;5|2|новый;5|4|a4", "5|Иванов|Иван|Иванович|друг",
         "5|1|a1;5|2|a2;5|2|b2;5|4|a4"},
        {"without a phone column nothing changes, it counts all the same", "Last Name;Иванов",
         ImportedAll(1, 0), "5|Иванов|||друг", "5|1|a1", "5|Иванов|||друг", "5|1|a1"},
        {"the key is the three names under LIKE; NULL is like nothing; a column not ticked is not read",
         "Last Name,First Name,Home Phone,Mobile Phone;Иванов,,1,1;П*,?ё*,3,3;Петров,Петр,4,4;Пустой,,5,5;"
         "a%b_c,,6,6;a%,,7,7;Иванов ,,8,8",
         ImportedAll(3, 4),
         "1|Иванов|Иван||;2|Иванов|||;4|ПЕТРОВ|ПЁТР||;5|Пустой|NULL||;6|a%b_c|||;7|Петров|Петр||*;"
         "8|Пустой|||*;9|a%|||*;10|Иванов |||*",
         "2|1|1;4|1|3;6|1|6;7|1|4;8|1|5;9|1|7;10|1|8",
         "1|Иванов|Иван||;2|Иванов|||;4|ПЕТРОВ|ПЁТР||;5|Пустой|NULL||;6|a%b_c|||", "", "Mobile Phone"},
        {"an empty number is an error row: what is done stays, later codes are not reached",
         "Last Name,Home Phone,Mobile Phone,Business Phone;Старый,1,,3;,1,1,1", ImportedWithErrors(2, 2),
         "7|Старый|||", "7|1|1;7|3|c", "7|Старый|||", "7|1|a;7|2|b;7|3|c"},
        {"an apostrophe in a name stops at the look-up, in a number behind the card; no pattern; lengths",
         "Last Name,First Name,Home Phone;О'Нил,,1;Новый,,1'2;Старый[,нет,1;" + fifty + ",," + ones + ";" +
             fifty + "ы,,1;Старый,,9",
         ImportedWithErrors(6, 4), "7|Старый|||;8|Новый|||*;9|" + fifty + "|||*", "7|1|9;9|1|" + ones,
         "7|Старый|||"},
        {"numbers of cards end at 16 bits, also for a row that would find its card",
         "Last Name;Последний;Новый;Почти", ImportedWithErrors(3, 2), "32766|Почти|||;32767|Последний|||*",
         "", "32766|Почти|||"},
    };
    const auto rows = [](const QString& text) { return text.split(u';', Qt::SkipEmptyParts); };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const QString& row : rows(c.cardsBefore)) {
            const QStringList cells = row.split(u'|');
            AddCard(cells[0].toInt(), cells[1], cells[2] == "NULL" ? QString() : cells[2], cells[3],
                    cells[4]);
        }
        for (const QString& row : rows(c.phonesBefore)) {
            const QStringList cells = row.split(u'|');
            AddPhone(cells[0].toInt(), cells[1].toInt(), cells[2]);
        }
        QStringList ticked = c.text.section(u';', 0, 0).split(u',');
        ticked.removeOne(c.unticked);
        const auto master = Ready(QString(c.text).replace(u';', "\r\n") + "\r\n", ticked);
        Press(*master, c.result, Icon::Information);
        const QStringList cards = Rows("SELECT a01clid, a01last, a01frst, a01midl, replace(a01memo, "
                                       "'Импортирован из файла', '*') FROM a01 ORDER BY a01clid");
        EXPECT_EQ(cards.join(u';'), c.cards);
        EXPECT_EQ(Phones().join(u';'), c.phones);
        Execute("DELETE FROM a01");
        Execute("DELETE FROM a02");
    }
}

TEST_F(ImportMasterTest, ALockThatStaysIsWaitedForOnce) {
    constexpr int Rows = 100;
    constexpr std::chrono::milliseconds Wait{100};
    const QString text = "Name\r\n" + QStringLiteral("я\r\n").repeated(Rows);
    const test::ShortLockWait wait(Wait);
    const auto other = engine::DBEngine::CreateWorkspace({}, {}, {});
    engine::DBEngine::Commit();
    const auto book = other->OpenDatabase(bookPath);
    other->BeginTrans();
    book->Execute("DELETE FROM a01", engine::dbFailOnError);
    QElapsedTimer clock;
    clock.start();
    Press(*Ready(text, {"Name"}), ImportedWithErrors(Rows, Rows), Icon::Information);
    EXPECT_LT(clock.elapsed(), Rows * Wait.count() / 2);
    other->Rollback();
    Press(*Ready(text, {"Name"}), ImportedAll(Rows - 1, 1), Icon::Information);
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

} // namespace
