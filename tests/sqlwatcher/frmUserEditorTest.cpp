#include "platform/forms/FlexGrid.h"
#include "platform/forms/Twips.h"
#include "tests/support/WindowTest.h"

#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QTimer>
#include <QWindow>

namespace {

const QString Head = QStringLiteral("frmUserEditor функция Form_KeyDown:");

class frmUserEditorTest : public test::WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        Choose("mnuSettingsSQLVIEW");
        window = Last("frmUserEditor");
    }
    QPlainTextEdit& Editor() { return Control<QPlainTextEdit>(window, "txtSQLEditor"); }
    forms::FlexGrid& Grid() { return Control<forms::FlexGrid>(window, "gridSQLEditor"); }
    void RunText(const QString& text) {
        Fill(*Editor().viewport(), text);
        Press(Qt::Key_F9);
    }
    /// The rows parted by " / ", the header first.
    QString Result() {
        QStringList names;
        for (int column = 0; column < Grid().Cols(); ++column)
            names += Grid().TextMatrix(0, column);
        return (QStringList(names.join(u'|')) + Listed(Grid())).join(QStringLiteral(" / "));
    }

    std::shared_ptr<forms::Form> window;
};

TEST_F(frmUserEditorTest, ShowsNamesRowsAndBlanksForNull) {
    EXPECT_EQ(Result(), QStringLiteral(" / ")) << "no column before the first statement";
    AddCard(7, QStringLiteral("Ёлкин"), QStringLiteral(""));
    const std::pair<const char*, const char*> rows[] = {
        {"SELECT a01clid, A01LAST, a01frst, a01midl, a01clid + 1 FROM a01",
         "a01clid|a01last|a01frst|a01midl|Expr1000 / 7|Ёлкин|||8"},
        {"SELECT t01cval FROM t01 WHERE t01code > 2 ORDER BY t01code DESC",
         "t01cval / Основной телефон / Рабочий телефон"},
        {"SELECT * FROM a03", "a03evid|a03evnm|a03evdt|a03evpr / |||"},
        {"SELECT 'а\u00a0б' FROM v00", "Expr1000 / а\u00a0б"},
    };
    for (const auto& [text, result] : rows) {
        RunText(QString::fromUtf8(text));
        EXPECT_EQ(Result(), QString::fromUtf8(result));
    }
    RunText(QStringLiteral("SELECT TOP 40000 x.t03rcid, y.t03cval FROM t03 AS x, t03 AS y"));
    EXPECT_EQ(Grid().Rows(), 40001) << "a long result is complete";
    EXPECT_NE(Grid().TextMatrix(40000, 1), QString());
}

TEST_F(frmUserEditorTest, ASelectionRunsAloneFromAnywhere) {
    Fill(*Editor().viewport(), QStringLiteral("SELECT 'все' FROM v00;SELECT v00vrid"));
    Press(Qt::Key_Return);
    Type(QStringLiteral("FROM v00"));
    auto cursor = Editor().textCursor();
    cursor.setPosition(static_cast<int>(Editor().toPlainText().indexOf(u';')) + 1);
    cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    Editor().setTextCursor(cursor);
    Grid().setFocus();
    Press(Qt::Key_F9, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(Result(), QStringLiteral("v00vrid / 3"));
}

TEST_F(frmUserEditorTest, WhatCannotRunIsToldAndLeavesTheOldResult) {
    RunText(QStringLiteral("SELECT v00vrid FROM v00"));
    const QString old = Result();
    const std::pair<QString, int> cases[] = {
        {QString(), 3078},
        {QStringLiteral("SELECT a99 FROM a01"), 3061},
        {QStringLiteral("DROP TABLE t03"), 3219},
    };
    for (const auto& [text, number] : cases) {
        SCOPED_TRACE(text.toStdString());
        test::Answers answers;
        answers.Failure(Head, number, forms::Icon::Exclamation);
        RunText(text);
        EXPECT_EQ(Result(), old);
        EXPECT_EQ(Editor().toPlainText(), text);
    }
    EXPECT_EQ(Row(QStringLiteral("SELECT COUNT(*) FROM t03")), QStringLiteral("1913"));
}

// Esc that comes while a statement runs ends it. Nothing else that comes meanwhile does anything.
TEST_F(frmUserEditorTest, EscStopsARunningStatement) {
    RunText(QStringLiteral("SELECT v00vrid FROM v00"));
    const QString old = Result();
    const QString text =
        QStringLiteral("SELECT x.t03cval FROM t03 AS x, t03 AS y, t03 AS z ORDER BY y.t03cval");
    Fill(*Editor().viewport(), text);
    QWidget* const field = QApplication::focusWidget();
    const auto post = [](QObject* receiver, int key, const QString& typed = {}) {
        QCoreApplication::postEvent(receiver, new QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier, typed));
    };
    post(field, Qt::Key_Z, QStringLiteral("z"));
    post(field, Qt::Key_F9);
    QCoreApplication::postEvent(
        Editor().viewport(),
        new QMouseEvent(QEvent::MouseButtonPress, {}, {}, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier));
    QCoreApplication::postEvent(&FrameOf(window), new QCloseEvent);
    bool ranMeanwhile = false;
    QTimer::singleShot(1, &Editor(), [&] { ranMeanwhile = QApplication::activeModalWidget() == nullptr; });
    post(field->window()->windowHandle(), Qt::Key_Escape);

    test::Answers answers;
    answers.BoxStarting(test::ErrorStart(Head, 32001) + QStringLiteral("Операция отменена пользователем"),
                        forms::Icon::Exclamation);
    QTest::keyClick(field, Qt::Key_F9);
    EXPECT_FALSE(ranMeanwhile);
    EXPECT_TRUE(Editor().textCursor().atEnd()) << "where no click has moved it";
    ASSERT_TRUE(window->IsLoaded());
    EXPECT_EQ(Result(), old);
    EXPECT_EQ(Editor().toPlainText(), text);
}

TEST_F(frmUserEditorTest, TheResizeRule) {
    FrameOf(window).resize(800, 600); // no column yet: no harm
    EXPECT_EQ(forms::ToTwips(Grid().width()), window->Width() - 390);
    EXPECT_EQ(forms::ToTwips(Grid().height()), window->Height() - 2910);
    EXPECT_EQ(Editor().width(), Grid().width());
    RunText(QStringLiteral("SELECT 1, 2, 3 FROM v00"));
    const int last = window->Width() - 390 - 400 - 2 * forms::FlexGrid::DefaultColWidth;
    EXPECT_EQ(Grid().ColWidth(2), last);
    FrameOf(window).resize(120, 50);
    EXPECT_NEAR(window->Height(), 4000, forms::TwipsPerPixel);
    EXPECT_EQ(Grid().ColWidth(2), last);
}

} // namespace
