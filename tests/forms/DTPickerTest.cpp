#include "platform/forms/DTPicker.h"

#include "platform/forms/DateRange.h"
#include "tests/support/Expect.h"

#include <gtest/gtest.h>

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
    void Type(const QString& keys) {
        for (const QChar key : keys) {
            if (key == u'<')
                QTest::keyClick(&picker, Qt::Key_Backspace);
            else if (key == u'>')
                QTest::keyClick(&picker, Qt::Key_Right);
            else
                QTest::keyClick(&picker, key.toLatin1());
        }
    }

    QWidget window;
    forms::DTPicker picker{&window};
};

TEST_F(DTPickerTest, TypedPartsTakeThePlaceOfTheOldOnes) {
    struct Case {
        QDate before;
        QString keys; ///< < is the backspace key, > the arrow to the right
        QDate after;
    };
    const std::vector<Case> cases = {
        {{2006, 5, 15}, QStringLiteral("09121999"), {1999, 12, 9}},
        {{2006, 5, 15}, QStringLiteral("9.12.1999"), {1999, 12, 9}},
        {{2001, 2, 28}, QStringLiteral("31122006"), {2006, 12, 31}},  // the day waits for its month
        {{2001, 2, 28}, QStringLiteral("29.02.2004"), {2004, 2, 29}}, // and for its year
        {{2001, 2, 28}, QStringLiteral("31"), {2001, 2, 28}},         // February has no such day
        {{2006, 5, 31}, QStringLiteral(">06"), {2006, 6, 30}},
        {{2006, 5, 15}, QStringLiteral("1.1.29"), {2029, 1, 1}},
        {{2006, 5, 15}, QStringLiteral("1.1.30"), {1930, 1, 1}},
        {{2006, 5, 15}, QStringLiteral("00"), {2006, 5, 15}},
        {{2006, 5, 15}, QStringLiteral(">13"), {2006, 5, 15}},
        {{2006, 5, 15}, QStringLiteral(">>1700"), {2006, 5, 15}},
        {{2006, 5, 15}, QStringLiteral("2<1."), {2006, 5, 1}},
        {{2006, 5, 15}, QStringLiteral("2<"), {2006, 5, 15}},
        {{2006, 5, 15}, QStringLiteral("7"), {2006, 5, 7}},
    };
    for (const Case& c : cases) {
        picker.SetValue(c.before);
        QTest::keyClick(&picker, Qt::Key_Home);
        Type(c.keys);
        EXPECT_EQ(picker.Value(), c.after) << c.keys.toStdString();
        EXPECT_EQ(picker.text(), picker.date().toString(QStringLiteral("dd.MM.yyyy")));
    }
}

TEST_F(DTPickerTest, TheDayThatWaitedIsForgottenWithAnotherDate) {
    picker.SetValue(QDate(2001, 2, 28));
    Type(QStringLiteral("31"));
    picker.setDate(QDate(2001, 6, 5));
    Type(QStringLiteral("07"));
    EXPECT_EQ(picker.Value(), QDate(2001, 7, 5));
}

TEST_F(DTPickerTest, LeavingTakesOverWhatWasTyped) {
    QLineEdit next(&window);
    next.show();
    picker.SetValue(QDate(2006, 5, 15));
    QTest::keyClick(&picker, Qt::Key_Home);
    Type(QStringLiteral("3>1"));
    QTest::keyClick(&picker, Qt::Key_Tab);
    EXPECT_TRUE(next.hasFocus()) << "Tab leaves the field at once";
    EXPECT_EQ(picker.date(), QDate(2006, 1, 3));
}

TEST_F(DTPickerTest, ARangeOfCenturies) {
    for (const QDate date : {forms::FirstControlDate(), forms::LastControlDate()}) {
        picker.SetValue(date);
        EXPECT_EQ(picker.Value(), date);
        const QDate beyond = date.addDays(date == forms::FirstControlDate() ? -1 : 1);
        EXPECT_EQ(test::FailureOf([&] { picker.SetValue(beyond); }), forms::DateOutOfRange)
            << beyond.toString(Qt::ISODate).toStdString();
    }
    EXPECT_EQ(forms::FirstControlDate(), QDate(1753, 1, 1));
    EXPECT_EQ(forms::LastControlDate(), QDate(9999, 12, 31));
}

} // namespace
