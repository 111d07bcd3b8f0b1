#include "records/frmRecordsFilter.h"

#include "tests/records/RecordsTest.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QTabWidget>

#include <utility>
#include <vector>

namespace {

constexpr auto Filter = "frmRecordsFilter";

class frmRecordsFilterTest : public RecordsTest {
protected:
    static bool IsTicked(const std::shared_ptr<forms::Form>& filter, const char* box) {
        return Control<QCheckBox>(filter, box).isChecked();
    }
    static QString Text(const std::shared_ptr<forms::Form>& filter, const char* field) {
        return Control<QLineEdit>(filter, field).text();
    }
    static bool IsWhite(const std::shared_ptr<forms::Form>& filter, const char* field) {
        const auto& widget = Control<QWidget>(filter, field);
        return widget.palette().color(QPalette::Base) == QColor(Qt::white);
    }
    static void ShowPage(const std::shared_ptr<forms::Form>& filter, int page) {
        Control<QTabWidget>(filter, "SSTab1").setCurrentIndex(page);
    }
    static void PickType(const std::shared_ptr<forms::Form>& filter, int row) {
        ShowPage(filter, 1);
        auto& list = Control<QListWidget>(filter, "lstTelefonType");
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(row)).center());
    }
    void ShowAgain(const std::shared_ptr<ListForm>& list) { ChooseInMenu(list, "mnuRecordsFilter"); }
};

} // namespace

TEST_F(frmRecordsFilterTest, ANameTypedAndEnterFindsTheCards) {
    AddCard(1, QStringLiteral("Иванов"));
    AddCard(2, QStringLiteral("ИВАНЦОВА"));
    AddCard(3, QStringLiteral("Петров"));
    const auto list = OpenPair();
    const auto filter = Last(Filter);
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    EXPECT_EQ(FocusName(), "txtLastName");
    Type(QStringLiteral("Ив*"));
    Press(Qt::Key_Return);
    EXPECT_FALSE(IsShown(filter));
    EXPECT_EQ(Column(list), QStringList({"1", "2"}));
    ShowAgain(list);
    EXPECT_TRUE(IsShown(filter));
    EXPECT_EQ(Text(filter, "txtLastName"), QStringLiteral("Ив*"));
    EXPECT_EQ(FocusName(), QStringLiteral("txtLastName")) << "where the user left it";
    EXPECT_TRUE(IsTicked(filter, "chkLastName"));
}

TEST_F(frmRecordsFilterTest, CriteriaAndWhatTheyFind) {
    AddCard(1, QStringLiteral("Иванов"), QStringLiteral("Иван"), QStringLiteral("Ильич"),
            QStringLiteral("сосед"), QStringLiteral("12.05.1971"));
    AddCard(2, QStringLiteral("Иванова"), QStringLiteral("Анна"), QStringLiteral(""), QStringLiteral(""),
            QStringLiteral("5 мая 1980"));
    AddCard(3, QStringLiteral("Петров"), QStringLiteral("Иван"), QString(), QStringLiteral("сосед по даче"));
    AddPhone(1, 1, QStringLiteral("111"));
    AddPhone(1, 1, QStringLiteral("112"));
    AddPhone(1, 2, QStringLiteral("113"));
    AddPhone(3, 1, QStringLiteral("113"));

    const QString order = QStringLiteral(" ORDER BY a01last, a01frst, a01midl");
    const QString join = QStringLiteral(
        "SELECT * FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = a02code");
    struct Case {
        const char* name;
        std::vector<std::pair<const char*, QString>> fields;
        int type; ///< place of the phone type picked, -1: none
        QString statement;
        QStringList found;
    };
    const Case cases[] = {
        {"nothing", {}, -1, QStringLiteral("SELECT * FROM a01"), {"1", "2", "3"}},
        {"whole last name",
         {{"txtLastName", "иванов"}},
         -1,
         QStringLiteral("SELECT * FROM a01 WHERE a01last LIKE 'иванов'"),
         {"1"}},
        {"two names",
         {{"txtLastName", "Иван*"}, {"txtFirstName", "А??а"}},
         -1,
         QStringLiteral("SELECT * FROM a01 WHERE a01last LIKE 'Иван*' AND a01frst LIKE 'А??а'"),
         {"2"}},
        {"middle name",
         {{"txtMiddleName", "*"}},
         -1,
         QStringLiteral("SELECT * FROM a01 WHERE a01midl LIKE '*'"),
         {"1", "2"}},
        {"remark and birthday",
         {{"txtRemark", "сосед*"}, {"txtBith", "*.05.*"}},
         -1,
         QStringLiteral("SELECT * FROM a01 WHERE a01memo LIKE 'сосед*' AND a01bith LIKE '*.05.*'"),
         {"1"}},
        {"phone type: one row for each phone",
         {},
         0,
         join + QStringLiteral(" AND t01cval = 'Домашний телефон'"),
         {"1", "1", "3"}},
        {"number pattern",
         {{"txtTelefonNumber", "11#"}},
         -1,
         join + QStringLiteral(" AND a02cval LIKE '11#'"),
         {"1", "1", "1", "3"}},
        {"type and number on the same row",
         {{"txtTelefonNumber", "113"}},
         0,
         join + QStringLiteral(" AND t01cval = 'Домашний телефон' AND a02cval LIKE '113'"),
         {"3"}},
        {"name within the join",
         {{"txtFirstName", "Иван"}, {"txtLastName", "Ив*"}},
         1,
         join + QStringLiteral(
                    " AND a01last LIKE 'Ив*' AND a01frst LIKE 'Иван' AND t01cval = 'Мобильный телефон'"),
         {"1"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto list = OpenPair();
        const auto filter = Last(Filter);
        for (const auto& [field, text] : c.fields) {
            ShowPage(filter, QByteArrayView(field) == "txtTelefonNumber" ? 1 : 0);
            Fill(filter, field, text);
        }
        if (c.type >= 0)
            PickType(filter, c.type);
        Find(filter);
        EXPECT_EQ(list->CurrentSQL(), c.statement + order);
        EXPECT_EQ(Column(list), c.found);
        list->Unload();
    }
}

TEST_F(frmRecordsFilterTest, TheBoxAloneDecidesAndItsColourShowsIt) {
    AddCard(1, QStringLiteral("Иванов"));
    AddCard(2, QStringLiteral(""));
    const auto list = OpenPair();
    const auto filter = Last(Filter);
    constexpr auto box = "chkLastName";
    constexpr auto field = "txtLastName";
    EXPECT_FALSE(IsWhite(filter, field));
    Fill(filter, field, QStringLiteral("Иванов"));
    EXPECT_TRUE(IsTicked(filter, box));
    EXPECT_TRUE(IsWhite(filter, field));

    ClickButton(filter, box);
    EXPECT_FALSE(IsWhite(filter, field));
    EXPECT_EQ(Text(filter, field), QStringLiteral("Иванов"));
    Find(filter);
    EXPECT_EQ(Column(list), QStringList({"2", "1"})) << "an unticked criterion does not count";

    ShowAgain(list);
    Fill(filter, field, QString());
    EXPECT_FALSE(IsTicked(filter, box)) << "emptying the field unticks";
    ClickButton(filter, box);
    Find(filter);
    EXPECT_EQ(Column(list), QStringList{"2"}) << "a ticked box over an empty field finds the empty text";
}

TEST_F(frmRecordsFilterTest, ATickedTypeWithoutASelectionFindsNothing) {
    AddCard(1, QStringLiteral("Иванов"));
    AddPhone(1, 1, QStringLiteral("111"));
    const auto list = OpenPair();
    const auto filter = Last(Filter);
    ShowPage(filter, 1);
    auto& types = Control<QListWidget>(filter, "lstTelefonType");
    EXPECT_EQ(types.count(), 4);
    types.setFocus(Qt::TabFocusReason);
    EXPECT_FALSE(IsTicked(filter, "chkTelefonType")) << "reaching the list picks nothing";
    ClickButton(filter, "chkTelefonType");
    Find(filter);
    EXPECT_EQ(Column(list), QStringList{QString()});
    EXPECT_EQ(Grid(list).Tag(), QStringLiteral("0"));
    ShowAgain(list);
    PickType(filter, 0);
    Find(filter);
    EXPECT_EQ(Column(list), QStringList{"1"});
}

TEST_F(frmRecordsFilterTest, EnterReplacesApostrophesBeforeTheSearch) {
    AddCard(1, QStringLiteral("О^Нил"));
    for (const char* field : {"txtLastName", "txtFirstName", "txtMiddleName", "txtRemark", "txtBith"}) {
        const auto list = OpenPair();
        const auto filter = Last(Filter);
        Fill(filter, field, QStringLiteral("О'*'"));
        Press(Qt::Key_Return);
        EXPECT_TRUE(list->CurrentSQL().contains(QStringLiteral("LIKE 'О^*^'"))) << field;
        EXPECT_EQ(Text(filter, field), QStringLiteral("О^*^"));
        list->Unload();
    }
}

TEST_F(frmRecordsFilterTest, AClosedFilterComesBackBlankOverTheSameList) {
    AddCard(1, QStringLiteral("Иванов"));
    AddCard(2, QStringLiteral("Петров"));
    const auto list = OpenPair();
    const auto filter = Last(Filter);
    Fill(filter, "txtLastName", QStringLiteral("Иванов"));
    FrameOf(filter).close();
    EXPECT_FALSE(IsOpen(Filter));
    ShowAgain(list);
    ASSERT_EQ(Windows(Filter).size(), 1u);
    EXPECT_EQ(Last(Filter), filter);
    EXPECT_EQ(Windows("frmRecords").size(), 1u);
    EXPECT_EQ(Text(filter, "txtLastName"), QString());
    EXPECT_EQ(Control<QListWidget>(filter, "lstTelefonType").count(), 4);
    Find(filter);
    EXPECT_EQ(Column(list), QStringList({"1", "2"}));
}

TEST_F(frmRecordsFilterTest, WithoutPhoneTypesThereIsNoList) {
    RemoveTypes();
    const auto filter = forms::Form::Create<frmRecordsFilter>();
    {
        test::Answers answers;
        answers.Box(
            QStringLiteral("Нарушена целостность базы данных: в таблице t01 типы телефонных номеров."),
            forms::Icon::Critical);
        filter->Show();
    }
    EXPECT_TRUE(IsShown(filter));
    EXPECT_EQ(filter->Tag(), QStringLiteral("0"));
    Find(filter);
    EXPECT_FALSE(filter->IsLoaded());
    EXPECT_FALSE(IsOpen("frmRecords"));
}

TEST_F(frmRecordsFilterTest, AFailedLoadIsToldAndLeavesTheFilterUnattached) {
    Run(QStringLiteral("DROP TABLE t01"));
    const auto filter = forms::Form::Create<frmRecordsFilter>();
    test::Answers answers;
    answers.BoxStarting(QStringLiteral("frmRecordsFilter функция Form_Load:\r\nпроизошла ошибка №3078 "),
                        forms::Icon::Critical);
    filter->Show();
    EXPECT_EQ(filter->Tag(), QStringLiteral("0"));
    EXPECT_FALSE(IsOpen("frmRecords"));
}
