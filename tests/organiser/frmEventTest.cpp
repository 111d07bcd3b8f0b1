#include "organiser/frmEvent.h"

#include "database/Schema.h"
#include "platform/forms/DTPicker.h"
#include "tests/organiser/OrganiserTest.h"

#include <QDateEdit>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

using forms::Icon;

namespace {

const QString Added = QStringLiteral("Событие успешно добавлено.");
const QString Updated = QStringLiteral("Событие успешно обновлено.");
const QString SaveHead = QStringLiteral("frmEvent функция cmdSaveEvent_Click:");
const QString LoadHead = QStringLiteral("frmEvent функция Form_Load:");

class frmEventTest : public OrganiserTest {
protected:
    static QLineEdit& Name(const QWidget& dialog) { return ControlOf<QLineEdit>(dialog, "txtEventName"); }
    static QDateEdit& Date(const QWidget& dialog) { return ControlOf<QDateEdit>(dialog, "dtpEventDate"); }
    static void Save(const QWidget& dialog) { Click(ControlOf<QPushButton>(dialog, "cmdSaveEvent")); }
    static void Pick(const QWidget& dialog, const char* period) {
        Click(ControlOf<QRadioButton>(dialog, period), QPoint(8, 8));
    }
    /// Date, name and whether it is yearly.
    static QString Shown(const QWidget& dialog) {
        const bool oneOff = ControlOf<QRadioButton>(dialog, "optEventPeriod_0").isChecked();
        EXPECT_NE(ControlOf<QRadioButton>(dialog, "optEventPeriod_1").isChecked(), oneOff);
        return Date(dialog).date().toString(QStringLiteral("dd.MM.yyyy|")) + Name(dialog).text() +
               (oneOff ? QStringLiteral("|0") : QStringLiteral("|1"));
    }
};

} // namespace

TEST_F(frmEventTest, EventsAreAddedAndChanged) {
    const auto fill = [](const char* name) {
        return [name](QWidget& dialog) {
            Fill(Name(dialog), QString::fromUtf8(name));
            Press(Qt::Key_Return);
        };
    };
    const QString fresh = QStringLiteral("14.05.2006||1");
    const struct {
        const char* what;
        QStringList before; ///< name, date, period
        int id;
        QString shown;
        std::function<void(QWidget&)> act;
        QString box;      ///< behind that
        QStringList left; ///< the first event in the file
        bool loads = true;
    } rows[] = {
        {"a new one is yearly and stored trimmed",
         {},
         -1,
         fresh,
         fill("  Праздник  "),
         Added,
         {"Праздник|14.05.2006|1"}},
        {"a date typed over February is taken by Enter",
         {},
         -1,
         fresh,
         [](QWidget& dialog) {
             Fill(Name(dialog), QStringLiteral("Разовое"));
             Pick(dialog, "optEventPeriod_0");
             ControlOf<forms::DTPicker>(dialog, "dtpEventDate").SetValue(QDate(2005, 2, 28));
             Date(dialog).setFocus();
             Press(Qt::Key_Home);
             Type(QStringLiteral("31.12.99"));
             Press(Qt::Key_Return);
         },
         Added,
         {"Разовое|31.12.1999|0"}},
        {"a blank name",
         {},
         -1,
         fresh,
         [](QWidget& dialog) {
             Fill(Name(dialog), QStringLiteral("   "));
             Date(dialog).setFocus();
             Save(dialog);
             EXPECT_EQ(dialog.focusWidget(), &Name(dialog));
         },
         QStringLiteral("Необходимо задать поле 'Название события'"),
         {}},
        {"an apostrophe ends in the box and keeps the input",
         {},
         -1,
         fresh,
         [&](QWidget& dialog) {
             fill("О'Нил")(dialog);
             EXPECT_EQ(Name(dialog).text(), QStringLiteral("О'Нил"));
         },
         test::ErrorStart(SaveHead, 3075),
         {}},
        {"any period but 0 is yearly; cancelled",
         {"Прочее", "01.01.2001", "7"},
         1,
         QStringLiteral("01.01.2001|Прочее|1"),
         [](QWidget& dialog) {
             Fill(Name(dialog), QStringLiteral("Брошенное"));
             Click(ControlOf<QPushButton>(dialog, "cmdCancelEvent"));
         },
         {},
         {"Прочее|01.01.2001|7"}},
        {"changed",
         {"Разовое", "5 декабря 2006", "0"},
         1,
         QStringLiteral("05.12.2006|Разовое|0"),
         [](QWidget& dialog) {
             Pick(dialog, "optEventPeriod_1");
             Save(dialog);
         },
         Updated,
         {"Разовое|05.12.2006|1"}},
        {"one that is gone is updated without effect", {}, 5, fresh, fill("Имя"), Updated, {}},
        {"loading ends at a date that is none",
         {"Событие", "когда-то", "0"},
         1,
         fresh,
         [](QWidget&) {},
         test::ErrorStart(LoadHead, 13) + QStringLiteral("Несоответствие типа"),
         {"Событие|когда-то|0"},
         false},
        {"or one that the field cannot take",
         {"Событие", "01.01.1700", "0"},
         1,
         fresh,
         [](QWidget&) {},
         test::ErrorStart(LoadHead, 35773),
         {"Событие|01.01.1700|0"},
         false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Run(QStringLiteral("DROP TABLE a03"));
        Run(schema::CreateA03());
        if (!row.before.isEmpty())
            AddEvent(row.before[0], row.before[1], row.before[2].toInt());
        const bool done = row.box == Added || row.box == Updated;
        test::Answers answers;
        const auto box = [&](bool comes) {
            if (comes && !row.box.isEmpty())
                answers.BoxStarting(row.box, done                                ? Icon::Information
                                             : row.box.startsWith(u"Необходимо") ? Icon::Exclamation
                                                                                 : Icon::Critical);
        };
        box(!row.loads);
        answers.Modal(QStringLiteral("frmEvent"), [&](QWidget& dialog) {
            EXPECT_EQ(Name(dialog).maxLength(), 50);
            EXPECT_EQ(Shown(dialog), row.shown);
            row.act(dialog);
            EXPECT_EQ(dialog.isVisible(), !done && !row.box.isEmpty());
            if (dialog.isVisible())
                QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        box(row.loads);
        General::ShowEventDialog(QStringLiteral("Событие"), QDate(2006, 5, 14), row.id);
        EXPECT_TRUE(answers.Done());
        EXPECT_EQ(Rows(QStringLiteral("SELECT a03evnm, a03evdt, a03evpr FROM a03")), row.left);
    }
}

TEST_F(frmEventTest, ANameTooLongToBeSeenStaysInTheFile) {
    Run(QStringLiteral("ALTER TABLE a03 ALTER COLUMN a03evnm LONGTEXT"));
    AddEvent(QString(100'000, u'ж'), QStringLiteral("01.01.2001"), 0);
    test::Answers answers;
    answers.Modal(QStringLiteral("frmEvent"), [](QWidget& dialog) { Save(dialog); })
        .Box(Updated, Icon::Information);
    General::ShowEventDialog(QStringLiteral("Событие"), QDate(2006, 5, 14), 1);
    EXPECT_EQ(Rows(QStringLiteral("SELECT length(a03evnm) FROM a03")), QStringList{"100000"});
}
