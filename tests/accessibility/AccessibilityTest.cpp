// What assistive tools are told of every window: each control under its role and name, the fields in their
// order, the cells of the grids, the day of the calendar.

#include "database/frmInstall.h"
#include "exchange/frmSelectDelimiter.h"
#include "organiser/frmEvent.h"
#include "platform/runtime/Dates.h"
#include "records/frmEditTelefonTypeDialog.h"
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
        AddCard(2, QStringLiteral("Воронин"), QStringLiteral("Борис"));
        AddPhone(2, 2, QStringLiteral("123"));
        AddEvent(QStringLiteral("Юбилей"), QStringLiteral("15.05.2006"), 1);
    }

    /// A filled list of the cards, in front.
    void OpenRecords() {
        Choose("mnuBookRecords");
        Press(Qt::Key_Return);
    }
    void OpenCard(const char* entry) {
        OpenRecords();
        Choose(entry);
    }
    template <class Dialog>
    void ShowDialog() {
        dialog = forms::Form::Create<Dialog>();
        dialog->Show();
    }
    void ImportPage(int page) {
        Choose("mnuBookImport");
        const auto master = Last("frmImportMasterStep1");
        test::WriteBytes(Path(QStringLiteral("people.csv")), "First Name,Last Name\r\n");
        Control<QLineEdit>(master, "txtFile").setText(Path(QStringLiteral("people.csv")));
        for (int turn = 0; turn < page; ++turn)
            Press(Qt::Key_PageDown, Qt::ControlModifier);
    }

    std::shared_ptr<forms::Form> dialog;

private:
    runtime::FixedToday m_today{QDate(2006, 5, 15)};
};

QAccessibleInterface& Of(QWidget& widget) {
    return *QAccessible::queryAccessibleInterface(&widget);
}

TEST_F(AccessibilityTest, EveryWindowSaysWhatItsFieldsAreInTheirOrder) {
    const struct {
        const char* window;
        std::function<void()> open;
        const char* round; ///< what is said from the first focus on, by Tab
    } rows[] = {
        {"frmRecordsFilter", [this] { Choose("mnuBookRecords"); },
         "text Фамилия; text Имя; text Отчество; text Заметка; text День рожд.; box Фамилия; box Имя; "
         "box Отчество; box Заметка; box День рожд.; button Найти; button Отмена; tabs Параметры записи"},
        {"frmRecordsFilter",
         [this] {
             Choose("mnuBookRecords");
             Press(Qt::Key_PageDown, Qt::ControlModifier);
         },
         "list Тип телефона; text Номер телефона; box Тип телефона; box Номер телефона; button Найти; "
         "button Отмена; tabs Парам. тел. номеров"},
        {"frmRecords", [this] { OpenRecords(); }, "table Записи; text Количество записей"},
        {"frmEditRecords", [this] { OpenCard("mnuRecordsAdd"); },
         "text Фамилия; text Имя; text Отчество; text День рожден.; text Заметка; list Телефон; "
         "text Номер телефона; button Сохранить; button Отмена"},
        {"frmEditRecords", [this] { OpenCard("mnuRecordsEdit"); },
         "text Фамилия; text Имя; text Отчество; text День рожден.; text Заметка; list Телефон; "
         "text Номер телефона; button Сохранить; button Отмена; button Удалить"},
        {"frmEditRecords", [this] { OpenCard("mnuRecordsView"); },
         "text Фамилия; text Имя; text Отчество; text День рожден.; text Заметка; list Телефон; "
         "text Номер телефона; button Отмена"},
        {"frmEditTelefonType", [this] { Choose("mnuSettingsTelefonType"); },
         "list Редакт. типов телефон. номеров; button Добавить..."},
        {"frmEditTelefonTypeDialog", [this] { ShowDialog<frmEditTelefonTypeDialog>(); },
         "text Новое значение; button Сохранить; button Отмена"},
        {"frmCalendar", [this] { Choose("mnuBookCalendar"); },
         "table Календарь: 15 мая 2006, понедельник, есть события; table События выбранного дня"},
        {"frmEvent", [this] { ShowDialog<frmEvent>(); },
         "date Дата события; text Название события; option Повторять раз в год; button Сохранить; "
         "button Отменить"},
        {"frmTelKodFilter", [this] { Choose("mnuBookTelKod"); },
         "text Название города; text Код города; list Регион; box Название города; box Код города; "
         "box Регион; button Найти; button Отмена"},
        {"frmTelKod",
         [this] {
             Choose("mnuBookTelKod");
             Press(Qt::Key_Return);
         },
         "table Коды городов; text Количество записей"},
        {"frmImportMasterStep1", [this] { ImportPage(0); },
         "text Выберите файл, из которого Вы хотите импортировать данные; button Выбрать...; button Отмена; "
         "tabs Шаг первый"},
        {"frmImportMasterStep1", [this] { ImportPage(1); },
         "option Запятая (,); button Отмена; tabs Шаг второй"},
        {"frmImportMasterStep1", [this] { ImportPage(2); },
         "list Выберите те параметры, которые Вы хотете импортировать; button Отмена; tabs Шаг третий"},
        {"frmSelectDelimiter", [this] { ShowDialog<frmSelectDelimiter>(); },
         "option Запятая (,); list Выберите параметры, которые Вы хотите экспортировать; button OK; "
         "button Отмена"},
        {"frmUserEditor", [this] { Choose("mnuSettingsSQLVIEW"); }, "text Запрос; table Результат"},
        {"frmAbout", [this] { Choose("mnuHelpAbout"); },
         "text Версия программы; text Версия базы; text Используется база; text Дата компиляции; "
         "button author@example.org"},
        {"frmInstall", [this] { ShowDialog<frmInstall>(); },
         "text Файл базы данных; button Выбрать...; button Создать"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.window);
        row.open();
        TakeKeyboard();
        const auto window = Last(row.window);
        EXPECT_EQ(test::SpokenRound().toStdString(), row.round);
        EXPECT_EQ(test::WindowFaults(*window->Surface()), QStringList());
        for (const auto& form : forms::Form::Loaded())
            if (form.get() != &Frame())
                form->Unload();
        dialog.reset();
    }
}

TEST_F(AccessibilityTest, GridsAreReadByRowAndColumn) {
    AddEvent(QStringLiteral("Я"), QStringLiteral("15.05.2006"), 0);
    OpenRecords();
    Choose("mnuBookCalendar");
    const struct {
        const char* window;
        const char* grid;
        QString said; ///< the last row under its headers; a hidden column is left out
    } rows[] = {
        {"frmRecords", "gridRecords", QStringLiteral("ИД 2, Фамилия Воронин, Имя Борис, Отчество ")},
        {"frmCalendar", "gridEvent", QStringLiteral("Название Я, Событие Разовое")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.grid);
        auto& grid = Control<forms::FlexGrid>(Last(row.window), row.grid);
        QAccessibleTableInterface* table = Of(grid).tableInterface();
        ASSERT_NE(table, nullptr);
        Activate(Last(row.window));
        grid.setFocus();
        grid.SetRow(1);
        Press(Qt::Key_Down);
        EXPECT_EQ(table->selectedRows(), QList<int>{1});
        QStringList said;
        for (int column = 0; column < table->columnCount(); ++column) {
            QAccessibleInterface* cell = table->cellAt(table->rowCount() - 1, column);
            ASSERT_NE(cell, nullptr);
            EXPECT_EQ(cell->role(), QAccessible::Cell);
            EXPECT_TRUE(cell->state().selected);
            EXPECT_EQ(cell->state().focused, column == 0) << "what is read when the row is reached";
            EXPECT_EQ(Of(grid).child(Of(grid).indexOfChild(cell)), cell);
            said += table->columnDescription(column) + u' ' + cell->text(QAccessible::Name);
        }
        EXPECT_EQ(said.join(QStringLiteral(", ")), row.said);
    }
}

TEST_F(AccessibilityTest, TheTitlesOfTheMenuBarAreMenus) {
    QMenuBar* bar = Frame().Window()->menuBar();
    QAccessibleInterface& titles = Of(*bar);
    ASSERT_EQ(titles.childCount(), bar->actions().size());
    for (int index = 0; index < titles.childCount(); ++index) {
        QAction* action = bar->actions()[index];
        QAccessibleInterface* title = titles.child(index);
        EXPECT_EQ(title->role(), QAccessible::PopupMenu);
        EXPECT_EQ(title->text(QAccessible::Name), action->text().remove(u'&'));
        EXPECT_EQ(titles.indexOfChild(title), index);
        EXPECT_EQ(title->child(0), &Of(*action->menu()));
        title->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
        EXPECT_TRUE(action->menu()->isVisible());
        EXPECT_TRUE(title->state().focused);
        action->menu()->close();
    }
}

TEST_F(AccessibilityTest, TheCalendarSaysItsDay) {
    Choose("mnuBookCalendar");
    QAccessibleInterface& calendar = Of(Control(Last("frmCalendar"), "mnvCalendar"));
    Press(Qt::Key_Right);
    EXPECT_EQ(calendar.text(QAccessible::Name), QStringLiteral("Календарь: 16 мая 2006, вторник"));
    EXPECT_EQ(test::Spoken(QApplication::focusWidget()),
              QStringLiteral("table Календарь: 16 мая 2006, вторник"));
    QAccessibleTableInterface* month = Of(*QApplication::focusWidget()).tableInterface();
    const auto said = [&](int column) { return month->cellAt(4, column)->text(QAccessible::Name); };
    EXPECT_EQ(said(0), QStringLiteral("15, есть события"));
    EXPECT_EQ(said(6), QStringLiteral("21"));
    Run(QStringLiteral("DELETE FROM a03"));
    Press(Qt::Key_Left);
    Press(Qt::Key_Right);
    EXPECT_EQ(said(0), QStringLiteral("15"));
}

} // namespace
