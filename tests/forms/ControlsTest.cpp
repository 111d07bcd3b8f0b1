// Lists, field colours, the apostrophe rule, the busy pointer.

#include "platform/forms/Controls.h"

#include "platform/forms/Texts.h"
#include "platform/runtime/Failure.h"
#include "tests/support/Keys.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QTest>

using forms::ListBox;

class ListBoxTest : public testing::Test {
protected:
    ListBoxTest() {
        for (const char* text : {"Адыгея", "Алтай", "Москва"})
            list.AddItem(QString::fromUtf8(text));
        QObject::connect(&list, &ListBox::Click, [this] { ++clicks; });
        list.show();
    }

    int TakeClicks() { return std::exchange(clicks, 0); }
    QPoint PlaceOf(int row) { return list.visualItemRect(list.item(row)).center(); }

    ListBox list;
    int clicks = 0;
};

TEST_F(ListBoxTest, SelectionByProgram) {
    EXPECT_EQ(list.ListIndex(), -1);
    EXPECT_EQ(list.List(-1), QString());
    EXPECT_EQ(list.List(3), QString());
    list.SetListIndex(1);
    EXPECT_EQ(TakeClicks(), 1);
    list.SetListIndex(1);
    EXPECT_EQ(TakeClicks(), 0) << "no change, no Click";
    EXPECT_EQ(list.List(list.ListIndex()), QStringLiteral("Алтай"));
    for (const int impossible : {3, -2})
        EXPECT_THROW(list.SetListIndex(impossible), runtime::Failure);
    list.SetListIndex(-1);
    EXPECT_EQ(TakeClicks(), 1);
    EXPECT_EQ(list.ListIndex(), -1);
    list.SetListIndex(2);
    TakeClicks();
    list.Clear();
    EXPECT_EQ(TakeClicks(), 0);
    EXPECT_EQ(list.ListIndex(), -1);
    EXPECT_THROW(list.SetListIndex(0), runtime::Failure);
}

TEST_F(ListBoxTest, SelectionByTheUser) {
    QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
    QApplication::sendEvent(&list, &focus);
    EXPECT_EQ(list.ListIndex(), -1) << "the focus selects nothing";
    EXPECT_EQ(TakeClicks(), 0);
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_EQ(list.ListIndex(), 0) << "the first arrow key the first entry";
    EXPECT_EQ(TakeClicks(), 1);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, PlaceOf(2));
    EXPECT_EQ(list.ListIndex(), 2);
    EXPECT_EQ(TakeClicks(), 1);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, PlaceOf(2));
    EXPECT_EQ(TakeClicks(), 1) << "a click on the selected entry is one too";
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier, PlaceOf(2));
    EXPECT_EQ(list.ListIndex(), 2);
}

TEST_F(ListBoxTest, TypingSearchesUnlessSomebodyListens) {
    test::Type(&list, QStringLiteral("м"));
    EXPECT_EQ(list.ListIndex(), 2);
    QString typed;
    QObject::connect(&list, &ListBox::KeyPress, [&typed](const QString& text) { typed += text; });
    test::Type(&list, QStringLiteral("а7"));
    EXPECT_EQ(typed, QStringLiteral("а7"));
    EXPECT_EQ(list.ListIndex(), 2);
    QTest::keyClick(&list, Qt::Key_Home);
    EXPECT_EQ(list.ListIndex(), 0) << "keys that print nothing move as ever";
    EXPECT_EQ(typed, QStringLiteral("а7"));
}

TEST(ControlsTest, FieldColoursAreReadableInEveryTheme) {
    const QPalette before = QApplication::palette();
    QWidget form;
    auto* field = forms::MakeTextBox(QStringLiteral("txt"), 0, &form);
    QPalette dark(QColor(0x30, 0x30, 0x30));
    for (const QPalette& theme : {before, dark}) {
        QApplication::setPalette(theme);
        QCoreApplication::processEvents();
        forms::PaintField(field, true);
        EXPECT_EQ(field->palette().color(QPalette::Base), QColor(Qt::white));
        EXPECT_LT(field->palette().color(QPalette::Text).lightness(), 60);
        forms::PaintField(field, false);
        EXPECT_EQ(field->palette().color(QPalette::Base), form.palette().color(QPalette::Window));
        EXPECT_EQ(field->palette().color(QPalette::Text), form.palette().color(QPalette::WindowText));
    }
    QApplication::setPalette(before);
    QCoreApplication::processEvents();
    EXPECT_EQ(field->palette().color(QPalette::Base), form.palette().color(QPalette::Window))
        << "a field follows a change of the theme";
}

TEST(ControlsTest, ApostropheRuleAndNames) {
    QWidget form;
    auto* label = forms::MakeLabel(QStringLiteral("Label1"), QStringLiteral("&Имя:"), &form);
    auto* field = forms::MakeTextBox(QStringLiteral("x"), 5, &form);
    forms::NameField(field, QStringLiteral("txtName"), label);
    EXPECT_EQ(field->objectName(), QStringLiteral("txtName"));
    EXPECT_EQ(field->accessibleName(), QStringLiteral("Имя:"));
    EXPECT_EQ(label->buddy(), field);
    EXPECT_EQ(field->maxLength(), 5);
    field->setText(QStringLiteral("'а''"));
    field->setCursorPosition(2);
    forms::ReplaceApostrophes(field);
    EXPECT_EQ(field->text(), QStringLiteral("^а^^"));
    EXPECT_EQ(field->cursorPosition(), 2);
}

class TextBoxTest : public testing::Test {
protected:
    TextBoxTest() {
        box->setMaxLength(10);
        form.show();
        box->setFocus();
    }

    using Way = std::function<void(const QString&)>;
    /// The ways by which a text comes into the box at its cursor, or in place of all of it.
    std::vector<std::pair<const char*, Way>> Ways() {
        return {
            {"paste",
             [this](const QString& text) {
                 QGuiApplication::clipboard()->setText(text);
                 QTest::keySequence(box, QKeySequence::Paste);
             }},
            {"menu",
             [this](const QString& text) {
                 QGuiApplication::clipboard()->setText(text);
                 box->paste();
             }},
            {"drop",
             [this](const QString& text) {
                 test::Drop(*box, QPoint(box->width() - 2, box->height() / 2), text);
             }},
            {"input method",
             [this](const QString& text) {
                 QInputMethodEvent input;
                 input.setCommitString(text);
                 QApplication::sendEvent(box, &input);
             }},
            {"assistive tool",
             [this](const QString& text) {
                 auto* interface = QAccessible::queryAccessibleInterface(box);
                 interface->setText(QAccessible::Value, box->text() + text);
             }},
        };
    }

    QWidget form;
    forms::TextBox* box = forms::MakeTextBox(QStringLiteral("txt"), 0, &form);
};

TEST_F(TextBoxTest, WhateverComesInIsOneLineOfWholeCharacters) {
    struct Case {
        QString before;
        QString text;
        QString after;
    };
    const Case cases[] = {
        {"", "Иванов\r\n", "Иванов"},
        {"", "\n\tИванов", "Иванов"},
        {"", QStringLiteral("а\r\nб\tв\u2028г\u0085"), "а б в г"},
        {"", "а \n \n б", "а б"},
        {"", " а  б ", " а  б "}, // blanks are left alone
        {"", "а'\"б", "а'\"б"},
        {"а ", "б", "а б"},
        {"", "123456789😀", "123456789"},
        {"", "12345678😀", "12345678😀"},
        {"123456789", "😀", "123456789"},
        {"", QStringLiteral("а") + QChar(0xd83d) + u'б' + QChar(0xde00), "аб"},
        {"", "😀😀", "😀😀"},
        {"", "\n", ""},
    };
    for (const auto& [name, bring] : Ways()) {
        for (const Case& c : cases) {
            box->setText(c.before);
            bring(c.text);
            EXPECT_EQ(box->text(), c.after) << name << ": " << c.text.toStdString();
        }
    }
    box->clear();
    Ways().front().second(QStringLiteral("\n12345\r\n7890\n"));
    EXPECT_EQ(box->text(), QStringLiteral("12345 7890")) << "on one line before it is cut";
    box->undo();
    EXPECT_EQ(box->text(), QString());
}

TEST_F(TextBoxTest, APathKeepsTheLineEndsOfAChosenFileAlone) {
    box->HoldPath();
    box->setText(QStringLiteral("/а\nб"));
    EXPECT_EQ(box->text(), QStringLiteral("/а\nб"));
    for (const auto& [name, bring] : Ways()) {
        if (name == std::string("assistive tool"))
            continue;
        box->clear();
        bring(QStringLiteral("/а\nб\n"));
        EXPECT_EQ(box->text(), QStringLiteral("/а б")) << name;
    }
}

TEST_F(TextBoxTest, WhatTheFileHoldsStaysUntilItIsEdited) {
    int edited = 0;
    QObject::connect(box, &forms::TextBox::Edited, [&edited] { ++edited; });
    struct Case {
        QString stored;
        QString shown;
    };
    const Case cases[] = {
        {"а\nб", "а\nб"},
        {"123456789'1", "123456789'"},
        {"123456789😀", "123456789"},
        {QString(10'000'000, u'x'), QString(10, u'x')},
    };
    for (const Case& c : cases) {
        box->ShowStored(c.stored);
        forms::ReplaceApostrophes(box);
        EXPECT_EQ(box->text(), c.shown);
        EXPECT_EQ(box->Value(), c.stored);
        EXPECT_EQ(box->ShowsPart(), c.stored != c.shown);
        EXPECT_EQ(std::exchange(edited, 0), 0);
        box->setCursorPosition(box->text().size());
        QTest::keyClick(box, Qt::Key_Backspace);
        EXPECT_FALSE(box->ShowsPart());
        EXPECT_EQ(box->Value(), box->text());
        EXPECT_EQ(std::exchange(edited, 0), 1);
    }
}

TEST_F(ListBoxTest, OfALongEntryTheBeginningIsShown) {
    const QString text(10'000'000, u'x');
    list.AddItem(text);
    EXPECT_EQ(list.item(3)->text(), QString(forms::MostShown, u'x') + u'…');
    EXPECT_EQ(list.List(3), text);
}

TEST(ControlsTest, BusyPointerEndsOnEveryWay) {
    const auto busy = [] { return QGuiApplication::overrideCursor() != nullptr; };
    {
        forms::BusyPointer pointer;
        EXPECT_TRUE(busy());
        pointer.Release();
        pointer.Release();
        EXPECT_FALSE(busy());
        pointer.Renew();
        EXPECT_TRUE(busy());
    }
    EXPECT_FALSE(busy());
}
