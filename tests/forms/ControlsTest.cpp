// Lists, text boxes, field colours, the apostrophe rule.

#include "platform/forms/Controls.h"

#include "tests/support/Expect.h"
#include "tests/support/Keys.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QTest>

#include <span>

TEST(ListBoxTest, Selection) {
    forms::ListBox list;
    for (const char* text : {"Адыгея", "Алтай", "Москва"})
        list.AddItem(QString::fromUtf8(text));
    list.show();
    int clicks = 0;
    QObject::connect(&list, &forms::ListBox::Click, [&] { ++clicks; });
    const auto click = [&](Qt::KeyboardModifiers modifiers) {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, modifiers,
                          list.visualItemRect(list.item(2)).center());
    };
    QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
    const std::tuple<const char*, std::function<void()>, int, int> steps[] = {
        {"focus", [&] { QApplication::sendEvent(&list, &focus); }, -1, 0},
        {"first arrow", [&] { QTest::keyClick(&list, Qt::Key_Down); }, 0, 1},
        {"click", [&] { click({}); }, 2, 1},
        {"click with Ctrl", [&] { click(Qt::ControlModifier); }, 2, 1},
        {"none", [&] { list.SetListIndex(-1); }, -1, 1},
        {"a letter searches",
         [&] {
             QTest::sendKeyEvent(QTest::Click, &list, Qt::Key_unknown, QStringLiteral("м"), Qt::NoModifier);
         },
         2, 1},
        {"empty", [&] { list.Clear(); }, -1, 0},
    };
    for (const auto& [what, act, index, told] : steps) {
        clicks = 0;
        act();
        EXPECT_EQ(list.ListIndex(), index) << what;
        EXPECT_EQ(clicks, told) << what;
    }
}

TEST(ControlsTest, FieldColoursAreReadableInEveryTheme) {
    const QPalette before = QApplication::palette();
    QWidget form;
    auto* grey = forms::MakeTextBox(QStringLiteral("txt"), 0, &form);
    auto* white = forms::MakeTextBox(QStringLiteral("txt2"), 0, &form);
    forms::PaintField(grey, false);
    forms::PaintField(white, true);
    for (const QPalette& theme : {QPalette(QColor(0x30, 0x30, 0x30)), before}) {
        QApplication::setPalette(theme);
        QCoreApplication::processEvents();
        EXPECT_EQ(grey->palette().color(QPalette::Base), form.palette().color(QPalette::Window));
        EXPECT_EQ(grey->palette().color(QPalette::Text), form.palette().color(QPalette::WindowText));
        EXPECT_EQ(white->palette().color(QPalette::Base), QColor(Qt::white));
        EXPECT_LT(white->palette().color(QPalette::Text).lightness(), 60);
    }
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

    QWidget form;
    forms::TextBox* box = forms::MakeTextBox(QStringLiteral("txt"), 10, &form);
};

TEST_F(TextBoxTest, AnApostropheIsReplacedWhereItStands) {
    box->setText(QStringLiteral("'а''"));
    box->setCursorPosition(2);
    forms::ReplaceApostrophes(box);
    EXPECT_EQ(box->text(), QStringLiteral("^а^^"));
    EXPECT_EQ(box->cursorPosition(), 2);
}

TEST_F(TextBoxTest, WhateverComesInIsOneLineOfWholeCharacters) {
    // The ways by which a text comes into the box at its cursor, which is the end.
    const std::pair<const char*, std::function<void(const QString&)>> ways[] = {
        {"paste", [this](const QString& text) { Paste(text); }},
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
        {"program or assistive tool", [this](const QString& text) { box->setText(box->text() + text); }},
    };
    const std::tuple<QString, QString, QString> cases[] = {
        {"", "\n\tИванов\r\n", "Иванов"},
        {"", QStringLiteral("а\r\nб\tв\u2028г"), "а б в г"},
        {"", " а'  \"б ", " а'  \"б "}, // blanks are left alone
        {"123456789", "😀", "123456789"},
        {"", "12345678😀", "12345678😀"},
        {"", QStringLiteral("а") + QChar(0xd83d) + u'б' + QChar(0xde00), "аб"},
    };
    for (const auto& [name, bring] : ways) {
        for (const auto& [before, text, after] : cases) {
            box->setText(before);
            bring(text);
            EXPECT_EQ(box->text(), after) << name << ": " << text.toStdString();
        }
    }
    for (const auto& [name, bring] : std::span(ways).first(3)) { // the user's
        box->setText(QStringLiteral("12345"));
        bring(QStringLiteral("\n1\r\n234\n"));
        EXPECT_EQ(box->text(), QStringLiteral("123451 234")) << "on one line before it is cut: " << name;
    }
    box->selectAll();
    Paste(QStringLiteral("12345 7890"));
    EXPECT_EQ(box->text(), QStringLiteral("12345 7890"));
}

TEST_F(TextBoxTest, WhatTheFileHoldsStaysUntilItIsEdited) {
    for (const auto& [stored, shown] : {std::pair<QString, QString>{"а\nб", "а\nб"},
                                        {"123456789'1", "123456789'"},
                                        {QString(10'000'000, u'x'), QString(10, u'x')}}) {
        box->ShowStored(stored);
        forms::ReplaceApostrophes(box);
        EXPECT_EQ(box->text(), shown);
        EXPECT_EQ(box->Value(), stored);
        EXPECT_EQ(box->ShowsPart(), stored != shown);
        QTest::keyClick(box, Qt::Key_Backspace);
        EXPECT_EQ(box->Value(), box->text());
    }
}
