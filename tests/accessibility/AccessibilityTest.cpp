// What assistive tools are told of every window: each control under its role and name, the fields in their
// order, the cells of the grids, the day of the calendar.

#include "organiser/frmEvent.h"
#include "platform/runtime/Dates.h"
#include "tests/support/WindowTest.h"
#include "tests/support/WindowWalk.h"

#include <QAccessible>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>

namespace {

class AccessibilityTest : public test::WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        QAccessible::setActive(true);
        AddCard(1, QStringLiteral("Белова"), QStringLiteral("Анна"));
        AddEvent(QStringLiteral("Юбилей"), QStringLiteral("15.05.2006"), 1);
    }

private:
    runtime::FixedToday m_today{QDate(2006, 5, 15)};
};

QAccessibleInterface& Of(QWidget& widget) {
    return *QAccessible::queryAccessibleInterface(&widget);
}

TEST_F(AccessibilityTest, EveryWindowSaysWhatItsFieldsAreInTheirOrder) {
    const std::tuple<const char*, std::function<void()>, const char*> rows[] = {
        {"filter", [] { Choose("mnuBookRecords"); },
         "text Фамилия; text Имя; text Отчество; text Заметка; text День рожд.; box Фамилия; box Имя; "
         "box Отчество; box Заметка; box День рожд.; button Найти; button Отмена; tabs Параметры записи"},
        {"card",
         [] {
             Press(Qt::Key_Return);
             Choose("mnuRecordsEdit");
         },
         "text Фамилия; text Имя; text Отчество; text День рожден.; text Заметка; list Телефон; "
         "text Номер телефона; button Сохранить; button Отмена; button Удалить"},
        {"calendar", [] { Choose("mnuBookCalendar"); },
         "table Календарь: 15 мая 2006, понедельник, есть события; table События выбранного дня"},
    };
    for (const auto& [name, open, round] : rows) {
        SCOPED_TRACE(name);
        open();
        TakeKeyboard();
        EXPECT_EQ(test::SpokenRound().toStdString(), round);
    }
    for (const char* command :
         {"mnuBookTelKod", "mnuSettingsTelefonType", "mnuSettingsSQLVIEW", "mnuHelpAbout"})
        Choose(command);
    forms::Form::Create<frmEvent>()->Load();
    for (const auto& form : forms::Form::Loaded()) {
        if (form.get() != &Frame()) {
            EXPECT_EQ(test::WindowFaults(*form->Surface()), QStringList()) << form->Name().toStdString();
        }
    }
}

TEST_F(AccessibilityTest, GridsAreReadByRowAndColumn) {
    AddEvent(QStringLiteral("Я"), QStringLiteral("15.05.2006"), 0);
    Choose("mnuBookCalendar");
    auto& grid = Control<forms::FlexGrid>(Last("frmCalendar"), "gridEvent");
    QAccessibleTableInterface* table = Of(grid).tableInterface();
    ASSERT_NE(table, nullptr);
    grid.setFocus();
    Press(Qt::Key_Down);
    EXPECT_EQ(table->selectedRows(), QList<int>{1});
    QStringList said;
    for (int column = 0; column < table->columnCount(); ++column) {
        QAccessibleInterface* cell = table->cellAt(1, column);
        ASSERT_NE(cell, nullptr);
        EXPECT_TRUE(cell->state().selected);
        EXPECT_EQ(cell->state().focused, column == 0) << "what is read when the row is reached";
        EXPECT_EQ(Of(grid).child(Of(grid).indexOfChild(cell)), cell);
        said += table->columnDescription(column) + u' ' + cell->text(QAccessible::Name);
    }
    EXPECT_EQ(said.join(u','), QStringLiteral("Название Я,Событие Разовое")) << "no hidden column";
    said.clear();
    for (int i = 0; i < Of(grid).childCount(); ++i)
        said += Of(grid).child(i)->text(QAccessible::Name);
    said.removeAll(QString());
    EXPECT_EQ(said.join(u','), QStringLiteral("Название,Событие,Юбилей,Периодическое,Я,Разовое"));
}

TEST_F(AccessibilityTest, TheTitlesOfTheMenuBarAreMenus) {
    QMenuBar* bar = Frame().Window()->menuBar();
    QAction* action = bar->actions()[1];
    QAccessibleInterface* title = Of(*bar).child(1);
    EXPECT_EQ(title->role(), QAccessible::PopupMenu);
    EXPECT_EQ(title->text(QAccessible::Name), QStringLiteral("Настройки"));
    EXPECT_EQ(title->child(0), &Of(*action->menu()));
    title->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(action->menu()->isVisible());
    EXPECT_TRUE(title->state().focused);
    action->menu()->close();
}

TEST_F(AccessibilityTest, TheCalendarSaysItsDay) {
    Choose("mnuBookCalendar");
    Press(Qt::Key_Right);
    EXPECT_EQ(test::Spoken(QApplication::focusWidget()),
              QStringLiteral("table Календарь: 16 мая 2006, вторник"));
    QAccessibleTableInterface* month = Of(*QApplication::focusWidget()).tableInterface();
    const auto monday = [&] { return month->cellAt(4, 0)->text(QAccessible::Name); };
    EXPECT_EQ(monday(), QStringLiteral("15, есть события"));
    Run(QStringLiteral("DELETE FROM a03"));
    Press(Qt::Key_Left);
    Press(Qt::Key_Right);
    EXPECT_EQ(monday(), QStringLiteral("15"));
}

} // namespace
