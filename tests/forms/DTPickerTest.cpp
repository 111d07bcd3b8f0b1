#include "platform/forms/DTPicker.h"

#include "tests/support/Expect.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>

namespace {

/// The field on the screen, entered by the Tab key.
class DTPickerTest : public testing::Test {
protected:
    void SetUp() override {
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        picker.setFocus(Qt::TabFocusReason);
    }
    /// ! is the Home key, < the backspace key, > the arrow to the right, | the Tab key.
    void Type(const QString& keys) {
        static const QHash<QChar, Qt::Key> special{
            {u'!', Qt::Key_Home}, {u'<', Qt::Key_Backspace}, {u'>', Qt::Key_Right}, {u'|', Qt::Key_Tab}};
        for (const QChar key : keys)
            QTest::keyClick(&picker, special.value(key, static_cast<Qt::Key>(key.unicode())));
    }

    QWidget window;
    forms::DTPicker picker{&window};
};

TEST_F(DTPickerTest, TypedPartsTakeThePlaceOfTheOldOnes) {
    QLineEdit next(&window);
    next.show();
    const std::tuple<QDate, QString, QDate> cases[] = {
        {{2006, 5, 15}, QStringLiteral("9.12.1999"), {1999, 12, 9}},
        {{2001, 2, 28}, QStringLiteral("31122006"), {2006, 12, 31}},  // the day waits for its month
        {{2001, 2, 28}, QStringLiteral("29.02.2004"), {2004, 2, 29}}, // and for its year
        {{2001, 2, 28}, QStringLiteral("31"), {2001, 2, 28}},         // February has no such day
        {{2006, 5, 31}, QStringLiteral(">06"), {2006, 6, 30}},
        {{2006, 5, 15}, QStringLiteral("1.1.30"), {1930, 1, 1}},
        {{2006, 5, 15}, QStringLiteral(">13"), {2006, 5, 15}},
        {{2006, 5, 15}, QStringLiteral(">>1700"), {2006, 5, 15}},
        {{2006, 5, 15}, QStringLiteral("2<1."), {2006, 5, 1}},
        {{2006, 5, 15}, QStringLiteral("3>1|"), {2006, 1, 3}}, // leaving takes over what was typed
    };
    for (const auto& [before, keys, after] : cases) {
        SCOPED_TRACE(keys.toStdString());
        picker.setFocus(Qt::TabFocusReason);
        picker.SetValue(before);
        Type(u'!' + keys);
        EXPECT_EQ(picker.Value(), after);
        EXPECT_EQ(picker.text(), picker.date().toString(QStringLiteral("dd.MM.yyyy")));
        EXPECT_EQ(next.hasFocus(), keys.endsWith(u'|')) << "Tab leaves the field at once";
    }
}

TEST_F(DTPickerTest, KeysOpenTheCalendar) {
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, Qt::Key, int> rows[] = {
        {Qt::Key_F4, {}, Qt::Key_Escape, 15},
        {Qt::Key_Down, Qt::AltModifier, Qt::Key_Return, 16},
    };
    for (const auto& [opening, modifiers, ending, day] : rows) {
        picker.SetValue(QDate(2006, 5, 15));
        QTest::keyClick(&picker, opening, modifiers);
        QWidget* popup = QApplication::activePopupWidget();
        ASSERT_NE(popup, nullptr);
        QTest::keyClick(popup->focusWidget(), Qt::Key_Right);
        QTest::keyClick(popup->focusWidget(), ending);
        EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
        EXPECT_EQ(picker.Value(), QDate(2006, 5, day)) << day;
    }
}

} // namespace
