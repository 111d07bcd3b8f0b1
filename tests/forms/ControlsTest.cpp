// Lists, text boxes, field colours, the apostrophe rule.

#include "platform/forms/Controls.h"

#include "platform/forms/Texts.h"
#include "tests/support/Expect.h"
#include "tests/support/Keys.h"

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

    void Click(int row, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, modifiers,
                          list.visualItemRect(list.item(row)).center());
    }

    ListBox list;
    int clicks = 0;
};

TEST_F(ListBoxTest, Selection) {
    QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
    const struct {
        const char* what;
        std::function<void()> act;
        int index;
        int clicks;
    } steps[] = {
        {"focus", [&] { QApplication::sendEvent(&list, &focus); }, -1, 0},
        {"first arrow", [&] { QTest::keyClick(&list, Qt::Key_Down); }, 0, 1},
        {"program", [&] { list.SetListIndex(1); }, 1, 1},
        {"program, no change", [&] { list.SetListIndex(1); }, 1, 0},
        {"click", [&] { Click(2); }, 2, 1},
        {"click on the selected", [&] { Click(2); }, 2, 1},
        {"click with Ctrl", [&] { Click(2, Qt::ControlModifier); }, 2, 1},
        {"too great", [&] { EXPECT_NE(test::FailureOf([&] { list.SetListIndex(3); }), 0); }, 2, 0},
        {"too small", [&] { EXPECT_NE(test::FailureOf([&] { list.SetListIndex(-2); }), 0); }, 2, 0},
        {"none", [&] { list.SetListIndex(-1); }, -1, 1},
        {"a letter searches", [&] { test::Type(&list, QStringLiteral("м")); }, 2, 1},
        {"empty", [&] { list.Clear(); }, -1, 0},
        {"too great", [&] { EXPECT_NE(test::FailureOf([&] { list.SetListIndex(0); }), 0); }, -1, 0},
    };
    for (const auto& step : steps) {
        clicks = 0;
        step.act();
        EXPECT_EQ(list.ListIndex(), step.index) << step.what;
        EXPECT_EQ(clicks, step.clicks) << step.what;
    }
    EXPECT_EQ(list.List(-1), QString());
    EXPECT_EQ(list.List(3), QString());
}

TEST_F(ListBoxTest, TypingSearchesUnlessSomebodyListens) {
    QString typed;
    QObject::connect(&list, &ListBox::KeyPress, [&typed](const QString& text) { typed += text; });
    test::Type(&list, QStringLiteral("а7"));
    EXPECT_EQ(typed, QStringLiteral("а7"));
    EXPECT_EQ(list.ListIndex(), -1);
    QTest::keyClick(&list, Qt::Key_Home);
    EXPECT_EQ(list.ListIndex(), 0) << "keys that print nothing move as ever";
    EXPECT_EQ(typed, QStringLiteral("а7"));
}

TEST_F(ListBoxTest, OfALongEntryTheBeginningIsShown) {
    const QString text(10'000'000, u'x');
    list.AddItem(text);
    EXPECT_EQ(list.item(3)->text(), QString(forms::MostShown, u'x') + u'…');
    EXPECT_EQ(list.List(3), text);
}

TEST(ControlsTest, FieldColoursAreReadableInEveryTheme) {
    const QPalette before = QApplication::palette();
    QWidget form;
    auto* field = forms::MakeTextBox(QStringLiteral("txt"), 0, &form);
    const auto expectFormColours = [&] {
        EXPECT_EQ(field->palette().color(QPalette::Base), form.palette().color(QPalette::Window));
        EXPECT_EQ(field->palette().color(QPalette::Text), form.palette().color(QPalette::WindowText));
    };
    for (const QPalette& theme : {QPalette(QColor(0x30, 0x30, 0x30)), before}) {
        QApplication::setPalette(theme);
        QCoreApplication::processEvents();
        if (theme == before)
            expectFormColours(); // a field follows a change of the theme
        forms::PaintField(field, true);
        EXPECT_EQ(field->palette().color(QPalette::Base), QColor(Qt::white));
        EXPECT_LT(field->palette().color(QPalette::Text).lightness(), 60);
        forms::PaintField(field, false);
        expectFormColours();
    }
}

TEST(ControlsTest, ApostropheRuleAndNames) {
    QWidget form;
    auto* label = forms::MakeLabel(QStringLiteral("Label1"), QStringLiteral("&Имя:"), &form);
    auto* field = forms::MakeTextBox(QStringLiteral("x"), 5, &form);
    forms::NameField(field, QStringLiteral("txtName"), label);
    EXPECT_EQ(field->objectName(), QStringLiteral("txtName"));
    EXPECT_EQ(field->accessibleName(), QStringLiteral("Имя:"));
    EXPECT_EQ(label->buddy(), field);
    field->setText(QStringLiteral("'а''"));
    field->setCursorPosition(2);
    forms::ReplaceApostrophes(field);
    EXPECT_EQ(field->text(), QStringLiteral("^а^^"));
    EXPECT_EQ(field->cursorPosition(), 2);
}

class TextBoxTest : public testing::Test {
protected:
    TextBoxTest() {
        form.show();
        box->setFocus();
    }

    void Paste(const QString& text) {
        QGuiApplication::clipboard()->setText(text);
        QTest::keySequence(box, QKeySequence::Paste);
    }
    /// The ways by which a text comes into the box at its cursor, which is the end.
    std::vector<std::pair<const char*, std::function<void(const QString&)>>> Ways() {
        return {
            {"paste", [this](const QString& text) { Paste(text); }},
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
    forms::TextBox* box = forms::MakeTextBox(QStringLiteral("txt"), 10, &form);
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
    box->setText(QStringLiteral("123456789"));
    box->selectAll();
    Paste(QStringLiteral("\n12345\r\n7890\n"));
    EXPECT_EQ(box->text(), QStringLiteral("12345 7890")) << "on one line before it is cut";
    box->undo();
    EXPECT_EQ(box->text(), QStringLiteral("123456789"));
}

TEST_F(TextBoxTest, APathKeepsTheLineEndsOfAChosenFileAlone) {
    box->HoldPath();
    box->setText(QStringLiteral("/а\nб"));
    EXPECT_EQ(box->text(), QStringLiteral("/а\nб"));
    box->clear();
    Paste(QStringLiteral("/а\nб\n"));
    EXPECT_EQ(box->text(), QStringLiteral("/а б"));
}

TEST_F(TextBoxTest, WhatTheFileHoldsStaysUntilItIsEdited) {
    int edited = 0;
    QObject::connect(box, &forms::TextBox::Edited, [&edited] { ++edited; });
    for (const auto& [stored, shown] : {std::pair<QString, QString>{"а\nб", "а\nб"},
                                        {"123456789'1", "123456789'"},
                                        {"123456789😀", "123456789"},
                                        {QString(10'000'000, u'x'), QString(10, u'x')}}) {
        box->ShowStored(stored);
        forms::ReplaceApostrophes(box);
        EXPECT_EQ(box->text(), shown);
        EXPECT_EQ(box->Value(), stored);
        EXPECT_EQ(box->ShowsPart(), stored != shown);
        EXPECT_EQ(std::exchange(edited, 0), 0);
        box->setCursorPosition(box->text().size());
        QTest::keyClick(box, Qt::Key_Backspace);
        EXPECT_FALSE(box->ShowsPart());
        EXPECT_EQ(box->Value(), box->text());
        EXPECT_EQ(std::exchange(edited, 0), 1);
    }
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
