#include "platform/forms/MonthView.h"
#include "platform/runtime/Dates.h"
#include "shared/Commands.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/WindowTest.h"

#include <QAbstractItemView>
#include <QDateEdit>
#include <QLineEdit>
#include <QTextCharFormat>
#include <QToolButton>

namespace {

const QString DeleteQuestion = "Вы действительно хотите удалить это событие?";

/// The organiser on a book of which each test writes cards and events; today is 15.05.2006.
class frmCalendarTest : public test::WindowTest {
protected:
    static void AddCard(int id, const QString& last, const QString& bith) {
        WindowTest::AddCard(id, last, "Иван", {}, {}, bith);
    }
    void Open() {
        Choose("mnuBookCalendar");
        calendar = Last("frmCalendar");
    }

    forms::MonthView& Month() { return Control<forms::MonthView>(calendar, "mnvCalendar"); }
    QAbstractItemView& Days() { return ControlOf<QAbstractItemView>(Month(), "qt_calendar_calendarview"); }
    forms::FlexGrid& Grid() { return Control<forms::FlexGrid>(calendar, "gridEvent"); }
    /// The bold days of whatever month, joined by blanks.
    QString BoldDays() {
        QStringList days;
        const auto formats = Month().dateTextFormat();
        for (auto day = formats.cbegin(); day != formats.cend(); ++day) {
            if (day->fontWeight() == QFont::Bold)
                days += QString::number(day.key().day());
        }
        return days.join(u' ');
    }
    /// The rows of the table, the hidden number first, joined by '|'.
    QStringList Listed() { return WindowTest::Listed(Grid()); }

    void ClickDay(int day, Qt::MouseButton button = Qt::LeftButton) {
        const int before = QDate(Month().yearShown(), Month().monthShown(), 1).dayOfWeek() - 1;
        const int firstRow = Days().model()->rowCount() - 6; // behind the names of the days
        const int firstColumn = Days().model()->columnCount() - 7;
        // A month that begins on the first column is shown from the second week on.
        const int place = day - 1 + (before == 0 ? 7 : before);
        const QModelIndex index = Days().model()->index(firstRow + place / 7, firstColumn + place % 7);
        ASSERT_EQ(index.data().toInt(), day);
        QTest::mouseClick(Days().viewport(), button, Qt::NoModifier, Days().visualRect(index).center());
    }

    std::shared_ptr<forms::Form> calendar;

private:
    runtime::FixedToday m_today{QDate(2006, 5, 15)};
};

TEST_F(frmCalendarTest, MarksAndListsWhatFallsOnADate) {
    AddCard(1, "Февралёв", "29.02.1980");
    AddCard(2, "Безымянный", "");
    AddCard(3, "Неизвестный", {});
    AddCard(4, "Маев", "5 мая 1950");
    AddEvent("Юбилей", "05.05.2006", 1);
    AddEvent("выезд", "05.05.2006", 0);
    AddEvent("Високосный", "29.02.2004", 1);
    const QString may = "-1|Маев Иван |День рожденья";
    const QString jubilee = "1|Юбилей|Периодическое";
    const QStringList blank{"||"};
    const struct {
        QDate date;
        const char* bold;
        QStringList listed;
    } cases[] = {
        {{2006, 5, 15}, "5", blank},                            // today, without a choice
        {{2006, 5, 5}, "5", {may, "2|выезд|Разовое", jubilee}}, // events by name, case ignored
        {{2007, 5, 5}, "5", {may, jubilee}},                    // the one-off event had its year
        {{1900, 5, 5}, "5", {may}},                             // before the birth
        {{2005, 5, 5}, "5", {may}},                             // the yearly one has not begun
        {{2008, 2, 29}, "29", {"-1|Февралёв Иван |День рожденья", "3|Високосный|Периодическое"}},
        {{2006, 2, 28}, "", blank},
        {{2006, 3, 1}, "", blank},
    };
    Open();
    EXPECT_EQ(Month().firstDayOfWeek(), Qt::Monday);
    EXPECT_EQ(Month().locale().language(), QLocale::Russian);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.date.toString(Qt::ISODate).toStdString());
        Month().setSelectedDate(c.date);
        EXPECT_EQ(BoldDays(), c.bold);
        EXPECT_EQ(Listed(), c.listed);
    }
    Choose("mnuSettingsSQLVIEW");
    Activate(calendar);
    EXPECT_EQ(Month().Value(), QDate(2006, 5, 15)) << "another child brings it back to today";
    EXPECT_EQ(BoldDays(), "5");
}

TEST_F(frmCalendarTest, ATextThatIsNoDateIsSilentInTheMonthAndToldByTheTable) {
    AddCard(1, "Маев", "05.05.1950");
    AddCard(2, "Странный", "не помню");
    AddCard(3, "Майский", "06.05.1950");
    AddEvent("Никогда", "30.02.2006", 1);
    AddEvent("Юбилей", "07.05.2006", 1);
    const QString head = "frmCalendar функция FillGrid:";
    test::Answers answers;
    answers.Failure(head, runtime::TypeMismatch);
    Open();
    EXPECT_EQ(BoldDays(), "5 6 7");
    answers.Failure(head, runtime::TypeMismatch);
    Month().setSelectedDate(QDate(2006, 5, 5));
    EXPECT_EQ(Listed(), QStringList{"-1|Маев Иван |День рожденья"}) << "what was found so far stays";
}

TEST_F(frmCalendarTest, MouseAndKeyboardMoveTheDate) {
    AddEvent("Июньское", "30.06.2006", 0);
    Open();
    ClickDay(31);
    EXPECT_EQ(Month().Value(), QDate(2006, 5, 31));
    Click(ControlOf<QToolButton>(Month(), "qt_calendar_nextmonth"));
    EXPECT_EQ(Month().Value(), QDate(2006, 6, 30)) << "the last day of a shorter month";
    EXPECT_EQ(BoldDays(), "30");
    EXPECT_EQ(Listed(), QStringList{"1|Июньское|Разовое"});
    AddEvent("Ещё", "30.06.2006", 0);
    ClickDay(30);
    EXPECT_EQ(Listed().size(), 2) << "a click on the same day refreshes";
    AddEvent("И ещё", "30.06.2006", 0);
    ClickDay(1, Qt::RightButton);
    EXPECT_EQ(Listed().size(), 3) << "so does the other button, without a choice";
    EXPECT_EQ(Month().Value(), QDate(2006, 6, 30));

    QTest::keyClick(&Days(), Qt::Key_Right);
    EXPECT_EQ(Month().Value(), QDate(2006, 7, 1));
    EXPECT_EQ(BoldDays(), "") << "nothing outside the shown month";
}

TEST_F(frmCalendarTest, BoldDaysShowInLightAndDark) {
    AddEvent("Юбилей", "07.05.2006", 1);
    Open();
    for (const QColor& ground : {QColor(Qt::white), QColor(35, 38, 41)}) {
        QPalette palette = Month().palette();
        palette.setColor(QPalette::Base, ground);
        Month().setPalette(palette);
        const QColor ink = Month().dateTextFormat(QDate(2006, 5, 7)).foreground().color();
        EXPECT_GT(std::abs(ink.lightness() - ground.lightness()), 90);
        EXPECT_NE(ink, Month().weekdayTextFormat(Qt::Sunday).foreground().color());
    }
}

TEST_F(frmCalendarTest, EventsAreAddedChangedAndDeletedOnTheSelectedDate) {
    AddCard(1, "Маев", "31.12.1950");
    for (const char* name : {"Б", "В"})
        AddEvent(name, "31.12.2006", 1);
    // Numbers of events are no counters of 16 bits.
    Run("INSERT INTO a03 (a03evid, a03evnm, a03evdt, a03evpr) VALUES (70000, 'x', '01.01.2001', 0)");
    Run("DELETE FROM a03 WHERE a03evid = 70000");
    Open();
    const auto edit = [&](const char* entry, const QString& before, const char* after, int day) {
        ChooseInMenu(calendar, entry, [&](test::Answers& answers) {
            answers.Modal("frmEvent", [&](QWidget& dialog) {
                EXPECT_EQ(dialog.windowTitle(),
                          before.isEmpty() ? "Добавление события" : "Редактирование события");
                auto& name = ControlOf<QLineEdit>(dialog, "txtEventName");
                EXPECT_EQ(name.text(), before);
                Fill(name, after);
                ControlOf<QDateEdit>(dialog, "dtpEventDate").setDate(QDate(2006, 12, day));
                Press(Qt::Key_Return);
            });
            answers.BoxStarting("Событие успешно ", forms::Icon::Information);
        });
    };
    Month().setSelectedDate(QDate(2006, 12, 31));
    Grid().SetRow(3);
    edit("mnuCalendarAddEvent", "", "А", 31);
    EXPECT_EQ(Month().Value(), QDate(2006, 12, 31)) << "the date is kept over the dialog";
    EXPECT_EQ(Listed(), QStringList({"-1|Маев Иван |День рожденья", "70001|А|Периодическое",
                                     "1|Б|Периодическое", "2|В|Периодическое"}));
    EXPECT_EQ(Grid().Row(), 2) << "the new event";
    edit("mnuCalendarEditEvent", "А", "Я", 31);
    EXPECT_EQ(Grid().Row(), 4) << "the same event";
    edit("mnuCalendarEditEvent", "Я", "Я", 30);
    EXPECT_EQ(BoldDays(), "30 31");
    Grid().SetRow(1);
    for (const char* entry : {"mnuCalendarRemoveEvent", "mnuCalendarEditEvent"})
        ChooseInMenu(calendar, entry); // nothing comes on a birthday

    ClickDay(30);
    for (const bool yes : {false, true}) {
        ChooseInMenu(calendar, "mnuCalendarRemoveEvent",
                     [&](test::Answers& answers) { answers.Question(DeleteQuestion, yes, false); });
        EXPECT_EQ(Rows("SELECT * FROM a03").size(), yes ? 2 : 3);
        EXPECT_EQ(BoldDays(), yes ? "31" : "30 31");
    }
    for (const char* entry : {"mnuCalendarRemoveEvent", "mnuCalendarEditEvent"})
        ChooseInMenu(calendar, entry); // nor on the blank row
}

TEST_F(frmCalendarTest, ADeletionThatDoesNotReachTheDiskIsToldByItsRoutine) {
    AddEvent("Событие", "15.05.2006", 0);
    gDatabase->Close();
    bool fails = false; // at the commit: the statement itself syncs nothing
    const test::FaultyFiles files([&fails](test::FaultyFiles::Call call) {
        return fails && call == test::FaultyFiles::Call::Sync ? SQLITE_IOERR_FSYNC : SQLITE_OK;
    });
    gDatabase = gWorkspace->OpenDatabase(Path());
    Open();
    fails = true;
    {
        test::Answers answers;
        answers.Question(DeleteQuestion, true, false).Failure("frmCalendar функция DeleteEvent:", 3043);
        Frame().CallActive(&Commands::DeleteEvent);
    }
    fails = false;
    EXPECT_EQ(Listed(), QStringList{"1|Событие|Разовое"});
    EXPECT_EQ(Rows("SELECT a03evid FROM a03"), QStringList{"1"});
}

} // namespace
