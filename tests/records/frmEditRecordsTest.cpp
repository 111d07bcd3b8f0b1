#include "platform/engine/dao/DBEngine.h"
#include "tests/records/RecordsTest.h"
#include "tests/support/Keys.h"

#include <QMdiSubWindow>

namespace {

constexpr auto Card = "frmEditRecords";
constexpr auto AddEntry = "mnuRecordsAdd";
constexpr auto EditEntry = "mnuRecordsEdit";
constexpr auto ViewEntry = "mnuRecordsView";
const QString DeleteQuestion = "Вы действительно хотите удалить запись из базы данных?";
const QString NoRecord =
    "Ошибка целостности базы данных:\r\nв базе данных отсутствует запись по данному клиенту.";
const QString CardsInFile = "SELECT * FROM a01 ORDER BY a01clid";
const QString PhonesInFile = "SELECT a02clid, a02code, a02cval FROM a02 ORDER BY a02clid, a02code";

class frmEditRecordsTest : public RecordsTest {
protected:
    static QString Text(const Window& card, const char* field) {
        return Control<QLineEdit>(card, field).text();
    }
    static QString Number(const Window& card) { return Text(card, "txtTelefonNumber"); }
    static void Save(const Window& card, const std::function<void(test::Answers&)>& expect) {
        test::Answers answers;
        expect(answers);
        ClickButton(card, "cmdSave");
    }
    static void ExpectSaved(test::Answers& answers) {
        answers.Box("Запись успешно сохранена в базу данных.", forms::Icon::Information);
    }
    static void ExpectNoRecord(test::Answers& answers) { answers.Box(NoRecord, forms::Icon::Critical); }

    static Window OpenOnly(const char* entry) { return OpenCard(OpenFilledList(), entry); }
};

} // namespace

TEST_F(frmEditRecordsTest, ACardIsWrittenByTheKeyboardAlone) {
    OpenOnly(AddEntry);
    for (const char* text : {"О'Нил", "Пётр", " Ильич ", "5 декабря 2006", "любит '"}) {
        Type(text);
        Press(Qt::Key_Tab);
    }
    Press(Qt::Key_Down);
    Type(" 2-22 "); // on the list; a blank goes on as well
    Press(Qt::Key_Tab, Qt::ShiftModifier);
    Press(Qt::Key_Down);
    Press(Qt::Key_Tab);
    Type("3'33");
    {
        test::Answers answers;
        ExpectSaved(answers);
        Press(Qt::Key_Return); // with the number still in the box
    }
    EXPECT_FALSE(IsOpen(Card));
    EXPECT_EQ(Rows(CardsInFile), QStringList{"1|О^Нил|Пётр| Ильич |любит ^|5 декабря 2006"});
    EXPECT_EQ(Rows(PhonesInFile), QStringList({"1|2|2-22", "1|3|3^33"}));
}

TEST_F(frmEditRecordsTest, WhatIsSeenIsSavedAndNothingElseTouched) {
    AddCard(4, "Иванов", "Иван", {}, "сосед", "1.2.80");
    AddCard(5, "Петров");
    for (const int code : {1, 2, 3})
        AddPhone(4, code, QStringLiteral(" %1 ").arg(111 * code));
    AddPhone(5, 1, "555");
    for (const int unknown : {77, 0, 77}) // types of which nothing is known
        AddPhone(4, unknown, " 777 ");
    const auto card = OpenOnly(EditEntry);
    const auto drop = [&](const char* name, const QString& text) {
        auto& field = Control<QLineEdit>(card, name);
        test::Drop(field, QPoint(1, field.height() / 2), text);
        EXPECT_FALSE(field.hasFocus());
    };
    QStringList texts;
    for (const char* field : {"txtLastName", "txtFirstName", "txtMiddleName", "txtBith", "txtRemark"})
        texts += Text(card, field);
    EXPECT_EQ(texts, QStringList({"Иванов", "Иван", "", "1.2.80", "сосед"}));
    EXPECT_EQ(Number(card), "111");
    PickType(card, 1);
    Type("495");
    Type("-777");
    EXPECT_EQ(Number(card), "495-777") << "typed on the list in place of what stood there";
    PickType(card, 2);
    Fill(card, "txtTelefonNumber", "   ");
    PickType(card, 3);
    Fill(card, "txtTelefonNumber", " 4 4 ");
    PickType(card, 0);
    drop("txtTelefonNumber", "777-");
    drop("txtRemark", "д'");
    Fill(card, "txtBith", {});
    Fill(card, "txtMiddleName", QString(60, u'x'));
    Fill(card, "txtFirstName", "O'Neil");
    QWidget otherProgram;
    otherProgram.show();
    QApplication::setActiveWindow(&otherProgram);
    test::Answers answers;
    ExpectSaved(answers);
    QTest::mouseClick(&Control(card, "cmdSave"), Qt::LeftButton);
    EXPECT_EQ(Rows(CardsInFile), QStringList({"4|Иванов|O^Neil|" + QString(50, u'x') + "|д^сосед|",
                                              "5|Петров|NULL|NULL|NULL|NULL"}));
    EXPECT_EQ(Rows(PhonesInFile), QStringList({"4|0| 777 ", "4|1|777-111", "4|2|495-777", "4|4|4 4",
                                               "4|77| 777 ", "4|77| 777 ", "5|1|555"}));
}

TEST_F(frmEditRecordsTest, WhatIsTooLongToBeSeenStaysInTheFile) {
    for (const char* column :
         {"a01 ALTER COLUMN a01last", "a01 ALTER COLUMN a01bith", "a02 ALTER COLUMN a02cval"})
        Run(QStringLiteral("ALTER TABLE %1 LONGTEXT").arg(column));
    const QString text(20'000, u'ж');
    AddCard(1, text, "Иван", {}, {}, text);
    AddPhone(1, 1, text);
    AddPhone(1, 2, "2''2"); // a file from elsewhere
    const auto card = OpenOnly(EditEntry);
    Fill(card, "txtFirstName", "Пётр");
    Save(card, ExpectSaved);
    EXPECT_EQ(Rows("SELECT length(a01last), a01frst, length(a01bith) FROM a01"),
              QStringList{"20000|Пётр|20000"});
    EXPECT_EQ(Rows("SELECT a02code, length(a02cval) FROM a02 ORDER BY a02code"),
              QStringList({"1|20000", "2|3"}));
}

TEST_F(frmEditRecordsTest, ViewLocksTheCardAndShowsOnlyTypesWithANumber) {
    AddCard(1, "Иванов");
    AddPhone(1, 4, "444");
    AddPhone(1, 2, "222");
    const auto list = OpenFilledList();
    const auto card = OpenCard(list, ViewEntry);
    for (const char* field :
         {"txtLastName", "txtFirstName", "txtMiddleName", "txtBith", "txtRemark", "txtTelefonNumber"})
        EXPECT_TRUE(Control<QLineEdit>(card, field).isReadOnly()) << field;
    ASSERT_EQ(Types(card).count(), 2);
    EXPECT_EQ(Number(card), "222");
    PickType(card, 1);
    EXPECT_EQ(Types(card).currentItem()->text(), "Основной телефон");
    Type("9"); // goes to the locked box, which does not take it
    EXPECT_EQ(Number(card), "444");
    Run("DELETE FROM t01");
    EXPECT_NE(OpenCard(list, ViewEntry), nullptr) << "it needs no types";
}

TEST_F(frmEditRecordsTest, BirthdayAndNamesAreCheckedBeforeAnythingIsWritten) {
    AddCard(1, "Иванов");
    const auto card = OpenOnly(EditEntry);
    for (const char* text : {"31.02.2006", " ", "12'"}) {
        Fill(card, "txtBith", text);
        Save(card, [](test::Answers& answers) {
            answers.Box("Не правильный формат даты.", forms::Icon::Exclamation);
        });
        EXPECT_EQ(FocusName(), "txtBith");
        EXPECT_EQ(Text(card, "txtBith"), text) << "no apostrophe rule here";
    }
    Fill(card, "txtBith", "28.2");
    Fill(card, "txtLastName", "  ");
    for (const bool yes : {false, true}) {
        EXPECT_EQ(Rows(CardsInFile), QStringList{"1|Иванов|NULL|NULL|NULL|NULL"});
        Save(card, [&](test::Answers& answers) {
            answers.Question("Вы действительно хотите сохранить запись с не заполнеными полями 'Фамилия', "
                             "'Имя' и 'Отчество'?",
                             yes, false);
            if (yes)
                ExpectSaved(answers);
        });
    }
    EXPECT_EQ(Rows(CardsInFile), QStringList{"1|  ||||28.2"});
}

TEST_F(frmEditRecordsTest, DeleteAsksAndTakesThePhonesWithTheCard) {
    for (const int id : {1, 2}) {
        AddCard(id, "Иванов");
        AddPhone(id, 1, "111");
    }
    const auto list = OpenFilledList();
    const auto card = OpenCard(list, EditEntry);
    for (const bool yes : {false, true}) {
        test::Answers answers;
        answers.Question(DeleteQuestion, yes, false);
        if (yes)
            answers.Box("Запись успешно удалена из базы данных.", forms::Icon::Information);
        ClickButton(card, "cmdDelete");
        EXPECT_EQ(IsOpen(Card), !yes);
        EXPECT_EQ(Rows(CardsInFile).size(), yes ? 1 : 2);
    }
    EXPECT_EQ(Rows(PhonesInFile), QStringList{"2|1|111"});
    EXPECT_EQ(Column(list), QStringList{"2"});

    Run("DELETE FROM a01");
    ChooseInMenu(list, EditEntry, ExpectNoRecord);
    EXPECT_FALSE(IsOpen(Card)) << "a record that is gone";
    Run("DELETE FROM a02");
}

/// The card of Петров, number 2, stays open while that happens to its record.
TEST_F(frmEditRecordsTest, ACardTouchesNobodyElseUnderItsNumber) {
    const auto list = OpenFilledList();
    const auto add = [](const char* bith) {
        Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo, a01bith) "
                           "VALUES (2, 'Петров', '', 'д''Артаньян', '', '%1')")
                .arg(bith));
    };
    const auto set = [this](const QString& values) { // by another program
        engine::DBEngine::Commit();
        engine::DBEngine::CreateWorkspace({}, {}, {})
            ->OpenDatabase(Path())
            ->Execute("UPDATE a01 SET " + values + " WHERE a01clid = 2", engine::dbFailOnError);
    };
    const auto change = [&] {
        const auto other = OpenCard(list, EditEntry, 2);
        Fill(other, "txtLastName", "Сидоров");
        Save(other, ExpectSaved);
        set("a01midl = 'Ян'");
    };
    const auto replaceByNamesake = [&] {
        const auto other = OpenCard(list, EditEntry, 2);
        test::Answers answers;
        answers.Question(DeleteQuestion, true, false)
            .BoxStarting("Запись успешно удалена", forms::Icon::Information);
        ClickButton(other, "cmdDelete");
        add("05.12.1980");
    };
    const struct {
        const char* what;
        std::function<void()> happens;
        bool same;
        const char* bith = "05.12.1980";
    } cases[] = {
        {"changed in another window, then by another program", change, true},
        {"deleted in another window, a namesake", replaceByNamesake, false},
        {"NULL for no first name", [&] { set("a01frst = NULL, a01bith = NULL"); }, true},
        {"another last name", [&] { set("a01last = 'Сидоров', a01frst = 'Ян'"); }, true},
        {"two other names", [&] { set("a01last = 'Сидоров', a01midl = 'Ян'"); }, false},
        {"another last name and birthday", [&] { set("a01last = 'Сидоров', a01bith = '1.2.80'"); }, false},
        {"another last name, no birthday", [&] { set("a01last = 'Сидоров'"); }, false, ""},
    };
    for (const auto& c : cases) {
        for (const bool saves : {true, false}) {
            SCOPED_TRACE(std::string(c.what) + (saves ? ", save" : ", delete"));
            Run("DELETE FROM a01");
            AddCard(1, "Иванов");
            add(c.bith);
            ChooseInMenu(list, "mnuRecordsRefresh");
            const auto card = OpenCard(list, EditEntry, 2);
            c.happens();
            const QStringList before = Rows(CardsInFile);
            test::Answers answers;
            if (!saves)
                answers.Question(DeleteQuestion, true, false);
            if (c.same)
                answers.BoxStarting("Запись успешно ", forms::Icon::Information);
            else
                ExpectNoRecord(answers);
            ClickButton(card, saves ? "cmdSave" : "cmdDelete");
            EXPECT_EQ(Rows(CardsInFile) == before, !c.same);
            EXPECT_EQ(card->IsLoaded(), !c.same);
            card->Unload();
        }
    }
}

TEST_F(frmEditRecordsTest, WhatTheFileLacksStopsTheRoutineThatMeetsIt) {
    const auto noTypes = [](test::Answers& answers) {
        answers.Box(
            "Ошибка целостности базы данных:\r\nв базе данных отсутствуют записи для типов телефонов.",
            forms::Icon::Critical);
    };
    AddCard(1, {}, {}, "Ильич"); // one name is enough
    AddPhone(1, 1, "111");
    AddPhone(1, 2, "222");
    const auto list = OpenFilledList();
    const auto card = OpenCard(list, EditEntry);
    Run("UPDATE t01 SET t01cval = 'Сотовый' WHERE t01code = 2");
    Save(card, noTypes);
    EXPECT_EQ(Rows(PhonesInFile), QStringList{"1|1|111"}) << "what came before the stop stands";
    EXPECT_TRUE(card->IsLoaded());

    AddPhone(1, 32001, "999"); // behind the last code of all
    ChooseInMenu(list, EditEntry, [](test::Answers& answers) {
        answers.Failure("frmEditRecords функция Form_Activate:", runtime::SubscriptOutOfRange);
    });
    const auto locked = Last(Card);
    for (const char* control : {"cmdSave", "cmdDelete", "lstTelefonType", "txtTelefonNumber"})
        EXPECT_TRUE(!IsEnabled(locked, control) && IsEnabled(card, control)) << control;
    locked->Unload();

    Run("DELETE FROM t01");
    ChooseInMenu(list, EditEntry, noTypes);
    EXPECT_EQ(Windows(Card).size(), 1U);
    Run("DROP TABLE a02");
    test::Answers answers;
    answers.Question(DeleteQuestion, true, false).Failure("frmEditRecord функция cmdDelete_Click:", 3078);
    ClickButton(card, "cmdDelete");
    EXPECT_TRUE(card->IsLoaded());
}

TEST_F(frmEditRecordsTest, ComingBackKeepsTypingAndTheLastSaveWins) {
    AddCard(1, "Иванов");
    AddPhone(1, 1, "111");
    const auto list = OpenFilledList();
    const auto first = OpenCard(list, EditEntry);
    Fill(first, "txtTelefonNumber", "222");
    const auto second = OpenCard(list, EditEntry);
    Fill(second, "txtLastName", "Петров");
    Activate(first);
    EXPECT_EQ(Number(first), "222");
    EXPECT_EQ(Types(first).count(), 4) << "the data is read once";
    Save(second, ExpectSaved);
    FrameOf(list).close(); // a card outlives its list
    Save(first, ExpectSaved);
    EXPECT_EQ(Rows(CardsInFile), QStringList{"1|Иванов||||"});
    EXPECT_EQ(Rows(PhonesInFile), QStringList{"1|1|222"});
}
