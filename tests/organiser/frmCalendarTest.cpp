#include "shared/Commands.h"
#include "shared/Declaration.h"
#include "tests/organiser/OrganiserTest.h"
#include "tests/support/FaultyFiles.h"

#include <QDateEdit>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTextCharFormat>
#include <QToolButton>

namespace {

const QString BlankRow = QStringLiteral("||");

class frmCalendarTest : public OrganiserTest {};

TEST_F(frmCalendarTest, OpensOnTodayWithABlankTable) {
    Open();
    EXPECT_EQ(calendar->Caption(), QStringLiteral("Органайзер"));
    EXPECT_EQ(Month().Value(), QDate(2006, 5, 15));
    EXPECT_EQ(Month().monthShown(), 5);
    EXPECT_EQ(Month().firstDayOfWeek(), Qt::Monday);
    EXPECT_EQ(Month().locale().language(), QLocale::Russian);
    EXPECT_EQ(BoldDays(), QString());
    EXPECT_EQ(Listed(), QStringList(BlankRow));
    EXPECT_EQ(Grid().TextMatrix(0, 0), QStringLiteral("ИД события"));
    EXPECT_EQ(Grid().TextMatrix(0, 1), QStringLiteral("Название"));
    EXPECT_EQ(Grid().TextMatrix(0, 2), QStringLiteral("Событие"));
    EXPECT_EQ(Grid().ColWidth(0), 0);
    const int width = Grid().width() * 15; // 5655, more with large letters
    EXPECT_GE(width, 5655);
    EXPECT_NEAR(2 * Grid().ColWidth(1), width - 350, 16);
    EXPECT_EQ(Grid().ColWidth(2), Grid().ColWidth(1));
}

TEST_F(frmCalendarTest, MarksAndListsWhatFallsOnADate) {
    AddCard(1, QStringLiteral("Февралёв"), QStringLiteral("29.02.1980"));
    AddCard(2, QStringLiteral("Безымянный"), QString(QLatin1String("")));
    AddCard(3, QStringLiteral("Неизвестный"), QString());
    AddCard(4, QStringLiteral("Маев"), QStringLiteral("5 мая 1950"));
    AddCard(5, QStringLiteral("Последний"), QStringLiteral("31/12/2020"));
    AddCard(6, QStringLiteral("Майский"), QStringLiteral("05.05.1999"));
    AddEvent(QStringLiteral("Юбилей"), QStringLiteral("05.05.2006"), 1);
    AddEvent(QStringLiteral("выезд"), QStringLiteral("05.05.2006"), 0);
    AddEvent(QStringLiteral("Високосный"), QStringLiteral("29.02.2004"), 1);
    AddEvent(QStringLiteral("Канун"), QStringLiteral("31.12.2006"), 1);
    AddEvent(QStringLiteral("Первый"), QStringLiteral("01.12.2006"), 0);

    const QString may = QStringLiteral("-1|Маев Иван |День рожденья");
    const QString maysky = QStringLiteral("-1|Майский Иван |День рожденья");
    const QString last = QStringLiteral("-1|Последний Иван |День рожденья");
    const QString leap = QStringLiteral("-1|Февралёв Иван |День рожденья");
    const QString jubilee = QStringLiteral("1|Юбилей|Периодическое");
    const QString trip = QStringLiteral("2|выезд|Разовое");
    const QString leapEvent = QStringLiteral("3|Високосный|Периодическое");
    const QString eve = QStringLiteral("4|Канун|Периодическое");
    struct Case {
        QDate date;
        QString bold;
        QStringList listed;
    };
    const std::vector<Case> cases = {
        {{2006, 5, 5}, QStringLiteral("5"), {may, maysky, trip, jubilee}}, // events by name, case ignored
        {{2007, 5, 5}, QStringLiteral("5"), {may, maysky, jubilee}},       // the one-off event had its year
        {{2005, 5, 5}, QStringLiteral("5"), {may, maysky}},                // the yearly one has not begun
        {{1900, 5, 5}, QStringLiteral("5"), {may, maysky}},                // before the birth
        {{2006, 5, 6}, QStringLiteral("5"), {BlankRow}},
        {{2008, 2, 29}, QStringLiteral("29"), {leap, leapEvent}},
        {{2004, 2, 29}, QStringLiteral("29"), {leap, leapEvent}},
        {{2000, 2, 29}, QStringLiteral("29"), {leap}},
        {{2006, 2, 28}, QString(), {BlankRow}},
        {{2006, 3, 1}, QString(), {BlankRow}},
        {{2006, 12, 31}, QStringLiteral("1 31"), {last, eve}},
        {{2007, 12, 1}, QStringLiteral("31"), {BlankRow}},
        {{9999, 12, 31}, QStringLiteral("31"), {last, eve}},
        {{1753, 1, 1}, QString(), {BlankRow}},
    };
    Open();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.date.toString(Qt::ISODate).toStdString());
        GoTo(c.date);
        EXPECT_EQ(BoldDays(), c.bold);
        EXPECT_EQ(Listed(), c.listed);
    }
}

TEST_F(frmCalendarTest, ATextThatIsNoDateIsSilentInTheMonthAndToldByTheTable) {
    AddCard(1, QStringLiteral("Маев"), QStringLiteral("05.05.1950"));
    AddCard(2, QStringLiteral("Странный"), QStringLiteral("не помню"));
    AddCard(3, QStringLiteral("Майский"), QStringLiteral("06.05.1950"));
    AddEvent(QStringLiteral("Никогда"), QStringLiteral("30.02.2006"), 1);
    AddEvent(QStringLiteral("Юбилей"), QStringLiteral("07.05.2006"), 1);
    const QString box =
        QStringLiteral("frmCalendar функция FillGrid:\r\nпроизошла ошибка №13 Несоответствие типа");
    {
        test::Answers answers;
        answers.Box(box, forms::Icon::Critical);
        Open();
    }
    EXPECT_EQ(BoldDays(), QStringLiteral("5 6 7"));
    test::Answers answers; // a click selects and is released: the table is built twice
    answers.Box(box, forms::Icon::Critical).Box(box, forms::Icon::Critical);
    ClickDay(5);
    EXPECT_EQ(Listed(), QStringList(QStringLiteral("-1|Маев Иван |День рожденья")))
        << "what was found so far stays";
}

TEST_F(frmCalendarTest, MouseAndKeyboardMoveTheDate) {
    AddEvent(QStringLiteral("Июньское"), QStringLiteral("30.06.2006"), 0);
    AddEvent(QStringLiteral("Мартовское"), QStringLiteral("31.03.2006"), 0);
    Open();
    ClickDay(31);
    EXPECT_EQ(Month().Value(), QDate(2006, 5, 31));

    Click(ControlOf<QToolButton>(Month(), "qt_calendar_nextmonth"));
    EXPECT_EQ(Month().Value(), QDate(2006, 6, 30)) << "the last day of a shorter month";
    EXPECT_EQ(BoldDays(), QStringLiteral("30"));
    EXPECT_EQ(Listed(), QStringList(QStringLiteral("1|Июньское|Разовое")));

    PressInCalendar(Qt::Key_Right);
    EXPECT_EQ(Month().Value(), QDate(2006, 7, 1));
    EXPECT_EQ(Month().monthShown(), 7);
    EXPECT_EQ(BoldDays(), QString()) << "nothing outside the shown month";

    PressInCalendar(Qt::Key_PageUp);
    EXPECT_EQ(Month().Value(), QDate(2006, 6, 1));
    auto* months = ControlOf<QToolButton>(Month(), "qt_calendar_monthbutton").menu();
    ASSERT_NE(months, nullptr);
    months->actions().at(2)->trigger();
    EXPECT_EQ(Month().Value(), QDate(2006, 3, 1));
    EXPECT_EQ(BoldDays(), QStringLiteral("31"));
    ClickDay(31);
    AddEvent(QStringLiteral("Ещё"), QStringLiteral("31.03.2006"), 0);
    ClickDay(31);
    EXPECT_EQ(Listed().size(), 2) << "a click on the same day refreshes";
    AddEvent(QStringLiteral("И ещё"), QStringLiteral("31.03.2006"), 0);
    ClickDay(1, Qt::RightButton);
    EXPECT_EQ(Listed().size(), 3) << "so does the other button, without a choice";
    EXPECT_EQ(Month().Value(), QDate(2006, 3, 31));
}

TEST_F(frmCalendarTest, BoldDaysShowInLightAndDark) {
    AddEvent(QStringLiteral("Юбилей"), QStringLiteral("07.05.2006"), 1);
    Open();
    for (const QColor& ground : {QColor(Qt::white), QColor(35, 38, 41)}) {
        QPalette palette = Month().palette();
        palette.setColor(QPalette::Base, ground);
        Month().setPalette(palette);
        const QTextCharFormat format = Month().dateTextFormat(QDate(2006, 5, 7));
        EXPECT_EQ(format.fontWeight(), QFont::Bold);
        const QColor ink = format.foreground().color();
        EXPECT_GT(std::abs(ink.lightness() - ground.lightness()), 90);
        EXPECT_NE(ink, Month().weekdayTextFormat(Qt::Sunday).foreground().color());
    }
}

TEST_F(frmCalendarTest, EventsAreAddedChangedAndDeletedOnTheSelectedDate) {
    // Numbers of events are no counters of 16 bits.
    Run(QStringLiteral(
        "INSERT INTO a03 (a03evid, a03evnm, a03evdt, a03evpr) VALUES (70000, 'x', '01.01.2001', 0)"));
    Run(QStringLiteral("DELETE FROM a03"));
    Open();
    GoTo(QDate(2006, 12, 31));
    {
        test::Answers answers;
        answers.Menu(QStringLiteral("mnuCalendar"), QStringLiteral("mnuCalendarAddEvent"));
        answers.Modal(QStringLiteral("frmEvent"), [](QWidget& dialog) {
            EXPECT_EQ(dialog.window()->windowTitle(), QStringLiteral("Добавление события"));
            EXPECT_EQ(ControlOf<QDateEdit>(dialog, "dtpEventDate").date(), QDate(2006, 12, 31));
            Fill(ControlOf<QLineEdit>(dialog, "txtEventName"), QStringLiteral("Проводы"));
            Press(Qt::Key_Return);
        });
        answers.Box(QStringLiteral("Событие успешно добавлено."), forms::Icon::Information);
        OpenMenu(Grid());
    }
    EXPECT_EQ(Month().Value(), QDate(2006, 12, 31)) << "the date is kept over the dialog";
    EXPECT_EQ(BoldDays(), QStringLiteral("31"));
    EXPECT_EQ(Listed(), QStringList(QStringLiteral("70001|Проводы|Периодическое")));

    {
        test::Answers answers;
        answers.Menu(QStringLiteral("mnuCalendar"), QStringLiteral("mnuCalendarEditEvent"));
        answers.Modal(QStringLiteral("frmEvent"), [](QWidget& dialog) {
            EXPECT_EQ(dialog.window()->windowTitle(), QStringLiteral("Редактирование события"));
            EXPECT_EQ(ControlOf<QLineEdit>(dialog, "txtEventName").text(), QStringLiteral("Проводы"));
            ControlOf<QDateEdit>(dialog, "dtpEventDate").setDate(QDate(2006, 12, 30));
            Click(ControlOf<QPushButton>(dialog, "cmdSaveEvent"));
        });
        answers.Box(QStringLiteral("Событие успешно обновлено."), forms::Icon::Information);
        OpenMenu(Grid());
    }
    EXPECT_EQ(BoldDays(), QStringLiteral("30")) << "31 December is cleared";
    EXPECT_EQ(Listed(), QStringList(BlankRow));

    ClickDay(30);
    const QString question = QStringLiteral("Вы действительно хотите удалить это событие?");
    for (const bool yes : {false, true}) {
        test::Answers answers;
        answers.Menu(QStringLiteral("mnuCalendar"), QStringLiteral("mnuCalendarRemoveEvent"));
        answers.Question(question, yes, false);
        OpenMenu(Grid());
        EXPECT_EQ(Rows(QStringLiteral("SELECT a03evnm, a03evdt FROM a03")).size(), yes ? 0 : 1);
        EXPECT_EQ(BoldDays(), yes ? QString() : QStringLiteral("30"));
    }
    EXPECT_EQ(Month().Value(), QDate(2006, 12, 30));
}

TEST_F(frmCalendarTest, TheTableStandsOnTheSameEventOrOnTheNewOne) {
    AddCard(1, QStringLiteral("Маев"), QStringLiteral("15.05.1950"));
    for (const char* name : {"Б", "В", "Г"})
        AddEvent(QString::fromUtf8(name), QStringLiteral("15.05.2006"), 0);
    Open();
    const struct {
        int row;
        int nType;
        const char* name;
        int current;
        const char* entry;
    } cases[] = {
        {2, 0, "Я", 4, "1|Я|Разовое"}, // sinks to the end
        {4, 1, "А", 2, "4|А|Периодическое"},
    };
    for (const auto& c : cases) {
        Grid().SetRow(c.row);
        test::Answers answers;
        answers.Modal(QStringLiteral("frmEvent"), [&](QWidget& dialog) {
            Fill(ControlOf<QLineEdit>(dialog, "txtEventName"), QString::fromUtf8(c.name));
            Press(Qt::Key_Return);
        });
        answers.BoxStarting(QStringLiteral("Событие успешно "), forms::Icon::Information);
        Frame().CallActive(&Commands::EditEvent, c.nType);
        EXPECT_EQ(Grid().Row(), c.current);
        EXPECT_EQ(Listed().value(Grid().Row() - 1), QString::fromUtf8(c.entry));
    }
}

TEST_F(frmCalendarTest, BirthdaysAndTheBlankRowAreNeitherChangedNorDeleted) {
    AddCard(1, QStringLiteral("Маев"), QStringLiteral("15.05.1950"));
    Open();
    for (const int day : {15, 16}) {
        ClickDay(day);
        AddEvent(QStringLiteral("Новое"), QStringLiteral("20.05.2006"), 0);
        for (const char* entry : {"mnuCalendarRemoveEvent", "mnuCalendarEditEvent"})
            ChooseInMenu(calendar, entry);
        EXPECT_TRUE(BoldDays().contains(QStringLiteral("20"))) << "edit refreshes though it opens nothing";
    }
}

TEST_F(frmCalendarTest, AnotherChildBringsItBackToToday) {
    AddEvent(QStringLiteral("Сегодня"), QStringLiteral("15.05.2006"), 0);
    Open();
    GoTo(QDate(2006, 8, 1));
    Choose("mnuSettingsSQLVIEW");
    ASSERT_NE(Frame().ActiveForm(), calendar);
    Activate(calendar);
    EXPECT_EQ(Month().Value(), QDate(2006, 5, 15));
    EXPECT_EQ(Listed(), QStringList(QStringLiteral("1|Сегодня|Разовое")));
    EXPECT_EQ(BoldDays(), QStringLiteral("15"));
}

TEST_F(frmCalendarTest, ADeletionThatDoesNotReachTheDiskIsToldByItsRoutine) {
    AddEvent(QStringLiteral("Событие"), QStringLiteral("15.05.2006"), 0);
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
        answers.Question(QStringLiteral("Вы действительно хотите удалить это событие?"), true, false)
            .BoxStarting(QStringLiteral("frmCalendar функция DeleteEvent:\r\nпроизошла ошибка №3043 "),
                         forms::Icon::Critical);
        Frame().CallActive(&Commands::DeleteEvent);
    }
    fails = false;
    EXPECT_EQ(Listed(), QStringList(QStringLiteral("1|Событие|Разовое")));
    EXPECT_EQ(Rows(QStringLiteral("SELECT a03evid FROM a03")), QStringList(QStringLiteral("1")));
}

} // namespace
