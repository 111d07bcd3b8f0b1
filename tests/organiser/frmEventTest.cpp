#include "organiser/frmEvent.h"

#include "platform/forms/DTPicker.h"
#include "tests/organiser/OrganiserTest.h"

#include <QDateEdit>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {

class frmEventTest : public OrganiserTest {
protected:
    /// Shows the dialog on 14.05.2006 and lets `act` use and end it; boxes come before it or while it is
    /// used.
    static void WithDialog(int id, const std::function<void(QWidget&)>& act,
                           const std::function<void(test::Answers&)>& after = {},
                           const std::function<void(test::Answers&)>& before = {}) {
        test::Answers answers;
        if (before)
            before(answers);
        answers.Modal(QStringLiteral("frmEvent"), act);
        if (after)
            after(answers);
        General::ShowEventDialog(QStringLiteral("Событие"), QDate(2006, 5, 14), id);
    }
    static void Leave(QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); }
    static QLineEdit& Name(QWidget& dialog) { return ControlOf<QLineEdit>(dialog, "txtEventName"); }
    static QDateEdit& Date(QWidget& dialog) { return ControlOf<QDateEdit>(dialog, "dtpEventDate"); }
    static bool IsOneOff(QWidget& dialog) {
        const bool oneOff = ControlOf<QRadioButton>(dialog, "optEventPeriod_0").isChecked();
        EXPECT_NE(ControlOf<QRadioButton>(dialog, "optEventPeriod_1").isChecked(), oneOff);
        return oneOff;
    }
    QStringList Events() const {
        return Rows(QStringLiteral("SELECT a03evid, a03evnm, a03evdt, a03evpr FROM a03 ORDER BY a03evid"));
    }
};

TEST_F(frmEventTest, ANewEventIsYearlyAndStoredTrimmed) {
    WithDialog(
        -1,
        [](QWidget& dialog) {
            EXPECT_EQ(Date(dialog).date(), QDate(2006, 5, 14));
            EXPECT_EQ(Name(dialog).text(), QString());
            EXPECT_EQ(Name(dialog).maxLength(), 50);
            EXPECT_FALSE(IsOneOff(dialog));
            Fill(Name(dialog), QStringLiteral("  Праздник  "));
            Press(Qt::Key_Return);
        },
        [](test::Answers& answers) {
            answers.Box(QStringLiteral("Событие успешно добавлено."), forms::Icon::Information);
        });
    EXPECT_EQ(Events(), QStringList(QStringLiteral("1|Праздник|14.05.2006|1")));
}

TEST_F(frmEventTest, ADateTypedOverFebruaryIsTakenByEnter) {
    WithDialog(
        -1,
        [](QWidget& dialog) {
            Fill(Name(dialog), QStringLiteral("Разовое"));
            Click(ControlOf<QRadioButton>(dialog, "optEventPeriod_0"), QPoint(8, 8));
            ControlOf<forms::DTPicker>(dialog, "dtpEventDate").SetValue(QDate(2005, 2, 28));
            Date(dialog).setFocus();
            Press(Qt::Key_Home);
            Type(QStringLiteral("31.12.99"));
            Press(Qt::Key_Return);
        },
        [](test::Answers& answers) {
            answers.Box(QStringLiteral("Событие успешно добавлено."), forms::Icon::Information);
        });
    EXPECT_EQ(Events(), QStringList(QStringLiteral("1|Разовое|31.12.1999|0")));
}

TEST_F(frmEventTest, ABlankNameIsRefused) {
    WithDialog(
        -1,
        [](QWidget& dialog) {
            Fill(Name(dialog), QStringLiteral("   "));
            Date(dialog).setFocus();
            Click(ControlOf<QPushButton>(dialog, "cmdSaveEvent"));
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(dialog.focusWidget(), &Name(dialog));
            Leave(dialog);
        },
        [](test::Answers& answers) {
            answers.Box(QStringLiteral("Необходимо задать поле 'Название события'"),
                        forms::Icon::Exclamation);
        });
    EXPECT_EQ(Events(), QStringList());
}

TEST_F(frmEventTest, AnApostropheEndsInTheBoxAndKeepsTheInput) {
    WithDialog(
        -1,
        [](QWidget& dialog) {
            Fill(Name(dialog), QStringLiteral("О'Нил"));
            Press(Qt::Key_Return);
            EXPECT_TRUE(dialog.isVisible());
            EXPECT_EQ(Name(dialog).text(), QStringLiteral("О'Нил"));
            Leave(dialog);
        },
        [](test::Answers& answers) {
            answers.BoxStarting(
                QStringLiteral("frmEvent функция cmdSaveEvent_Click:\r\nпроизошла ошибка №3075 "),
                forms::Icon::Critical);
        });
    EXPECT_EQ(Events(), QStringList());
}

TEST_F(frmEventTest, AnEventIsLoadedAndChanged) {
    AddEvent(QStringLiteral("Разовое"), QStringLiteral("5 декабря 2006"), 0);
    AddEvent(QStringLiteral("Прочее"), QStringLiteral("01.01.2001"), 7);
    WithDialog(2, [](QWidget& dialog) {
        EXPECT_FALSE(IsOneOff(dialog)) << "any period but 0 is yearly";
        Fill(Name(dialog), QStringLiteral("Брошенное"));
        Click(ControlOf<QPushButton>(dialog, "cmdCancelEvent"));
    });
    WithDialog(
        1,
        [](QWidget& dialog) {
            EXPECT_EQ(Date(dialog).date(), QDate(2006, 12, 5));
            EXPECT_EQ(Name(dialog).text(), QStringLiteral("Разовое"));
            EXPECT_TRUE(IsOneOff(dialog));
            Click(ControlOf<QRadioButton>(dialog, "optEventPeriod_1"), QPoint(8, 8));
            Click(ControlOf<QPushButton>(dialog, "cmdSaveEvent"));
        },
        [](test::Answers& answers) {
            answers.Box(QStringLiteral("Событие успешно обновлено."), forms::Icon::Information);
        });
    EXPECT_EQ(Events(), QStringList({QStringLiteral("1|Разовое|05.12.2006|1"),
                                     QStringLiteral("2|Прочее|01.01.2001|7")}));
}

TEST_F(frmEventTest, ANameTooLongToBeSeenStaysInTheFile) {
    Run(QStringLiteral("ALTER TABLE a03 ALTER COLUMN a03evnm LONGTEXT"));
    AddEvent(QString(100'000, u'ж'), QStringLiteral("01.01.2001"), 0);
    WithDialog(
        1, [](QWidget& dialog) { Click(ControlOf<QPushButton>(dialog, "cmdSaveEvent")); },
        [](test::Answers& answers) {
            answers.Box(QStringLiteral("Событие успешно обновлено."), forms::Icon::Information);
        });
    EXPECT_EQ(Rows(QStringLiteral("SELECT length(a03evnm) FROM a03")), QStringList{"100000"});
}

TEST_F(frmEventTest, AnEventThatIsGoneIsUpdatedWithoutEffect) {
    WithDialog(
        5,
        [](QWidget& dialog) {
            EXPECT_EQ(Date(dialog).date(), QDate(2006, 5, 14));
            EXPECT_EQ(Name(dialog).text(), QString());
            EXPECT_FALSE(IsOneOff(dialog));
            Fill(Name(dialog), QStringLiteral("Имя"));
            Press(Qt::Key_Return);
        },
        [](test::Answers& answers) {
            answers.Box(QStringLiteral("Событие успешно обновлено."), forms::Icon::Information);
        });
    EXPECT_EQ(Events(), QStringList());
}

TEST_F(frmEventTest, ADateThatTheFieldCannotTakeIsTold) {
    struct Case {
        QString date;
        QString number;
    };
    int id = 0;
    for (const Case& c : {Case{QStringLiteral("когда-то"), QStringLiteral("13 Несоответствие типа")},
                          Case{QStringLiteral("01.01.1700"), QStringLiteral("35773 ")}}) {
        AddEvent(QStringLiteral("Событие"), c.date, 0);
        WithDialog(
            ++id,
            [](QWidget& dialog) {
                EXPECT_EQ(Date(dialog).date(), QDate(2006, 5, 14));
                EXPECT_EQ(Name(dialog).text(), QString()) << "loading ends at the date";
                Leave(dialog);
            },
            {},
            [&](test::Answers& answers) {
                answers.BoxStarting(QStringLiteral("frmEvent функция Form_Load:\r\nпроизошла ошибка №") +
                                        c.number,
                                    forms::Icon::Critical);
            });
    }
}

} // namespace
