// What assistive tools are told of every window: each control under its role and name, the fields in their
// order, the cells of the grids, the day of the calendar.

#include "organiser/frmEvent.h"
#include "platform/runtime/Dates.h"
#include "tests/support/WindowTest.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QCalendarWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QTest>

#include <map>
#include <set>

namespace {

template <class... Widgets>
bool IsOne(const QWidget& widget) {
    return (qobject_cast<const Widgets*>(&widget) || ...);
}

bool IsField(const QWidget& widget) {
    return IsOne<QLineEdit, QPlainTextEdit, QAbstractItemView, QAbstractSpinBox, QCalendarWidget>(widget);
}

/// Whether the widget is a part that the toolkit has put into one of the controls.
bool IsInner(const QWidget& widget, const QWidget& window) {
    for (const QWidget* parent = widget.parentWidget(); parent && parent != &window;
         parent = parent->parentWidget())
        if (IsField(*parent) || parent->inherits("QTabBar"))
            return true;
    return false;
}

/// What assistive tools and automated checks would stumble on in a window: an empty or doubled object name, a
/// field without an accessible name, a button without a text, two controls under one Alt letter.
QStringList WindowFaults(const QWidget& window) {
    QStringList faults;
    std::set<QString> names;
    std::set<QString> letters;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (IsInner(*widget, window) ||
            (!IsField(*widget) && !IsOne<QLabel, QAbstractButton, QTabWidget>(*widget)))
            continue;
        const QString name = widget->objectName();
        const auto tell = [&](const char* fault) {
            faults += QLatin1String(widget->metaObject()->className()) + u' ' + name + QLatin1String(fault);
        };
        if (name.isEmpty() || name.startsWith(QStringLiteral("qt_")) || !names.insert(name).second)
            tell(" has no name of its own");
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const auto* label = qobject_cast<const QLabel*>(widget);
        if (widget->accessibleName().isEmpty() && (IsField(*widget) || (button && button->text().isEmpty())))
            tell(" has no accessible name");
        const QString caption = button ? button->text() : label && label->buddy() ? label->text() : QString();
        const QString letter = QKeySequence::mnemonic(caption).toString();
        if (!letter.isEmpty() && !letters.insert(letter).second)
            tell(" shares its letter");
    }
    return faults;
}

/// What is said of a widget when it gets the focus: role and name, as "text Фамилия".
QString Spoken(QWidget* widget) {
    QAccessible::setActive(true);
    const QAccessibleInterface* place = widget ? QAccessible::queryAccessibleInterface(widget) : nullptr;
    if (!place)
        return QStringLiteral("nothing");
    static const std::map<QAccessible::Role, QString> words = {
        {QAccessible::EditableText, QStringLiteral("text")},
        {QAccessible::SpinBox, QStringLiteral("date")},
        {QAccessible::Table, QStringLiteral("table")},
        {QAccessible::List, QStringLiteral("list")},
        {QAccessible::CheckBox, QStringLiteral("box")},
        {QAccessible::RadioButton, QStringLiteral("option")},
        {QAccessible::Button, QStringLiteral("button")},
        {QAccessible::PageTabList, QStringLiteral("tabs")},
    };
    const auto word = words.find(place->role());
    const QString role = word == words.end() ? QString::number(place->role()) : word->second;
    QString name = place->text(QAccessible::Name).remove(u'&');
    if (name.endsWith(u':'))
        name.chop(1);
    return role + u' ' + name;
}

/// What is said on a round through the fields of the window in front by Tab, from the field with the focus
/// on.
QString SpokenRound() {
    constexpr int LongestRound = 40;
    QStringList said;
    const QWidget* first = QApplication::focusWidget();
    QWidget* field = QApplication::focusWidget();
    do {
        said.append(Spoken(field));
        if (field)
            QTest::keyClick(field, Qt::Key_Tab);
        field = QApplication::focusWidget();
    } while (field && field != first && said.size() < LongestRound);
    return said.join(QStringLiteral("; "));
}

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
        EXPECT_EQ(SpokenRound().toStdString(), round);
    }
    for (const char* command :
         {"mnuBookTelKod", "mnuSettingsTelefonType", "mnuSettingsSQLVIEW", "mnuHelpAbout"})
        Choose(command);
    forms::Form::Create<frmEvent>()->Load();
    for (const auto& form : forms::Form::Loaded()) {
        if (form.get() != &Frame()) {
            EXPECT_EQ(WindowFaults(*form->Surface()), QStringList()) << form->Name().toStdString();
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
    EXPECT_EQ(Spoken(QApplication::focusWidget()), QStringLiteral("table Календарь: 16 мая 2006, вторник"));
    QAccessibleTableInterface* month = Of(*QApplication::focusWidget()).tableInterface();
    const auto monday = [&] { return month->cellAt(4, 0)->text(QAccessible::Name); };
    EXPECT_EQ(monday(), QStringLiteral("15, есть события"));
    Run(QStringLiteral("DELETE FROM a03"));
    Press(Qt::Key_Left);
    Press(Qt::Key_Right);
    EXPECT_EQ(monday(), QStringLiteral("15"));
}

} // namespace
