// What the mouse opens is opened by keys too: context menus, the calendar of a date field, the menu bar, the
// child windows, the widths of columns.

#include "organiser/frmEvent.h"
#include "platform/forms/DTPicker.h"
#include "platform/forms/FlexGrid.h"
#include "platform/forms/MonthView.h"
#include "platform/runtime/Dates.h"
#include "tests/support/WindowTest.h"

#include <QFile>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QTabWidget>

namespace {

class KeyboardTest : public test::WindowTest {
protected:
    /// Sends a key to what is in front, be it a popup.
    static void PressInFront(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QWidget* popup = QApplication::activePopupWidget();
        if (popup)
            QTest::keyClick(popup->focusWidget() ? popup->focusWidget() : popup, key, modifiers);
        else
            Press(key, modifiers);
    }
    static QString OpenMenuName() {
        const auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        return menu ? menu->objectName() : QString();
    }
    QString ActiveChild() { return Frame().ActiveForm() ? Frame().ActiveForm()->Name() : QString(); }

private:
    runtime::FixedToday m_today{QDate(2008, 2, 29)};
};

TEST_F(KeyboardTest, ContextMenusOpenAtTheCurrentRow) {
    for (int i = 1; i <= 60; ++i) {
        Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, 'К')").arg(i));
        Run(QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('С', '29.02.2008', 0)"));
    }
    const struct {
        const char* command;
        const char* window;
        const char* grid;
        QString menu;
    } rows[] = {
        {"mnuBookRecords", "frmRecords", "gridRecords", QStringLiteral("mnuRecords")},
        {"mnuBookCalendar", "frmCalendar", "gridEvent", QStringLiteral("mnuCalendar")},
        {"mnuBookTelKod", "frmTelKod", "gridTelKod", QStringLiteral("mnuTelKod")},
    };
    for (const auto& row : rows) {
        Choose(row.command);
        if (Last(row.window) != Frame().ActiveForm())
            Press(Qt::Key_Return); // find everything
        auto& grid = Control<forms::FlexGrid>(Last(row.window), row.grid);
        grid.setFocus();
        QPoint place;
        QObject::connect(&grid, &forms::FlexGrid::ContextMenuRequested,
                         [&](QPoint position) { place = position; });
        for (const auto& [key, modifiers] :
             {std::pair{Qt::Key_F10, Qt::KeyboardModifiers(Qt::ShiftModifier)}, {Qt::Key_Menu, {}}}) {
            SCOPED_TRACE(QKeySequence(key).toString().toStdString() + " on " + row.grid);
            Press(Qt::Key_End);
            grid.scrollToTop(); // the current row is out of sight
            test::Answers answers;
            answers.Menu(row.menu, QString());
            Press(key, modifiers);
            const QRect current = grid.visualRect(grid.currentIndex());
            EXPECT_FALSE(current.isEmpty());
            EXPECT_TRUE(grid.viewport()->rect().contains(current.center()));
            EXPECT_EQ(grid.viewport()->mapFromGlobal(place), current.bottomLeft());
        }
        Last(row.window)->Unload();
    }
}

TEST_F(KeyboardTest, DateFieldsOpenTheirCalendar) {
    const auto dialog = forms::Form::Create<frmEvent>();
    dialog->Show();
    auto& date = Control<forms::DTPicker>(dialog, "dtpEventDate");
    const struct {
        Qt::Key opening;
        Qt::KeyboardModifiers modifiers;
        Qt::Key ending;
        QDate date;
    } rows[] = {
        {Qt::Key_F4, {}, Qt::Key_Return, {2006, 5, 16}},
        {Qt::Key_F4, {}, Qt::Key_Escape, {2006, 5, 15}},
        {Qt::Key_Down, Qt::AltModifier, Qt::Key_Return, {2006, 5, 16}},
    };
    for (const auto& row : rows) {
        date.SetValue(QDate(2006, 5, 15));
        TakeKeyboard();
        date.setFocus();
        Press(row.opening, row.modifiers);
        QWidget* popup = QApplication::activePopupWidget();
        ASSERT_NE(popup, nullptr);
        EXPECT_NE(popup->findChild<forms::MonthView*>(), nullptr);
        PressInFront(Qt::Key_Right);
        PressInFront(row.ending);
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
        EXPECT_EQ(date.Value(), row.date);
    }
}

TEST_F(KeyboardTest, TheCalendarGoesByDaysWeeksMonthsAndYears) {
    Choose("mnuBookCalendar");
    auto& calendar = Control<forms::MonthView>(Last("frmCalendar"), "mnvCalendar");
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        QDate date;
    } rows[] = {
        {Qt::Key_PageDown, Qt::ControlModifier, {2009, 2, 28}},
        {Qt::Key_PageUp, Qt::ControlModifier, {2008, 2, 28}},
        {Qt::Key_Right, {}, {2008, 2, 29}},
        {Qt::Key_PageDown, {}, {2008, 3, 29}},
        {Qt::Key_End, {}, {2008, 3, 31}},
        {Qt::Key_PageUp, {}, {2008, 2, 29}},
        {Qt::Key_Home, {}, {2008, 2, 1}},
        {Qt::Key_Up, {}, {2008, 1, 25}},
        {Qt::Key_Down, {}, {2008, 2, 1}},
        {Qt::Key_Left, {}, {2008, 1, 31}},
    };
    for (const auto& row : rows) {
        Press(row.key, row.modifiers);
        EXPECT_EQ(calendar.Value(), row.date) << QKeySequence(row.key).toString().toStdString();
    }
    calendar.SetValue(QDate(9999, 6, 1));
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(calendar.Value(), QDate(9999, 6, 1)) << "the last year";
}

TEST_F(KeyboardTest, PagesStartInTheirFirstField) {
    Choose("mnuBookRecords");
    Control<QWidget>(Last("frmRecordsFilter"), "cmdCancel").setFocus();
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("lstTelefonType"));
    Press(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("txtTelefonNumber"));
    Press(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(QApplication::focusWidget()->objectName(), QStringLiteral("txtLastName"));

    Choose("mnuBookImport");
    const auto master = Last("frmImportMasterStep1");
    QFile file(Path() + QStringLiteral(".csv"));
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write("Name,Home Phone\r\n") > 0);
    file.close();
    Type(file.fileName());
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    Press(Qt::Key_Space);
    EXPECT_TRUE(Control<QWidget>(master, "cmdImport").isEnabled()) << "the first parameter is ticked";
}

TEST_F(KeyboardTest, LettersGoToTheNextSurname) {
    const QStringList names{QStringLiteral("'Агеев', 'Вера'"), QStringLiteral("'Белов', 'Анна'"),
                            QStringLiteral("'Беляев', 'Олег'"), QStringLiteral("'Власов', 'Борис'")};
    for (int i = 0; i < names.size(); ++i)
        Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (%1, %2)")
                .arg(i)
                .arg(names[i]));
    Choose("mnuBookRecords");
    Press(Qt::Key_Return);
    auto& grid = Control<forms::FlexGrid>(Last("frmRecords"), "gridRecords");
    const auto type = [&](const char* letters) {
        Type(QString::fromUtf8(letters));
        return grid.TextMatrix(grid.Row(), 1);
    };
    grid.setFocus();
    Press(Qt::Key_Right);
    Press(Qt::Key_Right); // the first names are not what is looked for
    EXPECT_EQ(type("б"), QStringLiteral("Белов"));
    EXPECT_EQ(type("б"), QStringLiteral("Беляев"));
}

TEST_F(KeyboardTest, TheFrameHasTheUsualKeys) {
    Choose("mnuHelpAbout");
    Choose("mnuBookCalendar");
    Choose("mnuSettingsSQLVIEW");
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        const char* menu;  ///< that is open behind it
        const char* child; ///< that is active behind it
    } rows[] = {
        {Qt::Key_F10, {}, "mnuBook", "frmUserEditor"},
        {Qt::Key_F6, Qt::ControlModifier, "", "frmAbout"},
        {Qt::Key_F6, Qt::ControlModifier, "", "frmCalendar"},
        {Qt::Key_F6, Qt::ControlModifier | Qt::ShiftModifier, "", "frmAbout"},
        {Qt::Key_F6, Qt::ControlModifier | Qt::ShiftModifier, "", "frmUserEditor"},
        {Qt::Key_F4, Qt::ControlModifier, "", "frmAbout"},
        {Qt::Key_Tab, Qt::ControlModifier, "", "frmCalendar"},
        {Qt::Key_W, Qt::ControlModifier, "", "frmAbout"},
        {Qt::Key_Escape, {}, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(QKeySequence(row.modifiers | row.key).toString().toStdString());
        Press(row.key, row.modifiers);
        EXPECT_EQ(OpenMenuName(), QString::fromLatin1(row.menu));
        if (QApplication::activePopupWidget()) {
            PressInFront(Qt::Key_Escape); // back to the bar
            PressInFront(Qt::Key_Escape); // and to the child
        }
        EXPECT_EQ(ActiveChild(), QString::fromLatin1(row.child));
    }
    Choose("mnuSettingsSQLVIEW");
    Press(Qt::Key_Minus, Qt::AltModifier);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr) << "the system menu, with moving and sizing";
    PressInFront(Qt::Key_Escape);
}

TEST_F(KeyboardTest, ColumnsAreResized) {
    Choose("mnuSettingsSQLVIEW");
    Type(QStringLiteral("SELECT t02cval, t02rcid FROM t02"));
    Press(Qt::Key_F9);
    auto& grid = Control<forms::FlexGrid>(Last("frmUserEditor"), "gridSQLEditor");
    Press(Qt::Key_Tab);
    const int before = grid.ColWidth(0);
    Press(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_GT(grid.ColWidth(0), before);
    Press(Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(grid.ColWidth(0), before);
    Press(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_GT(grid.ColWidth(0), 2 * before) << "as wide as the longest name";
    for (int i = 0; i < 500; ++i)
        Press(Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_GT(grid.ColWidth(0), 0) << "a column does not vanish";
}

} // namespace
