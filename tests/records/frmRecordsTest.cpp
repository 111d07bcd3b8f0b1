#include "tests/records/RecordsTest.h"

#include <QMainWindow>

namespace {

constexpr auto Add = "mnuRecordsAdd";
constexpr auto Edit = "mnuRecordsEdit";

class frmRecordsTest : public RecordsTest {};

} // namespace

TEST_F(frmRecordsTest, AListWithoutRecordsLetsOnlyAddThrough) {
    const auto list = OpenPair();
    for (const bool filled : {false, true}) {
        if (filled)
            Find();
        EXPECT_EQ(OpenCard(list, Edit), nullptr) << filled;
        EXPECT_EQ(OpenCard(list, "mnuRecordsView"), nullptr) << filled;
        QTest::mouseDClick(Grid(list).viewport(), Qt::LeftButton);
        EXPECT_FALSE(IsOpen("frmEditRecords"));
    }
    EXPECT_EQ(OpenCard(list, Add)->Caption(), "Добавление новой записи");
}

TEST_F(frmRecordsTest, BehindASaveTheListStandsOnTheSameCard) {
    for (int id = 1; id <= 100; ++id)
        AddCard(id, QStringLiteral("Иванов %1").arg(100 + id));
    const auto list = OpenFilledList();
    const struct {
        const char* entry;
        int row;
        const char* name;
        int current;
        const char* id;
    } cases[] = {
        {Edit, 2, "Яковлев", 100, "2"}, // sinks to the end
        {Add, 50, "Абрамов", 1, "101"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto card = OpenCard(list, c.entry, c.row);
        Fill(card, "txtLastName", c.name);
        test::Answers answers;
        answers.Box("Запись успешно сохранена в базу данных.", forms::Icon::Information);
        ClickButton(card, "cmdSave");
        EXPECT_EQ(Grid(list).Row(), c.current);
        EXPECT_EQ(Column(list).value(c.current - 1), c.id);
        const QRect cell = Grid(list).visualRect(Grid(list).currentIndex());
        EXPECT_TRUE(Grid(list).viewport()->rect().contains(cell.center())) << "in sight";
    }
    Grid(list).SetRow(3);
    QTest::mouseDClick(Grid(list).viewport(), Qt::LeftButton, {},
                       Grid(list).visualRect(Grid(list).currentIndex()).center());
    EXPECT_EQ(Last("frmEditRecords")->Caption(), "Просмотр параметров записи");
    EXPECT_EQ(Last("frmEditRecords")->Tag(), Column(list).at(2));
}

TEST_F(frmRecordsTest, TheExportAsksInTheMiddleOfTheScreen) {
    const auto list = OpenFilledList();
    Frame().Window()->move(0, 0);
    ChooseInMenu(list, "mnuRecordsExtractToCSV", [&](test::Answers& answers) {
        answers.File(Path("book.csv")).Modal("frmSelectDelimiter", [](QWidget& dialog) {
            const QPoint middle = dialog.screen()->availableGeometry().center();
            EXPECT_LT((dialog.frameGeometry().center() - middle).manhattanLength(), 8);
            dialog.close();
        });
    });
}
