// The grid: rows, columns, current row, widths, and what mouse and keyboard do to it.

#include "platform/forms/FlexGrid.h"

#include "platform/forms/Twips.h"
#include "tests/support/Expect.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>

using forms::FlexGrid;

namespace {

class FlexGridTest : public testing::Test {
protected:
    FlexGridTest() {
        grid.resize(500, 300);
        grid.show();
        QObject::connect(&grid, &FlexGrid::ContextMenuRequested, [this](QPoint place) {
            ++menus;
            menuPlace = place;
        });
        QObject::connect(&grid, &FlexGrid::DblClick, [this] { ++doubleClicks; });
    }

    void Fill(int rows, std::vector<int> keyColumns = {}) {
        const FlexGrid::Filling filling(grid, std::move(keyColumns));
        grid.Clear();
        grid.SetRows(rows + 1);
        for (int row = 0; row <= rows; ++row)
            for (int col = 0; col < grid.Cols(); ++col)
                grid.SetTextMatrix(row, col, QStringLiteral("%1/%2").arg(row).arg(col));
    }

    QRect PlaceOf(int row, int col = 0) const { return grid.visualRect(grid.model()->index(row - 1, col)); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&grid, key, modifiers);
    }

    FlexGrid grid{2, 4};
    QAbstractItemModelTester tester{grid.model(), QAbstractItemModelTester::FailureReportingMode::Fatal};
    int menus = 0;
    int doubleClicks = 0;
    QPoint menuPlace;
};

} // namespace

TEST_F(FlexGridTest, RefillKeepsThePlaceOnTheScreen) {
    grid.SetColWidth(3, 15000);
    Fill(200);
    grid.SetRow(150);
    grid.horizontalScrollBar()->setValue(100);
    const auto place = [this] {
        return QPoint(grid.horizontalScrollBar()->value(), grid.verticalScrollBar()->value());
    };
    const QPoint before = place();
    for (const std::vector<int>& keyColumns : {std::vector<int>(), {0}}) {
        Fill(200, keyColumns);
        EXPECT_EQ(place(), before) << keyColumns.size() << " key columns";
    }
}

TEST_F(FlexGridTest, WidthsAreKeptInTwips) {
    grid.SetColWidth(1, 3001);
    Fill(5); // leaves the widths
    EXPECT_EQ(grid.ColWidth(1), 3001);
    EXPECT_EQ(grid.columnWidth(1), 200);
    grid.horizontalHeader()->resizeSection(1, 123); // as a drag of the user does
    EXPECT_EQ(grid.ColWidth(1), forms::ToTwips(123));
}

TEST_F(FlexGridTest, ColumnsAreResizedByKeys) {
    grid.SetTextMatrix(1, 0, QString(60, u'x'));
    const int before = grid.columnWidth(0);
    Key(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_GT(grid.columnWidth(0), before);
    Key(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_GE(grid.columnWidth(0), grid.fontMetrics().horizontalAdvance(QString(60, u'x')));
}

TEST_F(FlexGridTest, Alignment) {
    grid.SetColAlignment(0, FlexGrid::LeftBottom);
    grid.Clear(); // leaves it
    const std::tuple<int, const char*, Qt::Alignment> rows[] = {
        {0, "17", Qt::AlignLeft | Qt::AlignBottom},
        {1, "-17,5", Qt::AlignRight | Qt::AlignVCenter},
        {1, "495-17", Qt::AlignLeft | Qt::AlignVCenter},
    };
    for (const auto& [col, text, alignment] : rows) {
        grid.SetTextMatrix(1, col, QString::fromLatin1(text));
        EXPECT_EQ(Qt::Alignment(grid.model()->index(0, col).data(Qt::TextAlignmentRole).toInt()), alignment)
            << text;
    }
}

TEST_F(FlexGridTest, Mouse) {
    Fill(5);
    QWidget* ground = grid.viewport();
    QWidget* header = grid.horizontalHeader()->viewport();
    QTest::mouseClick(ground, Qt::LeftButton, {}, PlaceOf(3).center());
    QTest::mouseClick(ground, Qt::LeftButton, Qt::ControlModifier, PlaceOf(3).center());
    QTest::mousePress(ground, Qt::RightButton, {}, PlaceOf(5).center());
    EXPECT_EQ(menus, 1) << "on pressing";
    EXPECT_EQ(menuPlace, ground->mapToGlobal(PlaceOf(5).center()));
    QTest::mouseRelease(ground, Qt::RightButton, {}, PlaceOf(5).center());
    for (const auto& [part, place] :
         {std::pair(ground, QPoint(20, ground->height() - 5)), {header, {20, 5}}}) {
        QTest::mouseClick(part, Qt::RightButton, {}, place);
        QTest::mouseClick(part, Qt::LeftButton, {}, place);
        QTest::mouseDClick(part, Qt::LeftButton, {}, place);
        EXPECT_EQ(grid.selectionModel()->selectedRows(), QModelIndexList{grid.model()->index(2, 0)})
            << "neither Ctrl nor what is beside the rows takes the mark away";
    }
    EXPECT_EQ(menus, 3);
    QTest::mouseDClick(ground, Qt::LeftButton, {}, PlaceOf(4).center());
    EXPECT_EQ(grid.Row(), 4);
    QTest::mouseDClick(ground, Qt::RightButton, {}, PlaceOf(4).center());
    EXPECT_EQ(doubleClicks, 3) << "not the right button";
}

TEST_F(FlexGridTest, WhatIsCutOffIsToldByATip) {
    Fill(2);
    const QString text(60, u'x');
    grid.SetTextMatrix(2, 1, text);
    grid.SetTextMatrix(0, 2, text);
    const auto tip = [this](QWidget* part, int col) {
        QToolTip::hideText();
        EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
        const QPoint place(PlaceOf(2, col).left() + 5, part == grid.viewport() ? PlaceOf(2).center().y() : 5);
        QHelpEvent event(QEvent::ToolTip, place, part->mapToGlobal(place));
        QApplication::sendEvent(part, &event);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    QWidget* header = grid.horizontalHeader()->viewport();
    EXPECT_EQ(tip(grid.viewport(), 1), text);
    EXPECT_EQ(tip(grid.viewport(), 3), QString());
    EXPECT_EQ(tip(header, 2), text);
    EXPECT_EQ(tip(header, 1), QString());
}

TEST_F(FlexGridTest, Copy) {
    const auto copied = [this] {
        QGuiApplication::clipboard()->setText(QStringLiteral("before"));
        Key(Qt::Key_C, Qt::ControlModifier);
        return QGuiApplication::clipboard()->text();
    };
    EXPECT_EQ(copied(), QStringLiteral("before")) << "a blank row is no entry";
    grid.SetCols(3);
    Fill(2);
    grid.SetColWidth(1, 0);
    grid.SetTextMatrix(2, 2, u"a\tb\r\nc");
    Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(copied(), QStringLiteral("1/0\t1/2")) << "commands on a list are about one row";
    grid.AllowSelectAll();
    Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(copied(), QStringLiteral("0/0\t0/2\n1/0\t1/2\n2/0\ta b c"));
    Key(Qt::Key_Down);
    EXPECT_EQ(copied(), QStringLiteral("2/0\ta b c"));
}

TEST_F(FlexGridTest, TheMenuComesByKeysToo) {
    Fill(100);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, {}, {}); // all that some systems send
    const std::function<void()> asks[] = {
        [&] { Key(Qt::Key_F10, Qt::ShiftModifier); },
        [&] {
            Key(Qt::Key_End);
            QApplication::sendEvent(&grid, &byKey);
        },
    };
    for (const auto& ask : asks) {
        const int before = menus;
        Key(Qt::Key_End);
        EXPECT_EQ(grid.Row(), 100);
        grid.scrollToTop(); // the current row is out of sight
        ask();
        EXPECT_EQ(menus, before + 1);
        EXPECT_EQ(menuPlace, grid.viewport()->mapToGlobal(grid.visualRect(grid.currentIndex()).bottomLeft()));
    }
}
