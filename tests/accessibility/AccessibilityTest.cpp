// What assistive tools are told of every window: each control under its role and name, the fields in their
// order, the cells of the grids, the day of the calendar.

#include "database/frmInstall.h"
#include "exchange/frmSelectDelimiter.h"
#include "organiser/frmEvent.h"
#include "platform/forms/DTPicker.h"
#include "platform/forms/FlexGrid.h"
#include "platform/runtime/Dates.h"
#include "records/frmEditTelefonTypeDialog.h"
#include "tests/support/WindowTest.h"
#include "tests/support/WindowWalk.h"

#include <QAccessible>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenuBar>
#include <QTabWidget>

namespace {

class AccessibilityTest : public test::WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        QAccessible::setActive(true);
        Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (1, 'Белова', 'Анна')"));
        Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (2, 'Воронин', 'Борис')"));
        Run(QStringLiteral("INSERT INTO a02 (a02clid, a02cval, a02code) VALUES (2, '123', 2)"));
        Run(QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('Юбилей', '15.05.2006', 1)"));
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
        QFile file(Folder(QStringLiteral("people.csv")));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write("First Name,Last Name\r\n");
        file.close();
        Control<QLineEdit>(master, "txtFile").setText(file.fileName());
        for (int turn = 0; turn < page; ++turn)
            Press(Qt::Key_PageDown, Qt::ControlModifier);
    }
    QString Folder(const QString& name) const { return Path().section(u'/', 0, -2) + u'/' + name; }

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
        EXPECT_EQ(test::SpokenFaults(*window->Surface()), QStringList());
        EXPECT_EQ(test::WindowFaults(*window->Surface()), QStringList());
        EXPECT_EQ(Of(*window->Surface()->window()).text(QAccessible::Name),
                  window->Surface()->window()->windowTitle());
        for (const auto& form : forms::Form::Loaded())
            if (form.get() != &Frame())
                form->Unload();
        dialog.reset();
    }
    EXPECT_EQ(test::SpokenFaults(*Frame().Window()), QStringList());
}

TEST_F(AccessibilityTest, ValuesAndTicksAreTold) {
    OpenCard("mnuRecordsEdit");
    EXPECT_EQ(Of(Control(Last("frmEditRecords"), "txtLastName")).text(QAccessible::Value),
              QStringLiteral("Белова"));
    OpenCard("mnuRecordsView");
    EXPECT_TRUE(Of(Control(Last("frmEditRecords"), "txtLastName")).state().readOnly);

    ShowDialog<frmEvent>();
    auto& date = Control<forms::DTPicker>(dialog, "dtpEventDate");
    date.SetValue(QDate(2006, 12, 31));
    EXPECT_EQ(Of(date).text(QAccessible::Value), QStringLiteral("31.12.2006"));
    EXPECT_TRUE(Of(Control(dialog, "optEventPeriod_1")).state().checked);
    EXPECT_FALSE(Of(Control(dialog, "optEventPeriod_0")).state().checked);
    dialog->Unload();

    ShowDialog<frmSelectDelimiter>();
    auto& columns = Control<QListWidget>(dialog, "lstParameter");
    columns.item(1)->setCheckState(Qt::Unchecked);
    for (const int row : {0, 1}) {
        const QAccessibleInterface* item = Of(columns).child(row);
        EXPECT_EQ(item->role(), QAccessible::ListItem);
        EXPECT_EQ(item->text(QAccessible::Name),
                  row == 0 ? QStringLiteral("Фамилия") : QStringLiteral("Имя"));
        EXPECT_EQ(item->state().checked, row == 0);
        EXPECT_TRUE(item->state().checkable);
    }
}

TEST_F(AccessibilityTest, GridsAreReadByRowAndColumn) {
    const struct {
        const char* grid;
        std::function<std::shared_ptr<forms::Form>()> open;
        int rows;
        QStringList headers;
        QStringList lastRow;
        int focused; ///< column that is read when the row is reached
    } rows[] = {
        {"gridRecords",
         [this] {
             OpenRecords();
             return Last("frmRecords");
         },
         2,
         {QStringLiteral("ИД"), QStringLiteral("Фамилия"), QStringLiteral("Имя"), QStringLiteral("Отчество")},
         {QStringLiteral("2"), QStringLiteral("Воронин"), QStringLiteral("Борис"), QString()},
         0},
        {"gridEvent",
         [this] {
             Run(QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('Я', '15.05.2006', 0)"));
             Choose("mnuBookCalendar");
             return Last("frmCalendar");
         },
         2,
         {QStringLiteral("Название"), QStringLiteral("Событие")}, // without the hidden number
         {QStringLiteral("Я"), QStringLiteral("Разовое")},
         0},
        {"gridTelKod",
         [this] {
             Choose("mnuBookTelKod");
             Type(QStringLiteral("СМОЛЕНСК"));
             Press(Qt::Key_Return);
             return Last("frmTelKod");
         },
         1,
         {QStringLiteral("Регион"), QStringLiteral("Город"), QStringLiteral("Код")},
         {QStringLiteral("СМОЛЕНСКАЯ ОБЛАСТЬ"), QStringLiteral("СМОЛЕНСК"), QStringLiteral("4812")},
         0},
        {"gridSQLEditor",
         [this] {
             Choose("mnuSettingsSQLVIEW");
             Type(QStringLiteral("SELECT a01clid, a01last FROM a01"));
             Press(Qt::Key_F9);
             return Last("frmUserEditor");
         },
         2,
         {QStringLiteral("a01clid"), QStringLiteral("a01last")},
         {QStringLiteral("2"), QStringLiteral("Воронин")},
         0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.grid);
        const auto window = row.open();
        auto& grid = Control<forms::FlexGrid>(window, row.grid);
        QAccessibleTableInterface* table = Of(grid).tableInterface();
        ASSERT_NE(table, nullptr);
        ASSERT_EQ(table->rowCount(), row.rows);
        ASSERT_EQ(table->columnCount(), row.headers.size());
        grid.setFocus();
        grid.SetRow(1);
        for (int step = 1; step < row.rows; ++step)
            Press(Qt::Key_Down);
        for (int column = 0; column < row.headers.size(); ++column) {
            EXPECT_EQ(table->columnDescription(column), row.headers[column]);
            QAccessibleInterface* cell = table->cellAt(row.rows - 1, column);
            ASSERT_NE(cell, nullptr);
            EXPECT_EQ(cell->role(), QAccessible::Cell);
            EXPECT_EQ(cell->text(QAccessible::Name), row.lastRow[column]);
            EXPECT_TRUE(cell->state().selected);
            EXPECT_EQ(cell->state().focused, column == row.focused);
            EXPECT_EQ(Of(grid).child(Of(grid).indexOfChild(cell)), cell);
        }
        EXPECT_EQ(table->selectedRows(), QList<int>{row.rows - 1});
        window->Unload();
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
    QWidget& calendar = Control(Last("frmCalendar"), "mnvCalendar");
    Press(Qt::Key_Right);
    EXPECT_EQ(Of(calendar).text(QAccessible::Name), QStringLiteral("Календарь: 16 мая 2006, вторник"));
    EXPECT_EQ(test::Spoken(QApplication::focusWidget()),
              QStringLiteral("table Календарь: 16 мая 2006, вторник"));
    QStringList days;
    QAccessibleTableInterface* month = Of(*QApplication::focusWidget()).tableInterface();
    for (int column = 0; column < month->columnCount(); ++column)
        days += month->cellAt(4, column)->text(QAccessible::Name);
    EXPECT_EQ(days.join(QStringLiteral("; ")), QStringLiteral("15, есть события; 16; 17; 18; 19; 20; 21"));
    Press(Qt::Key_Left);
    EXPECT_EQ(Of(calendar).text(QAccessible::Name),
              QStringLiteral("Календарь: 15 мая 2006, понедельник, есть события"));
    Run(QStringLiteral("DELETE FROM a03"));
    Press(Qt::Key_Right);
    Press(Qt::Key_Left);
    EXPECT_EQ(month->cellAt(4, 0)->text(QAccessible::Name), QStringLiteral("15"));
}

} // namespace
