#include "tests/records/RecordsTest.h"
#include "tests/support/WindowWalk.h"

#include <QLineEdit>
#include <QMainWindow>

namespace {

constexpr auto Add = "mnuRecordsAdd";
constexpr auto Edit = "mnuRecordsEdit";
constexpr auto View = "mnuRecordsView";

class frmRecordsTest : public RecordsTest {
protected:
    static QString Count(const std::shared_ptr<ListForm>& list) {
        return Control<QLineEdit>(list, "txtRecordsNumber").text();
    }
};

} // namespace

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
    ChooseInMenu(list, "mnuRecordsRefresh");
    EXPECT_EQ(list->CurrentSQL(), QStringLiteral("SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl"));
    EXPECT_EQ(Column(list), QStringList({"5", "1", "4", "3", "2"}));
    EXPECT_EQ(Column(list, 1).first(), QString()) << "no last name is a blank cell";
    EXPECT_EQ(Count(list), QStringLiteral("5"));
    EXPECT_EQ(Grid(list).Tag(), QStringLiteral("5"));
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

TEST_F(frmRecordsTest, EveryControlOfTheWindowsIsNamed) {
    AddCard(1, QStringLiteral("Иванов"));
    const auto list = OpenFilledList();
    ASSERT_NE(OpenCard(list, Edit), nullptr);
    Choose("mnuSettingsTelefonType");
    for (const char* name : {"frmRecordsFilter", "frmRecords", "frmEditRecords", "frmEditTelefonType"})
        EXPECT_EQ(test::WindowFaults(*Last(name)->Surface()), QStringList()) << name;
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
