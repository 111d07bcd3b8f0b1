#include "organiser/frmEvent.h"

#include "database/Schema.h"
#include "platform/forms/DTPicker.h"
#include "tests/support/WindowTest.h"

#include <QLineEdit>
#include <QRadioButton>

using forms::Icon;

namespace {

const QString Added = "Событие успешно добавлено.";
const QString Updated = "Событие успешно обновлено.";

class frmEventTest : public test::WindowTest {
protected:
    static QLineEdit& Name(const QWidget& dialog) { return ControlOf<QLineEdit>(dialog, "txtEventName"); }
    static forms::DTPicker& Date(const QWidget& dialog) {
        return ControlOf<forms::DTPicker>(dialog, "dtpEventDate");
    }
    static void Save(const QWidget& dialog) { Click(ControlOf(dialog, "cmdSaveEvent")); }
    static void Pick(const QWidget& dialog, const char* period) {
        Click(ControlOf(dialog, period), QPoint(8, 8));
    }
};

} // namespace

TEST_F(frmEventTest, EventsAreAddedAndChanged) {
    using Act = std::function<void(QWidget&)>;
    const auto fill = [](const char* name) -> Act {
        return [name](QWidget& dialog) {
            Fill(Name(dialog), name);
            Press(Qt::Key_Return);
        };
    };
    const Act typeDate = [](QWidget& dialog) {
        Fill(Name(dialog), "Разовое");
        Pick(dialog, "optEventPeriod_0");
        Date(dialog).setFocus();
        Press(Qt::Key_Home);
        Type("31.12.99");
        Press(Qt::Key_Return);
    };
    const Act blank = [](QWidget& dialog) {
        Fill(Name(dialog), "   ");
        Date(dialog).setFocus();
        Save(dialog);
        EXPECT_EQ(dialog.focusWidget(), &Name(dialog));
    };
    const Act apostrophe = [&](QWidget& dialog) {
        fill("О'Нил")(dialog);
        EXPECT_EQ(Name(dialog).text(), "О'Нил");
    };
    const Act cancel = [](QWidget& dialog) {
        Fill(Name(dialog), "Брошенное");
        Click(ControlOf(dialog, "cmdCancelEvent"));
    };
    const Act makeYearly = [](QWidget& dialog) {
        Pick(dialog, "optEventPeriod_1");
        Save(dialog);
    };
    const Act nothing = [](QWidget&) {};
    const QString fresh = "14.05.2006||1";
    const QString nameless = "Необходимо задать поле 'Название события'";
    const QString refused = test::ErrorStart("frmEvent функция cmdSaveEvent_Click:", 3075);
    const auto unloaded = [](int number) { return test::ErrorStart("frmEvent функция Form_Load:", number); };
    const struct {
        const char* what;
        QString before; ///< name, date, period
        int id;
        QString shown; ///< date, name and whether it is yearly
        Act act;
        QString box;  ///< behind that
        QString left; ///< the first event in the file
        bool loads = true;
    } rows[] = {
        {"trimmed", "", -1, fresh, fill("  Праздник  "), Added, "Праздник|14.05.2006|1"},
        {"a typed date, once", "", -1, fresh, typeDate, Added, "Разовое|31.12.1999|0"},
        {"a blank name", "", -1, fresh, blank, nameless, ""},
        {"an apostrophe", "", -1, fresh, apostrophe, refused, ""},
        {"any period but 0", "x|01.01.2001|7", 1, "01.01.2001|x|1", cancel, {}, "x|01.01.2001|7"},
        {"changed", "x|5 декабря 2006|0", 1, "05.12.2006|x|0", makeYearly, Updated, "x|05.12.2006|1"},
        {"one that is gone", "", 5, fresh, fill("Имя"), Updated, ""},
        {"no date", "x|когда-то|0", 1, fresh, nothing, unloaded(13), "x|когда-то|0", false},
        {"too early a date", "x|01.01.1700|0", 1, fresh, nothing, unloaded(35773), "x|01.01.1700|0", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        Run("DROP TABLE a03");
        Run(schema::CreateA03());
        const QStringList before = row.before.split(u'|');
        if (before.size() == 3)
            AddEvent(before[0], before[1], before[2].toInt());
        const bool done = row.box == Added || row.box == Updated;
        test::Answers answers;
        const auto box = [&](bool comes) {
            if (comes && !row.box.isEmpty())
                answers.BoxStarting(row.box, done                  ? Icon::Information
                                             : row.box == nameless ? Icon::Exclamation
                                                                   : Icon::Critical);
        };
        box(!row.loads);
        answers.Modal("frmEvent", [&](QWidget& dialog) {
            EXPECT_EQ(Name(dialog).maxLength(), 50);
            const bool yearly = ControlOf<QRadioButton>(dialog, "optEventPeriod_1").isChecked();
            EXPECT_EQ(Date(dialog).Value().toString("dd.MM.yyyy|") + Name(dialog).text() +
                          (yearly ? "|1" : "|0"),
                      row.shown);
            row.act(dialog);
            EXPECT_EQ(dialog.isVisible(), !done && !row.box.isEmpty());
            dialog.close();
        });
        box(row.loads);
        General::ShowEventDialog("Событие", QDate(2006, 5, 14), row.id);
        EXPECT_TRUE(answers.Done());
        EXPECT_EQ(Row("SELECT a03evnm, a03evdt, a03evpr FROM a03"), row.left);
    }
}

TEST_F(frmEventTest, ANameTooLongToBeSeenStaysInTheFile) {
    Run("ALTER TABLE a03 ALTER COLUMN a03evnm LONGTEXT");
    AddEvent(QString(100'000, u'ж'), "01.01.2001", 0);
    test::Answers answers;
    answers.Modal("frmEvent", [](QWidget& dialog) { Save(dialog); }).Box(Updated, Icon::Information);
    General::ShowEventDialog("Событие", QDate(2006, 5, 14), 1);
    EXPECT_EQ(Rows("SELECT length(a03evnm) FROM a03"), QStringList{"100000"});
}
