#include "platform/forms/FlexGrid.h"
#include "platform/forms/Twips.h"
#include "tests/support/WindowTest.h"

#include <QLabel>
#include <QMdiSubWindow>
#include <QPlainTextEdit>
#include <QTimer>
#include <QWindow>

namespace {

constexpr auto Head = u"frmUserEditor функция Form_KeyDown:\r\nпроизошла ошибка №";

class frmUserEditorTest : public test::WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        Choose("mnuSettingsSQLVIEW");
        window = Last("frmUserEditor");
    }
    QPlainTextEdit& Editor() { return Control<QPlainTextEdit>(window, "txtSQLEditor"); }
    forms::FlexGrid& Grid() { return Control<forms::FlexGrid>(window, "gridSQLEditor"); }
    void Write(const QString& text) { Fill(*Editor().viewport(), text); }
    void RunText(const QString& text) {
        Write(text);
        Press(Qt::Key_F9);
    }
    /// Rows joined by '|', the header first.
    QStringList Result() {
        QStringList rows;
        for (int row = 0; row < Grid().Rows(); ++row) {
            QStringList cells;
            for (int column = 0; column < Grid().Cols(); ++column)
                cells += Grid().TextMatrix(row, column);
            rows += cells.join(u'|');
        }
        return rows;
    }
    static QString ErrorHead(int number) { return QString::fromUtf16(Head) + QString::number(number) + u' '; }

    std::shared_ptr<forms::Form> window;
};

TEST_F(frmUserEditorTest, OpensEmptyWithAFixedWidthFont) {
    EXPECT_EQ(window->Caption(), QStringLiteral("SQL наблюдатель"));
    EXPECT_EQ(Grid().Cols(), 0);
    EXPECT_EQ(Grid().Rows(), 2);
    const QFontMetrics font(Editor().font());
    EXPECT_EQ(font.horizontalAdvance(QStringLiteral("iiii")), font.horizontalAdvance(QStringLiteral("WWЩЩ")));
    Choose("mnuSettingsSQLVIEW");
    EXPECT_EQ(Windows("frmUserEditor").size(), 2U);
}

TEST_F(frmUserEditorTest, ShowsNamesRowsAndBlanksForNull) {
    Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (7, 'Ёлкин', '')"));
    RunText(QStringLiteral("SELECT a01clid, A01LAST, a01frst, a01midl, a01clid + 1 FROM a01"));
    EXPECT_EQ(Result(), QStringList({QStringLiteral("a01clid|a01last|a01frst|a01midl|Expr1000"),
                                     QStringLiteral("7|Ёлкин|||8")}));
    RunText(QStringLiteral("SELECT t01cval FROM t01 WHERE t01code > 2 ORDER BY t01code DESC"));
    EXPECT_EQ(Result(), QStringList({QStringLiteral("t01cval"), QStringLiteral("Основной телефон"),
                                     QStringLiteral("Рабочий телефон")}));
    RunText(QStringLiteral("SELECT * FROM a03"));
    EXPECT_EQ(Result(),
              QStringList({QStringLiteral("a03evid|a03evnm|a03evdt|a03evpr"), QStringLiteral("|||")}));
    RunText(QStringLiteral("v00"));
    EXPECT_EQ(Result(), QStringList({QStringLiteral("v00vrid"), QStringLiteral("3")}));
}

TEST_F(frmUserEditorTest, F9RunsFromAnywhereWithAnyShiftState) {
    for (const auto modifiers :
         {Qt::KeyboardModifiers(Qt::NoModifier), Qt::KeyboardModifiers(Qt::ShiftModifier),
          Qt::ControlModifier | Qt::AltModifier}) {
        Write(QStringLiteral("SELECT 1 FROM v00"));
        Press(Qt::Key_F9, modifiers);
        EXPECT_EQ(Grid().Cols(), 1);
        Write(QStringLiteral("SELECT 1, 2 FROM v00"));
        Grid().setFocus();
        Press(Qt::Key_F9, modifiers);
        EXPECT_EQ(Result(), QStringList({QStringLiteral("Expr1000|Expr1001"), QStringLiteral("1|2")}));
    }
    Write(QStringLiteral("SELECT 5 FROM v00"));
    Press(Qt::Key_F8);
    EXPECT_EQ(Grid().Cols(), 2);
}

TEST_F(frmUserEditorTest, ASelectionRunsAlone) {
    Write(QStringLiteral("SELECT 'все' FROM v00;SELECT v00vrid"));
    Press(Qt::Key_Return);
    Type(QStringLiteral("FROM v00"));
    auto cursor = Editor().textCursor();
    cursor.setPosition(static_cast<int>(Editor().toPlainText().indexOf(u';')) + 1);
    cursor.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    Editor().setTextCursor(cursor);
    Press(Qt::Key_F9);
    EXPECT_EQ(Result(), QStringList({QStringLiteral("v00vrid"), QStringLiteral("3")}));

    Write(QStringLiteral("SELECT 1 FROM v00   "));
    Press(Qt::Key_Left, Qt::ShiftModifier);
    test::Answers answers;
    answers.BoxStarting(ErrorHead(3078), forms::Icon::Exclamation);
    Press(Qt::Key_F9);
    EXPECT_EQ(Result().value(0), QStringLiteral("v00vrid"));
}

TEST_F(frmUserEditorTest, TheTextGoesToTheEngineUnchanged) {
    Write(QStringLiteral("SELECT 'О''Нил', 'а\u00a0б' FROM v00"));
    Press(Qt::Key_F9);
    EXPECT_EQ(Result().value(1), QStringLiteral("О'Нил|а\u00a0б"));
}

TEST_F(frmUserEditorTest, WhatCannotRunIsToldAndLeavesTheOldResult) {
    RunText(QStringLiteral("SELECT v00vrid FROM v00"));
    const QStringList old = Result();
    const std::vector<std::pair<QString, int>> cases = {
        {QString(), 3078},
        {QStringLiteral("SELEC 1"), 3078},
        {QStringLiteral("SELECT * FROM a99"), 3078},
        {QStringLiteral("SELECT a99 FROM a01"), 3061},
        {QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('А', '01.01.2001', 0)"), 3219},
        {QStringLiteral("DELETE FROM t01"), 3219},
        {QStringLiteral("DROP TABLE t03"), 3219},
    };
    for (const auto& [text, number] : cases) {
        SCOPED_TRACE(text.toStdString());
        test::Answers answers;
        answers.BoxStarting(ErrorHead(number), forms::Icon::Exclamation);
        RunText(text);
        EXPECT_EQ(Result(), old);
        EXPECT_EQ(Editor().toPlainText(), text);
    }
    EXPECT_EQ(Rows(QStringLiteral("SELECT (SELECT COUNT(*) FROM a03), (SELECT COUNT(*) FROM t01), "
                                  "(SELECT COUNT(*) FROM t03)")),
              QStringList(QStringLiteral("0|4|1913")));
}

TEST_F(frmUserEditorTest, ALongResultIsComplete) {
    RunText(QStringLiteral("SELECT TOP 40000 x.t03rcid, y.t03cval FROM t03 AS x, t03 AS y"));
    EXPECT_EQ(Grid().Rows(), 40001);
    EXPECT_NE(Grid().TextMatrix(40000, 1), QString());
    RunText(QStringLiteral("SELECT COUNT(*) FROM t03"));
    EXPECT_EQ(Result().value(1), QStringLiteral("1913"));
    EXPECT_EQ(Grid().Rows(), 2);
}

// Esc that comes while a statement runs ends it. Nothing else that comes meanwhile does anything.
TEST_F(frmUserEditorTest, EscStopsARunningStatement) {
    RunText(QStringLiteral("SELECT v00vrid FROM v00"));
    const QStringList old = Result();
    for (const char* list : {"COUNT(*) %1", "x.t03cval %1 ORDER BY y.t03cval", "x.t03rcid %1"}) {
        const QString text = QStringLiteral("SELECT ") +
                             QString::fromUtf8(list).arg(QStringLiteral("FROM t03 AS x, t03 AS y, t03 AS z"));
        SCOPED_TRACE(text.toStdString());
        Write(text);
        QWidget* const field = QApplication::focusWidget();
        const auto post = [](QObject* receiver, int key, const QString& typed = {}) {
            QCoreApplication::postEvent(receiver,
                                        new QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier, typed));
        };
        post(field, Qt::Key_Z, QStringLiteral("z"));
        post(field, Qt::Key_F9);
        QCoreApplication::postEvent(&FrameOf(window), new QCloseEvent);
        bool ranMeanwhile = false;
        QTimer::singleShot(1, &Editor(),
                           [&] { ranMeanwhile = QApplication::activeModalWidget() == nullptr; });
        post(field->window()->windowHandle(), Qt::Key_Escape);

        test::Answers answers;
        answers.BoxStarting(ErrorHead(32001) + QStringLiteral("Операция отменена пользователем"),
                            forms::Icon::Exclamation);
        QTest::keyClick(field, Qt::Key_F9);
        EXPECT_FALSE(ranMeanwhile);
        ASSERT_TRUE(window->IsLoaded());
        EXPECT_EQ(Result(), old);
        EXPECT_EQ(Editor().toPlainText(), text);
    }
    RunText(QStringLiteral("SELECT 1 FROM v00"));
    EXPECT_EQ(Result().value(1), QStringLiteral("1"));
}

TEST_F(frmUserEditorTest, TheResizeRule) {
    QMdiSubWindow& frame = FrameOf(window);
    frame.resize(800, 600); // no column yet: no harm
    EXPECT_EQ(forms::ToTwips(Grid().width()), window->Width() - 390);
    EXPECT_EQ(forms::ToTwips(Grid().height()), window->Height() - 2910);
    EXPECT_EQ(Editor().width(), Grid().width());
    const auto& hint = Control<QLabel>(window, "Label3");
    EXPECT_EQ(hint.geometry().right(), Grid().geometry().right());

    RunText(QStringLiteral("SELECT v00vrid FROM v00"));
    EXPECT_EQ(Grid().ColWidth(0), window->Width() - 390 - 400);
    RunText(QStringLiteral("SELECT 1, 2, 3 FROM v00"));
    EXPECT_EQ(Grid().ColWidth(0), window->Width() - 390 - 400) << "a column keeps the width that it has";

    Choose("mnuSettingsSQLVIEW");
    window = Last("frmUserEditor");
    FrameOf(window).resize(800, 600);
    RunText(QStringLiteral("SELECT 1, 2, 3 FROM v00"));
    EXPECT_EQ(Grid().ColWidth(0), forms::FlexGrid::DefaultColWidth);
    const int last = window->Width() - 390 - 2 * forms::FlexGrid::DefaultColWidth - 400;
    EXPECT_EQ(Grid().ColWidth(2), last);

    QMdiSubWindow& second = FrameOf(window);
    second.resize(120, 50);
    EXPECT_NEAR(window->Height(), 4000, forms::TwipsPerPixel);
    EXPECT_EQ(forms::ToTwips(Grid().width()), std::max(window->Width() - 390, 0));
    EXPECT_EQ(Grid().ColWidth(2), last);
}

} // namespace
