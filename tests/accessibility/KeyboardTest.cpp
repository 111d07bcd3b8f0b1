// What the mouse opens is opened by keys too: pages, the menu bar, the child windows.

#include "platform/forms/FlexGrid.h"
#include "platform/forms/MonthView.h"
#include "platform/runtime/Dates.h"
#include "tests/support/WindowTest.h"

#include <QMainWindow>
#include <QMenu>

namespace {

class KeyboardTest : public test::WindowTest {
private:
    runtime::FixedToday m_today{QDate(2008, 2, 29)};
};

TEST_F(KeyboardTest, TheCalendarGoesByMonthsAndYears) {
    Choose("mnuBookCalendar");
    auto& calendar = Control<forms::MonthView>(Last("frmCalendar"), "mnvCalendar");
    const std::tuple<QDate, Qt::Key, Qt::KeyboardModifiers, QDate> rows[] = {
        {{2008, 2, 29}, Qt::Key_PageDown, Qt::ControlModifier, {2009, 2, 28}},
        {{2008, 2, 29}, Qt::Key_PageDown, {}, {2008, 3, 29}},
        {{9999, 6, 1}, Qt::Key_PageDown, Qt::ControlModifier, {9999, 6, 1}}, // the last year
    };
    for (const auto& [before, key, modifiers, after] : rows) {
        calendar.SetValue(before);
        Press(key, modifiers);
        EXPECT_EQ(calendar.Value(), after) << QKeySequence(modifiers | key).toString().toStdString();
    }
}

TEST_F(KeyboardTest, PagesStartInTheirFirstField) {
    Choose("mnuBookRecords");
    Control<QWidget>(Last("frmRecordsFilter"), "cmdCancel").setFocus();
    Press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(FocusName(), QStringLiteral("lstTelefonType"));
    Press(Qt::Key_Tab);
    EXPECT_EQ(FocusName(), QStringLiteral("txtTelefonNumber"));
    Press(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(FocusName(), QStringLiteral("txtLastName"));
}

TEST_F(KeyboardTest, LettersGoToTheNextSurname) {
    int id = 0;
    for (const char* name : {"Агеев", "Белов", "Беляев", "Власов"})
        AddCard(++id, QString::fromUtf8(name), QStringLiteral("Белла"));
    Choose("mnuBookRecords");
    Press(Qt::Key_Return);
    auto& grid = Control<forms::FlexGrid>(Last("frmRecords"), "gridRecords");
    grid.setFocus();
    Press(Qt::Key_Right);
    Press(Qt::Key_Right); // the first names are not what is looked for
    // Letters of their own go to the next one each; of one text, to the first that fits it.
    const std::tuple<int, const char*, const char*> rows[] = {
        {0, "б", "Белов"}, {0, "б", "Беляев"}, {0, "б", "Белов"}, {10000, "е", "Белов"}};
    for (const auto& [together, letters, name] : rows) {
        QApplication::setKeyboardInputInterval(together);
        QTest::qWait(1);
        Type(QString::fromUtf8(letters));
        EXPECT_EQ(grid.TextMatrix(grid.Row(), 1), QString::fromUtf8(name));
    }
}

TEST_F(KeyboardTest, TheFrameHasTheUsualKeys) {
    Choose("mnuHelpAbout");
    Choose("mnuBookCalendar");
    Choose("mnuSettingsSQLVIEW");
    // The child that is active behind a key.
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, const char*> rows[] = {
        {Qt::Key_F6, Qt::ControlModifier, "frmAbout"},
        {Qt::Key_F6, Qt::ControlModifier | Qt::ShiftModifier, "frmUserEditor"},
        {Qt::Key_F4, Qt::ControlModifier, "frmAbout"},
        {Qt::Key_Tab, Qt::ControlModifier, "frmCalendar"},
        {Qt::Key_W, Qt::ControlModifier, "frmAbout"},
    };
    for (const auto& [key, modifiers, child] : rows) {
        Press(key, modifiers);
        EXPECT_EQ(Frame().ActiveForm()->Name(), QString::fromLatin1(child))
            << QKeySequence(modifiers | key).toString().toStdString();
    }
    Press(Qt::Key_Escape);
    EXPECT_EQ(Children(), QStringList());
    Choose("mnuHelpAbout");
    Press(Qt::Key_F10);
    QWidget* menu = QApplication::activePopupWidget();
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(menu->objectName(), QStringLiteral("mnuBook"));
    QTest::keyClick(menu, Qt::Key_Escape); // back to the bar
    Press(Qt::Key_Escape);                 // and to the child
    Press(Qt::Key_Minus, Qt::AltModifier);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr) << "the system menu, with moving and sizing";
    QApplication::activePopupWidget()->close();
}

} // namespace
