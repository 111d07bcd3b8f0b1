#include "platform/engine/EngineError.h"
#include "platform/engine/dao/DBEngine.h"
#include "tests/records/RecordsTest.h"
#include "tests/support/Keys.h"

#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>

namespace {

constexpr auto Card = "frmEditRecords";
constexpr auto AddEntry = "mnuRecordsAdd";
constexpr auto EditEntry = "mnuRecordsEdit";
constexpr auto ViewEntry = "mnuRecordsView";
const QString Saved = QStringLiteral("Запись успешно сохранена в базу данных.");
const QString DeleteQuestion = QStringLiteral("Вы действительно хотите удалить запись из базы данных?");
const QString Integrity = QStringLiteral("Ошибка целостности базы данных:\r\n");
const QString NoRecord = Integrity + QStringLiteral("в базе данных отсутствует запись по данному клиенту.");
const QString NoTypes = Integrity + QStringLiteral("в базе данных отсутствуют записи для типов телефонов.");
const QString CardsInFile = QStringLiteral("SELECT * FROM a01 ORDER BY a01clid");
const QString PhonesInFile =
    QStringLiteral("SELECT a02clid, a02code, a02cval FROM a02 ORDER BY a02clid, a02code");
constexpr const char* TextFields[]{"txtLastName", "txtFirstName", "txtMiddleName", "txtBith", "txtRemark"};

class frmEditRecordsTest : public RecordsTest {
protected:
    using Window = std::shared_ptr<forms::Form>;

    static QString Text(const Window& card, const char* field) {
        return Control<QLineEdit>(card, field).text();
    }
    static QStringList Texts(const Window& card) {
        QStringList texts;
        for (const char* field : TextFields)
            texts += Text(card, field);
        return texts;
    }
    static QString Number(const Window& card) { return Text(card, "txtTelefonNumber"); }
    static QListWidget& Types(const Window& card) { return Control<QListWidget>(card, "lstTelefonType"); }
    static void PickType(const Window& card, int row) {
        auto& list = Types(card);
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(row)).center());
    }
    static bool IsEnabled(const Window& card, const char* control) {
        return Control<QWidget>(card, control).isEnabled();
    }
    static void Save(const Window& card, const std::function<void(test::Answers&)>& expect) {
        test::Answers answers;
        expect(answers);
        ClickButton(card, "cmdSave");
    }
    static void ExpectSaved(test::Answers& answers) { answers.Box(Saved, forms::Icon::Information); }

    Window OpenOnly(const char* entry) { return OpenCard(OpenFilledList(), entry); }
};

} // namespace

TEST_F(frmEditRecordsTest, ACardIsWrittenByTheKeyboardAlone) {
    const auto list = OpenFilledList();
    const auto card = OpenCard(list, AddEntry);
    EXPECT_FALSE(IsEnabled(card, "cmdDelete"));
    EXPECT_EQ(Types(card).count(), 4);
    EXPECT_EQ(Types(card).currentRow(), 0);
    EXPECT_EQ(Texts(card), QStringList({"", "", "", "", ""}));

    QStringList order;
    for (const char* text : {"О'Нил", "Пётр", " Ильич ", "5 декабря 2006", "любит '"}) {
        order += FocusName();
        Type(QString::fromUtf8(text));
        Press(Qt::Key_Tab);
    }
    order += FocusName();
    EXPECT_EQ(order, QStringList({"txtLastName", "txtFirstName", "txtMiddleName", "txtBith", "txtRemark",
                                  "lstTelefonType"}));
    Press(Qt::Key_Down);
    Type(QStringLiteral(" 2-22 ")); // on the list; a blank goes on as well
    EXPECT_EQ(FocusName(), "txtTelefonNumber");
    Press(Qt::Key_Tab, Qt::ShiftModifier);
    Press(Qt::Key_Down);
    Press(Qt::Key_Tab);
    Type(QStringLiteral("3'33"));
    {
        test::Answers answers;
        ExpectSaved(answers);
        Press(Qt::Key_Return); // with the number still in the box
    }
    EXPECT_FALSE(IsOpen(Card));
    EXPECT_EQ(Rows(CardsInFile), QStringList{"1|О^Нил|Пётр| Ильич |любит ^|5 декабря 2006"});
    EXPECT_EQ(Rows(PhonesInFile), QStringList({"1|2|2-22", "1|3|3^33"}));
    EXPECT_EQ(Column(list, 1), QStringList{"О^Нил"}) << "the list refreshes";
}

TEST_F(frmEditRecordsTest, EditShowsAndWritesBackEveryField) {
    AddCard(4, QStringLiteral("Иванов"), QStringLiteral("Иван"), QString(), QStringLiteral("сосед"),
            QStringLiteral("1.2.80"));
    AddCard(5, QStringLiteral("Петров"));
    AddPhone(4, 1, QStringLiteral(" 111 "));
    AddPhone(4, 2, QStringLiteral("222"));
    AddPhone(4, 3, QStringLiteral("333"));
    AddPhone(5, 1, QStringLiteral("555"));
    for (const int unknown : {77, 0, 77}) // types of which nothing is known are not touched
        AddPhone(4, unknown, QStringLiteral(" 777 "));
    const QString foreign = QStringLiteral("SELECT * FROM a02 WHERE a02code IN (0, 77) ORDER BY a02rcid");
    const QStringList before = Rows(foreign);
    const auto card = OpenOnly(EditEntry);
    EXPECT_EQ(card->Caption(), QStringLiteral("Редактирование параметров записи"));
    EXPECT_EQ(Texts(card), QStringList({"Иванов", "Иван", "", "1.2.80", "сосед"}));
    EXPECT_EQ(Number(card), QStringLiteral("111"));
    PickType(card, 1);
    EXPECT_EQ(Number(card), QStringLiteral("222"));
    Fill(card, "txtTelefonNumber", QString()); // emptied: gone
    PickType(card, 2);
    Fill(card, "txtTelefonNumber", QStringLiteral("   ")); // blanks only: no number
    PickType(card, 3);
    Fill(card, "txtTelefonNumber", QStringLiteral(" 4 4 "));
    Fill(card, "txtRemark", QString());
    Fill(card, "txtMiddleName", QString(60, QLatin1Char('x')));
    Save(card, ExpectSaved);
    EXPECT_EQ(Rows(CardsInFile), QStringList({"4|Иванов|Иван|" + QString(50, QLatin1Char('x')) + "||1.2.80",
                                              "5|Петров|NULL|NULL|NULL|NULL"}));
    EXPECT_EQ(Rows(PhonesInFile),
              QStringList({"4|0| 777 ", "4|1|111", "4|4|4 4", "4|77| 777 ", "4|77| 777 ", "5|1|555"}));
    EXPECT_EQ(Rows(foreign), before);
}

TEST_F(frmEditRecordsTest, WhatIsSeenIsSavedWhereverTheFocusIs) {
    AddCard(1, QStringLiteral("Иванов"));
    AddPhone(1, 1, QStringLiteral("11"));
    AddPhone(1, 2, QStringLiteral("22"));
    const auto card = OpenOnly(EditEntry);
    const auto drop = [&](const char* name, const QString& text) {
        auto& field = Control<QLineEdit>(card, name);
        test::Drop(field, QPoint(1, field.height() / 2), text);
        EXPECT_FALSE(field.hasFocus());
    };
    PickType(card, 1);
    Type(QStringLiteral("495"));
    Type(QStringLiteral("-777"));
    EXPECT_EQ(Number(card), QStringLiteral("495-777")) << "typed on the list in place of what stood there";
    PickType(card, 0);
    drop("txtTelefonNumber", QStringLiteral("777-"));
    drop("txtRemark", QStringLiteral("д'Артаньян"));
    Fill(card, "txtFirstName", QStringLiteral("O'Neil"));
    QWidget otherProgram;
    otherProgram.show();
    QApplication::setActiveWindow(&otherProgram);
    test::Answers answers;
    ExpectSaved(answers);
    QTest::mouseClick(&Control<QWidget>(card, "cmdSave"), Qt::LeftButton);
    EXPECT_EQ(Rows(CardsInFile), QStringList{"1|Иванов|O^Neil||д^Артаньян|"});
    EXPECT_EQ(Rows(PhonesInFile), QStringList({"1|1|777-11", "1|2|495-777"}));
}

TEST_F(frmEditRecordsTest, WhatIsTooLongToBeSeenStaysInTheFile) {
    for (const char* column :
         {"a01 ALTER COLUMN a01last", "a01 ALTER COLUMN a01bith", "a02 ALTER COLUMN a02cval"})
        Run(QStringLiteral("ALTER TABLE ") + QString::fromLatin1(column) + QStringLiteral(" LONGTEXT"));
    const QString text(20'000, u'ж');
    AddCard(1, text, QStringLiteral("Иван"), {}, {}, text);
    AddPhone(1, 1, text);
    AddPhone(1, 2, QStringLiteral("2''2")); // a file from elsewhere
    const QString lengths =
        QStringLiteral("SELECT length(a01last), a01frst, length(a01bith), (SELECT "
                       "group_concat(a02code || ':' || length(a02cval)) FROM a02) FROM a01");
    const auto list = OpenFilledList();
    EXPECT_LT(Column(list, 1).value(0).size(), 10'000);
    Fill(OpenCard(list, EditEntry), "txtFirstName", QStringLiteral("Пётр"));
    Save(Last(Card), ExpectSaved);
    EXPECT_EQ(Rows(lengths), QStringList{"20000|Пётр|20000|1:20000,2:3"});

    const auto card = OpenCard(list, EditEntry);
    for (const char* field : {"txtLastName", "txtTelefonNumber"})
        Fill(card, field, QStringLiteral("1"));
    Save(card, ExpectSaved);
    EXPECT_EQ(Rows(lengths), QStringList{"1|Пётр|20000|1:1,2:3"}) << "what was edited is written";
}

TEST_F(frmEditRecordsTest, ViewLocksTheCardAndShowsOnlyTypesWithANumber) {
    AddCard(1, QStringLiteral("Иванов"));
    AddCard(2, QStringLiteral("Петров"));
    AddPhone(1, 4, QStringLiteral("444"));
    AddPhone(1, 2, QStringLiteral("222"));
    const auto list = OpenFilledList();
    const auto card = OpenCard(list, ViewEntry);
    EXPECT_EQ(card->Caption(), QStringLiteral("Просмотр параметров записи"));
    for (const char* field :
         {"txtLastName", "txtFirstName", "txtMiddleName", "txtBith", "txtRemark", "txtTelefonNumber"})
        EXPECT_TRUE(Control<QLineEdit>(card, field).isReadOnly()) << field;
    EXPECT_FALSE(IsEnabled(card, "cmdSave"));
    EXPECT_FALSE(IsEnabled(card, "cmdDelete"));
    ASSERT_EQ(Types(card).count(), 2);
    EXPECT_EQ(Number(card), QStringLiteral("222"));
    PickType(card, 1);
    EXPECT_EQ(Types(card).currentItem()->text(), QStringLiteral("Основной телефон"));
    EXPECT_EQ(Number(card), QStringLiteral("444"));
    Type(QStringLiteral("9")); // goes to the locked box, which does not take it
    EXPECT_EQ(Number(card), QStringLiteral("444"));
    Press(Qt::Key_Escape);

    const auto phoneless = OpenCard(list, ViewEntry, 2);
    ASSERT_NE(phoneless, nullptr);
    EXPECT_EQ(Types(phoneless).count(), 0);
    EXPECT_EQ(Number(phoneless), QString());
}

TEST_F(frmEditRecordsTest, TheBirthdayIsCheckedBeforeAnythingIsWritten) {
    AddCard(1, QStringLiteral("Иванов"));
    const auto card = OpenOnly(EditEntry);
    Fill(card, "txtLastName", QStringLiteral("Петров"));
    for (const char* text : {"31.02.2006", "вчера", " ", "12'"}) {
        Fill(card, "txtBith", QString::fromUtf8(text));
        Save(card, [](test::Answers& answers) {
            answers.Box(QStringLiteral("Не правильный формат даты."), forms::Icon::Exclamation);
        });
        EXPECT_EQ(FocusName(), "txtBith");
        EXPECT_EQ(Text(card, "txtBith"), QString::fromUtf8(text)) << "no apostrophe rule here";
    }
    EXPECT_EQ(Rows(QStringLiteral("SELECT a01last FROM a01")), QStringList{"Иванов"});
    Fill(card, "txtBith", QStringLiteral("28.2"));
    Save(card, ExpectSaved);
    EXPECT_EQ(Rows(QStringLiteral("SELECT a01last, a01bith FROM a01")), QStringList{"Петров|28.2"});
}

TEST_F(frmEditRecordsTest, ACardWithoutAnyNameIsSavedOnlyAfterYes) {
    const QString question = QStringLiteral(
        "Вы действительно хотите сохранить запись с не заполнеными полями 'Фамилия', 'Имя' и 'Отчество'?");
    const auto card = OpenOnly(AddEntry);
    Fill(card, "txtFirstName", QStringLiteral("  "));
    PickType(card, 0);
    Type(QStringLiteral("111"));
    Save(card, [&](test::Answers& answers) { answers.Question(question, false, false); });
    EXPECT_TRUE(IsOpen(Card));
    EXPECT_EQ(Rows(CardsInFile), QStringList());
    Save(card, [&](test::Answers& answers) {
        answers.Question(question, true, false);
        ExpectSaved(answers);
    });
    EXPECT_EQ(Rows(CardsInFile), QStringList{"1||  |||"});
    EXPECT_EQ(Rows(PhonesInFile), QStringList{"1|1|111"});
}

TEST_F(frmEditRecordsTest, DeleteAsksAndTakesThePhonesWithTheCard) {
    AddCard(1, QStringLiteral("Иванов"));
    AddCard(2, QStringLiteral("Петров"));
    AddPhone(1, 1, QStringLiteral("111"));
    AddPhone(2, 1, QStringLiteral("222"));
    const auto list = OpenFilledList();
    const auto card = OpenCard(list, EditEntry);
    for (const bool yes : {false, true}) {
        test::Answers answers;
        answers.Question(DeleteQuestion, yes, false);
        if (yes)
            answers.Box(QStringLiteral("Запись успешно удалена из базы данных."), forms::Icon::Information);
        ClickButton(card, "cmdDelete");
        EXPECT_EQ(IsOpen(Card), !yes);
        EXPECT_EQ(Rows(CardsInFile).size(), yes ? 1 : 2);
    }
    EXPECT_EQ(Rows(PhonesInFile), QStringList{"2|1|222"});
    EXPECT_EQ(Column(list), QStringList{"2"});

    // A record that is gone is told by save and load.
    const auto other = OpenCard(list, EditEntry);
    Run(QStringLiteral("DELETE FROM a01"));
    Run(QStringLiteral("DELETE FROM a02"));
    const auto expectNone = [](test::Answers& answers) { answers.Box(NoRecord, forms::Icon::Critical); };
    Save(other, expectNone);
    EXPECT_TRUE(other->IsLoaded());
    EXPECT_EQ(Rows(PhonesInFile), QStringList()) << "phones that belong to no card";
    other->Unload();
    for (const char* entry : {EditEntry, ViewEntry}) {
        ChooseInMenu(list, entry, expectNone);
        EXPECT_FALSE(IsOpen(Card));
    }
}

/// The card of Петров, number 2, stays open while that happens to its record.
TEST_F(frmEditRecordsTest, ACardTouchesNobodyElseUnderItsNumber) {
    const auto list = OpenFilledList();
    const auto otherProgram = [this](const std::string& sql) {
        engine::DBEngine::Commit();
        engine::DBEngine::CreateWorkspace({}, {}, {})
            ->OpenDatabase(Path())
            ->Execute(QString::fromStdString(sql), engine::dbFailOnError);
    };
    const auto set = [&](const std::string& values) {
        otherProgram("UPDATE a01 SET " + values + " WHERE a01clid = 2");
    };
    const auto change = [&](const char* name) {
        const auto other = OpenCard(list, EditEntry, 2);
        Fill(other, "txtLastName", QString::fromUtf8(name));
        Save(other, ExpectSaved);
    };
    const auto replace = [&](const char* name) {
        const auto other = OpenCard(list, EditEntry, 2);
        {
            test::Answers answers;
            answers.Question(DeleteQuestion, true, false);
            answers.BoxStarting(QStringLiteral("Запись успешно удалена"), forms::Icon::Information);
            ClickButton(other, "cmdDelete");
        }
        const auto newcomer = OpenCard(list, AddEntry);
        Fill(newcomer, "txtLastName", QString::fromUtf8(name));
        PickType(newcomer, 0);
        Type(QStringLiteral("999"));
        Save(newcomer, ExpectSaved);
    };
    const struct {
        const char* what;
        std::function<void()> happens;
        bool same;
        const char* bith = "05.12.1980";
    } cases[] = {
        {"nothing", [] {}, true},
        {"changed in another window, twice", [&] { change("Сидоров"), change("Яковлев"); }, true},
        {"deleted in another window, a new person", [&] { replace("Сидоров"); }, false},
        {"deleted in another window, a namesake", [&] { replace("Петров"); }, false},
        {"other program: another number",
         [&] { otherProgram("UPDATE a02 SET a02cval = '333' WHERE a02clid = 2"); }, true},
        {"other program: another remark", [&] { set("a01memo = 'x'"); }, true},
        {"other program: another birthday", [&] { set("a01bith = '1.2.80'"); }, true},
        {"other program: no first name, but NULL", [&] { set("a01frst = NULL, a01bith = NULL"); }, true},
        {"other program: another last name", [&] { set("a01last = 'Сидоров', a01frst = 'Ян'"); }, true},
        {"other program: another last and middle name", [&] { set("a01last = 'Сидоров', a01midl = 'Ян'"); },
         false},
        {"other program: another last name and birthday",
         [&] { set("a01last = 'Сидоров', a01bith = '1.2.80'"); }, false},
        {"other program: no name", [&] { set("a01last = '', a01midl = NULL"); }, false},
        {"no birthday, other program: a birthday", [&] { set("a01bith = '1.2.80'"); }, true, ""},
        {"no birthday, other program: another last name", [&] { set("a01last = 'Сидоров'"); }, false, ""},
        {"changed in another window, then other program",
         [&] { change("Сидоров"), set("a01midl = 'Ян', a01memo = 'x'"); }, true},
    };
    for (const auto& c : cases) {
        for (const bool saves : {true, false}) {
            SCOPED_TRACE(std::string(c.what) + (saves ? ", save" : ", delete"));
            Run(QStringLiteral("DELETE FROM a01"));
            Run(QStringLiteral("DELETE FROM a02"));
            AddCard(1, QStringLiteral("Иванов"));
            Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo, a01bith) "
                               "VALUES (2, 'Петров', '', 'д''Артаньян', '', '%1')")
                    .arg(QLatin1String(c.bith)));
            AddPhone(2, 1, QStringLiteral("222"));
            ChooseInMenu(list, "mnuRecordsRefresh");
            const auto card = OpenCard(list, EditEntry, 2);
            c.happens();
            const QStringList before = Rows(CardsInFile) + Rows(PhonesInFile);
            test::Answers answers;
            if (!saves)
                answers.Question(DeleteQuestion, true, false);
            if (!c.same)
                answers.Box(NoRecord, forms::Icon::Critical);
            else
                answers.BoxStarting(QStringLiteral("Запись успешно "), forms::Icon::Information);
            ClickButton(card, saves ? "cmdSave" : "cmdDelete");
            EXPECT_EQ(Rows(CardsInFile) + Rows(PhonesInFile) == before, !c.same);
            EXPECT_EQ(card->IsLoaded(), !c.same);
            if (card->IsLoaded())
                card->Unload();
        }
    }
}

TEST_F(frmEditRecordsTest, MissingTypesCloseTheCardOrStopTheSave) {
    AddCard(1, QStringLiteral("Иванов"));
    AddPhone(1, 1, QStringLiteral("111"));
    AddPhone(1, 2, QStringLiteral("222"));
    const auto list = OpenFilledList();
    const auto card = OpenCard(list, EditEntry);
    Fill(card, "txtLastName", QStringLiteral("Петров"));
    Run(QStringLiteral("UPDATE t01 SET t01cval = 'Сотовый' WHERE t01code = 2"));
    Save(card, [](test::Answers& answers) { answers.Box(NoTypes, forms::Icon::Critical); });
    EXPECT_TRUE(IsOpen(Card));
    EXPECT_EQ(Rows(QStringLiteral("SELECT a01last FROM a01")), QStringList{"Петров"});
    EXPECT_EQ(Rows(PhonesInFile), QStringList{"1|1|111"}) << "what came before the stop stands";
    card->Unload();

    RemoveTypes();
    for (const char* entry : {AddEntry, EditEntry}) {
        ChooseInMenu(list, entry,
                     [](test::Answers& answers) { answers.Box(NoTypes, forms::Icon::Critical); });
        EXPECT_FALSE(IsOpen(Card));
    }
    EXPECT_NE(OpenCard(list, ViewEntry), nullptr) << "a view needs no types";
}

TEST_F(frmEditRecordsTest, ACodeOutOfRangeFailsTheLoadAndLocksTheCard) {
    AddCard(1, QStringLiteral("Иванов"));
    const QString box =
        ErrorText(QStringLiteral("frmEditRecords функция Form_Activate:"), runtime::SubscriptOutOfRange,
                  runtime::RuntimeText(runtime::SubscriptOutOfRange));
    const auto list = OpenFilledList();
    for (const int code : {-1, 32000, 32001}) {
        SCOPED_TRACE(code);
        AddPhone(1, code, QStringLiteral("999"));
        const bool fails = code != 32000;
        ChooseInMenu(list, EditEntry, [&](test::Answers& answers) {
            if (fails)
                answers.Box(box, forms::Icon::Critical);
        });
        const auto card = Last(Card);
        for (const char* control : {"cmdSave", "cmdDelete", "lstTelefonType", "txtTelefonNumber"})
            EXPECT_EQ(IsEnabled(card, control), !fails) << control;
        ClickButton(card, "cmdCancel");
        EXPECT_FALSE(IsOpen(Card));
        Run(QStringLiteral("DELETE FROM a02"));
    }
}

TEST_F(frmEditRecordsTest, AFailedDeleteIsToldAndTheCardStays) {
    AddCard(1, QStringLiteral("Иванов"));
    const auto card = OpenOnly(EditEntry);
    Run(QStringLiteral("DROP TABLE a02"));
    test::Answers answers;
    answers.Question(DeleteQuestion, true, false);
    answers.BoxStarting(QStringLiteral("frmEditRecord функция cmdDelete_Click:\r\nпроизошла ошибка №3078 "),
                        forms::Icon::Critical);
    ClickButton(card, "cmdDelete");
    EXPECT_TRUE(IsOpen(Card));
}

TEST_F(frmEditRecordsTest, ComingBackKeepsTypingAndTheLastSaveWins) {
    AddCard(1, QStringLiteral("Иванов"));
    AddPhone(1, 1, QStringLiteral("111"));
    const auto list = OpenFilledList();
    const auto first = OpenCard(list, EditEntry);
    Fill(first, "txtTelefonNumber", QStringLiteral("222"));
    const auto second = OpenCard(list, EditEntry);
    Fill(second, "txtLastName", QStringLiteral("Петров"));
    Activate(first);
    EXPECT_EQ(Number(first), QStringLiteral("222"));
    EXPECT_EQ(Types(first).count(), 4) << "the data is read once";
    Save(second, ExpectSaved);
    FrameOf(list).close(); // a card outlives its list
    Save(first, ExpectSaved);
    EXPECT_EQ(Rows(QStringLiteral("SELECT a01last FROM a01")), QStringList{"Иванов"});
    EXPECT_EQ(Rows(PhonesInFile), QStringList{"1|1|222"});
}

TEST_F(frmEditRecordsTest, CancelAndTheCloseBoxDropWhatWasTyped) {
    AddCard(1, QStringLiteral("Иванов"));
    const auto list = OpenFilledList();
    for (const bool byKey : {true, false}) {
        const auto card = OpenCard(list, EditEntry);
        Fill(card, "txtLastName", QStringLiteral("Петров"));
        byKey ? Press(Qt::Key_Escape) : static_cast<void>(FrameOf(card).close());
        EXPECT_FALSE(IsOpen(Card));
    }
    EXPECT_EQ(Rows(QStringLiteral("SELECT a01last FROM a01")), QStringList{"Иванов"});
}
