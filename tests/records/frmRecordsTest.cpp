#include "platform/forms/Twips.h"
#include "platform/runtime/Failure.h"
#include "tests/records/RecordsTest.h"
#include "tests/support/WindowWalk.h"

#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiSubWindow>

namespace {

constexpr auto Add = "mnuRecordsAdd";
constexpr auto Edit = "mnuRecordsEdit";
constexpr auto View = "mnuRecordsView";
constexpr auto Refresh = "mnuRecordsRefresh";

class frmRecordsTest : public RecordsTest {
protected:
    static QString Count(const std::shared_ptr<ListForm>& list) {
        return Control<QLineEdit>(list, "txtRecordsNumber").text();
    }
};

} // namespace

TEST_F(frmRecordsTest, ANewListIsBlankUntilItIsFilled) {
    AddCard(1, QStringLiteral("Иванов"));
    const auto list = OpenPair();
    EXPECT_EQ(list->Caption(), QStringLiteral("Записи"));
    EXPECT_EQ(Column(list), QStringList{QString()});
    EXPECT_EQ(Grid(list).Tag(), QStringLiteral("0"));
    EXPECT_EQ(Count(list), QString());
    QStringList header;
    for (int column = 0; column < Grid(list).Cols(); ++column)
        header += Grid(list).TextMatrix(0, column);
    EXPECT_EQ(header.join(QLatin1Char('|')), QStringLiteral("ИД|Фамилия|Имя|Отчество"));
    EXPECT_EQ(Grid(list).ColWidth(0), forms::FlexGrid::DefaultColWidth);
    EXPECT_EQ(Grid(list).ColWidth(1), 3000);
    EXPECT_EQ(Grid(list).ColWidth(2), 3000);
}

TEST_F(frmRecordsTest, AListWithoutRecordsLetsOnlyAddThrough) {
    const auto list = OpenPair();
    EXPECT_EQ(OpenCard(list, Edit), nullptr);
    EXPECT_EQ(OpenCard(list, View), nullptr);
    QTest::mouseDClick(Grid(list).viewport(), Qt::LeftButton);
    EXPECT_FALSE(IsOpen("frmEditRecords"));
    Find(Last("frmRecordsFilter"));
    EXPECT_EQ(Count(list), QStringLiteral("0"));
    EXPECT_EQ(Column(list), QStringList{QString()});
    EXPECT_EQ(OpenCard(list, Edit), nullptr);
    const auto card = OpenCard(list, Add);
    ASSERT_NE(card, nullptr);
    EXPECT_EQ(card->Caption(), QStringLiteral("Добавление новой записи"));
}

TEST_F(frmRecordsTest, RefreshOfAListThatWasNeverFilledShowsAllCardsByName) {
    AddCard(1, QStringLiteral("Ёлкин"));
    AddCard(2, QStringLiteral("яковлев"));
    AddCard(3, QStringLiteral("Жуков"), QStringLiteral("Пётр"));
    AddCard(4, QStringLiteral("Жуков"), QStringLiteral("Иван"));
    AddCard(5, QString());
    const auto list = OpenPair();
    ChooseInMenu(list, Refresh);
    EXPECT_EQ(list->CurrentSQL(), QStringLiteral("SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl"));
    EXPECT_EQ(Column(list), QStringList({"5", "1", "4", "3", "2"}));
    EXPECT_EQ(Column(list, 1).first(), QString()) << "no last name is a blank cell";
    EXPECT_EQ(Count(list), QStringLiteral("5"));
    EXPECT_EQ(Grid(list).Tag(), QStringLiteral("5"));
}

TEST_F(frmRecordsTest, RefreshKeepsTheFilterAndTouchesOneListOnly) {
    AddCard(1, QStringLiteral("Иванов"));
    AddCard(2, QStringLiteral("Петров"));
    const auto first = OpenPair();
    const auto filter = Last("frmRecordsFilter");
    Fill(filter, "txtLastName", QStringLiteral("Ив*"));
    Find(filter);
    const auto second = OpenFilledList();
    AddCard(3, QStringLiteral("Ивлев"));
    ChooseInMenu(first, Refresh);
    EXPECT_EQ(Column(first), QStringList({"1", "3"}));
    EXPECT_EQ(Column(second), QStringList({"1", "2"}));
}

TEST_F(frmRecordsTest, ACancelledFilterFreezesTheListUntilRefresh) {
    AddCard(1, QStringLiteral("Иванов"));
    const auto list = OpenFilledList();
    ChooseInMenu(list, "mnuRecordsFilter");
    const auto filter = Last("frmRecordsFilter");
    ASSERT_TRUE(IsShown(filter));
    Press(Qt::Key_Escape);
    EXPECT_FALSE(IsShown(filter));

    const auto card = OpenCard(list, Edit);
    Fill(card, "txtLastName", QStringLiteral("Петров"));
    {
        test::Answers answers;
        answers.Box(QStringLiteral("Запись успешно сохранена в базу данных."), forms::Icon::Information);
        Press(Qt::Key_Return);
    }
    EXPECT_EQ(Column(list, 1), QStringList{QStringLiteral("Иванов")});
    ChooseInMenu(list, Refresh);
    EXPECT_EQ(Column(list, 1), QStringList{QStringLiteral("Петров")});
}

TEST_F(frmRecordsTest, BehindASaveTheListStandsOnTheSameCard) {
    const QString saved = QStringLiteral("Запись успешно сохранена в базу данных.");
    for (int id = 1; id <= 100; ++id)
        AddCard(id, QStringLiteral("Иванов %1").arg(id, 3, 10, QLatin1Char('0')));
    const auto list = OpenFilledList();
    const struct {
        const char* entry;
        int row;
        QString name;
        int current;
        QString id;
    } cases[] = {
        {Edit, 2, QStringLiteral("Яковлев"), 100, QStringLiteral("2")}, // sinks to the end
        {Add, 50, QStringLiteral("Абрамов"), 1, QStringLiteral("101")},
        {Add, 1, QStringLiteral("Ёлкин"), 2, QStringLiteral("102")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name.toStdString());
        const auto card = OpenCard(list, c.entry, c.row);
        Fill(card, "txtLastName", c.name);
        {
            test::Answers answers;
            answers.Box(saved, forms::Icon::Information);
            ClickButton(card, "cmdSave");
        }
        EXPECT_EQ(Grid(list).Row(), c.current);
        EXPECT_EQ(Grid(list).TextMatrix(Grid(list).Row(), 0), c.id);
        const QRect cell = Grid(list).visualRect(Grid(list).currentIndex());
        EXPECT_TRUE(Grid(list).viewport()->rect().contains(cell.center())) << "in sight";
    }
}

TEST_F(frmRecordsTest, TheListClosesItsHiddenFilterAndLeavesCardsOpen) {
    AddCard(1, QStringLiteral("Иванов"));
    const auto list = OpenFilledList();
    ASSERT_NE(OpenCard(list, Edit), nullptr);
    FrameOf(list).close();
    EXPECT_FALSE(IsOpen("frmRecords"));
    EXPECT_FALSE(IsOpen("frmRecordsFilter"));
    EXPECT_TRUE(IsOpen("frmEditRecords"));
}

TEST_F(frmRecordsTest, ADoubleClickViewsTheCurrentRecord) {
    AddCard(7, QStringLiteral("Иванов"));
    AddCard(8, QStringLiteral("Петров"));
    const auto list = OpenFilledList();
    Grid(list).SetRow(2);
    QTest::mouseDClick(Grid(list).viewport(), Qt::LeftButton, {},
                       Grid(list).visualRect(Grid(list).currentIndex()).center());
    const auto card = Last("frmEditRecords");
    EXPECT_EQ(card->Caption(), QStringLiteral("Просмотр параметров записи"));
    EXPECT_EQ(card->Tag(), QStringLiteral("8"));
}

TEST_F(frmRecordsTest, TheResizeRuleHoldsAtEverySize) {
    struct Case {
        const char* name;
        QSize size;
        bool stretches;
    };
    const Case cases[] = {
        {"wide", {900, 500}, true}, {"narrow", {500, 400}, false}, {"low", {800, 60}, true}};
    const auto list = OpenPair();
    forms::FlexGrid& grid = Grid(list);
    auto& label = Control<QLabel>(list, "lblRecordsNumber");
    auto& number = Control<QLineEdit>(list, "txtRecordsNumber");
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const int before = grid.ColWidth(3);
        FrameOf(list).resize(c.size);
        EXPECT_GE(list->Height(), 2000 - forms::TwipsPerPixel);
        EXPECT_EQ(grid.width(), forms::ToPixels(list->Width() - 390));
        EXPECT_NEAR(grid.height(), forms::ToPixels(list->Height() - 1080), 5)
            << "a large font takes a little";
        EXPECT_EQ(grid.pos(), QPoint(8, 8));
        const int rest = list->Width() - 390 - (forms::FlexGrid::DefaultColWidth + 3000 + 3000) - 400;
        EXPECT_EQ(c.stretches, rest > 1500);
        EXPECT_EQ(grid.ColWidth(3), c.stretches ? rest : before);
        EXPECT_NEAR(number.geometry().right(), grid.geometry().right(), 1);
        EXPECT_LT(label.geometry().right(), number.x());
        EXPECT_GT(label.y(), grid.geometry().bottom());
    }
}

TEST_F(frmRecordsTest, EveryControlOfTheWindowsIsNamed) {
    AddCard(1, QStringLiteral("Иванов"));
    const auto list = OpenFilledList();
    ASSERT_NE(OpenCard(list, Edit), nullptr);
    Choose("mnuSettingsTelefonType");
    for (const char* name : {"frmRecordsFilter", "frmRecords", "frmEditRecords", "frmEditTelefonType"})
        EXPECT_EQ(test::WindowFaults(*Last(name)->Surface()), QStringList()) << name;
}

TEST_F(frmRecordsTest, AFillPast16BitsEndsInTheBoxAndLeavesTheListUsable) {
    struct Case {
        int cards;
        bool box;
        bool filled;
    };
    const Case cases[] = {{32767, false, true}, {32768, true, false}};
    const auto list = OpenPair();
    int made = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.cards);
        while (made < c.cards)
            AddCard(++made, QStringLiteral("Иванов"));
        ChooseInMenu(list, Refresh, [&](test::Answers& answers) {
            if (c.box)
                answers.Box(ErrorText(QStringLiteral("frmRecords функция FillGrid:"), runtime::Overflow,
                                      runtime::RuntimeText(runtime::Overflow)),
                            forms::Icon::Critical);
        });
        EXPECT_EQ(Grid(list).Rows(), c.cards + 1);
        EXPECT_EQ(Count(list), QString::number(c.cards));
        EXPECT_EQ(!Grid(list).TextMatrix(c.cards, 0).isEmpty(), c.filled);
    }
    Run(QStringLiteral("DELETE FROM a01 WHERE a01clid > 1"));
    ChooseInMenu(list, Refresh);
    EXPECT_EQ(Column(list), QStringList{QStringLiteral("1")});
}

TEST_F(frmRecordsTest, AWrongStatementLeavesTheGridAndFailsAgainOnRefresh) {
    AddCard(1, QStringLiteral("Иванов"));
    const auto list = OpenFilledList();
    const auto filter = Windows("frmRecordsFilter").back();
    filter->SetVisible(true);
    Fill(filter, "txtLastName", QStringLiteral("[Ив"));
    const auto expectBox = [](test::Answers& answers) {
        answers.BoxStarting(QStringLiteral("frmRecords функция FillGrid:\r\nпроизошла ошибка №93 "),
                            forms::Icon::Critical);
    };
    {
        test::Answers answers;
        expectBox(answers);
        Find(filter);
    }
    EXPECT_FALSE(IsShown(filter)) << "the filter hides all the same";
    ChooseInMenu(list, Refresh, expectBox);
    EXPECT_EQ(Column(list), QStringList{QStringLiteral("1")});
}

TEST_F(frmRecordsTest, TheExportAsksInTheMiddleOfTheScreen) {
    const auto list = OpenFilledList();
    Frame().Window()->move(0, 0);
    ChooseInMenu(list, "mnuRecordsExtractToCSV", [&](test::Answers& answers) {
        answers.File(Path() + QStringLiteral(".csv"))
            .Modal(QStringLiteral("frmSelectDelimiter"),
                   [](QWidget& dialog) {
                       const QPoint middle = dialog.screen()->availableGeometry().center();
                       EXPECT_LT((dialog.frameGeometry().center() - middle).manhattanLength(), 8);
                       QTest::keyClick(&dialog, Qt::Key_Escape);
                   })
            .Question(QStringLiteral("Вы действительно хотите прервать процесс экспорта данных в файл CSV?"),
                      true, false);
    });
}
