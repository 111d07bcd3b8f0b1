// The grid: rows, columns, current row, widths, and what mouse and keyboard do to it.

#include "platform/forms/FlexGrid.h"

#include "platform/forms/Texts.h"
#include "platform/forms/Twips.h"
#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QMenu>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTest>
#include <QToolTip>

using forms::FlexGrid;

namespace {

class FlexGridTest : public testing::Test {
protected:
    FlexGridTest()
        : grid(2, 4)
        , tester(grid.model(), QAbstractItemModelTester::FailureReportingMode::Fatal) {
        grid.resize(500, 300);
        grid.show();
        QObject::connect(&grid, &FlexGrid::ContextMenuRequested, [this](QPoint place) {
            ++menus;
            menuPlace = place;
        });
        QObject::connect(&grid, &FlexGrid::DblClick, [this] { ++doubleClicks; });
    }

    void Fill(int rows) {
        const FlexGrid::Filling filling(grid);
        grid.Clear();
        grid.SetRows(rows + 1);
        for (int row = 0; row <= rows; ++row)
            for (int col = 0; col < grid.Cols(); ++col)
                grid.SetTextMatrix(row, col, QStringLiteral("%1/%2").arg(row).arg(col));
    }

    QPoint PlaceOf(int row) const { return grid.visualRect(grid.model()->index(row - 1, 0)).center(); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&grid, key, modifiers);
    }

    FlexGrid grid;
    QAbstractItemModelTester tester;
    int menus = 0;
    int doubleClicks = 0;
    QPoint menuPlace;
};

} // namespace

TEST_F(FlexGridTest, HeaderIsRowZeroAndCellsAreTheModel) {
    Fill(3);
    EXPECT_EQ(grid.model()->rowCount(), 3);
    EXPECT_EQ(grid.model()->headerData(1, Qt::Horizontal).toString(), QStringLiteral("0/1"));
    EXPECT_EQ(grid.model()->index(2, 3).data().toString(), QStringLiteral("3/3"));
    EXPECT_EQ(grid.TextMatrix(3, 3), QStringLiteral("3/3"));
    EXPECT_FALSE(grid.verticalHeader()->isVisible());
}

TEST_F(FlexGridTest, RowsAndColsKeepWhatRemains) {
    for (const bool filling : {false, true}) {
        Fill(3);
        std::optional<FlexGrid::Filling> guard;
        if (filling)
            guard.emplace(grid);
        grid.SetRows(6);
        EXPECT_EQ(grid.TextMatrix(3, 2), QStringLiteral("3/2"));
        EXPECT_EQ(grid.TextMatrix(5, 2), QString());
        grid.SetCols(6);
        EXPECT_EQ(grid.TextMatrix(3, 3), QStringLiteral("3/3"));
        EXPECT_EQ(grid.TextMatrix(3, 5), QString());
        grid.SetCols(2);
        grid.SetRows(2);
        EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("1/1"));
        grid.SetRows(3);
        grid.SetCols(4);
        EXPECT_EQ(grid.TextMatrix(1, 2), QString()) << "what was cut off is gone";
        EXPECT_EQ(grid.TextMatrix(2, 1), QString());
    }
}

TEST_F(FlexGridTest, TextsSurviveManyChangesAndLongOnesAreCut) {
    const QString longText = QString(forms::MostShown - 1, u'ж');
    grid.SetTextMatrix(1, 3, longText + QString(10'000'000, u'x'));
    EXPECT_EQ(grid.model()->index(0, 3).data(), longText + QStringLiteral("x…")) << "as much as can be seen";
    grid.SetTextMatrix(1, 3, longText + QStringLiteral("😀"));
    EXPECT_EQ(grid.TextMatrix(1, 3), longText + u'…') << "no half of a pair";
    grid.SetTextMatrix(1, 0, longText);
    for (int i = 0; i < 100000; ++i)
        grid.SetTextMatrix(1, 1, QString::number(i));
    grid.SetTextMatrix(1, 2, QString());
    EXPECT_EQ(grid.TextMatrix(1, 0), longText);
    EXPECT_EQ(grid.TextMatrix(1, 1), QStringLiteral("99999"));
    EXPECT_EQ(grid.TextMatrix(1, 2), QString());
    grid.Clear();
    EXPECT_EQ(grid.TextMatrix(1, 0), QString());
}

TEST_F(FlexGridTest, Failures) {
    EXPECT_EQ(test::FailureOf([&] { grid.TextMatrix(2, 0); }), 381);
    EXPECT_EQ(test::FailureOf([&] { grid.SetTextMatrix(0, 4, u"x"); }), 381);
    EXPECT_EQ(test::FailureOf([&] { grid.TextMatrix(-1, 0); }), 381);
    EXPECT_EQ(test::FailureOf([&] { grid.SetRow(2); }), 30009);
    EXPECT_EQ(test::FailureOf([&] { grid.SetRow(0); }), 30009);
    EXPECT_EQ(test::FailureOf([&] { grid.SetRows(1); }), 380);
    EXPECT_EQ(test::FailureOf([&] { grid.SetCols(-1); }), 380);
    EXPECT_EQ(test::FailureOf([&] { grid.ColWidth(4); }), 381);
    EXPECT_EQ(test::FailureOf([&] { grid.SetColWidth(4, 100); }), 381);
    EXPECT_EQ(test::FailureOf([&] { grid.SetColWidth(-1, 100); }), 0);
}

TEST_F(FlexGridTest, CurrentRowStaysOverClearAndGrowthAndFallsBack) {
    Fill(10);
    EXPECT_EQ(grid.Row(), 1);
    grid.SetRow(7);
    EXPECT_EQ(grid.currentIndex().row(), 6);
    EXPECT_EQ(grid.selectionModel()->selectedRows().size(), 1);
    Fill(20);
    EXPECT_EQ(grid.Row(), 7);
    EXPECT_EQ(grid.currentIndex().row(), 6);
    EXPECT_TRUE(grid.selectionModel()->isRowSelected(6, {}));
    grid.Clear();
    EXPECT_EQ(grid.Row(), 7);
    grid.SetRows(5);
    EXPECT_EQ(grid.Row(), 4);
    EXPECT_EQ(grid.currentIndex().row(), 3);
    Fill(2);
    EXPECT_EQ(grid.Row(), 2);
    grid.SetCols(0);
    EXPECT_EQ(grid.Row(), 2) << "also without a column to stand in";
}

TEST_F(FlexGridTest, RefillKeepsThePlaceOnTheScreen) {
    Fill(200);
    grid.SetRow(150);
    const int top = grid.verticalScrollBar()->value();
    ASSERT_GT(top, 0);
    Fill(200);
    EXPECT_EQ(grid.verticalScrollBar()->value(), top);
}

TEST_F(FlexGridTest, WidthsAreKeptInTwips) {
    EXPECT_EQ(grid.ColWidth(0), 960);
    grid.SetColWidth(1, 3001);
    EXPECT_EQ(grid.ColWidth(1), 3001);
    EXPECT_EQ(grid.columnWidth(1), 200);
    grid.SetColWidth(2, 0);
    EXPECT_TRUE(grid.isColumnHidden(2));
    EXPECT_EQ(grid.ColWidth(2), 0);
    Fill(5);
    EXPECT_EQ(grid.ColWidth(1), 3001) << "Clear and a fill leave the widths";
    EXPECT_EQ(grid.columnWidth(1), 200);
    EXPECT_TRUE(grid.isColumnHidden(2));
    grid.SetColWidth(2, -1);
    EXPECT_EQ(grid.ColWidth(2), 960);
    EXPECT_FALSE(grid.isColumnHidden(2));
    grid.horizontalHeader()->resizeSection(1, 123); // as a drag of the user does
    EXPECT_EQ(grid.ColWidth(1), forms::ToTwips(123));
    grid.SetCols(3);
    grid.SetCols(5);
    EXPECT_EQ(grid.ColWidth(1), forms::ToTwips(123));
    EXPECT_EQ(grid.ColWidth(4), 960);

    QFont large = grid.font();
    large.setPixelSize(40);
    grid.setFont(large);
    EXPECT_EQ(grid.columnWidth(1), 123);
    EXPECT_GE(grid.columnWidth(4), grid.fontMetrics().horizontalAdvance(QStringLiteral("12345")))
        << "a width that nobody has chosen grows with the letters";
    EXPECT_EQ(grid.ColWidth(4), 960);
}

TEST_F(FlexGridTest, StretchOfTheLastColumn) {
    grid.SetCols(3);
    struct Case {
        int gridWidth;
        int last;
    };
    grid.SetColWidth(0, 1000);
    grid.SetColWidth(1, 2000);
    for (const Case& c : {Case{5000, 1600}, Case{4901, 1501}, Case{4900, 960}, Case{2000, 960}}) {
        grid.SetColWidth(2, 960);
        StretchLastColumn(grid, c.gridWidth);
        EXPECT_EQ(grid.ColWidth(2), c.last) << c.gridWidth;
    }
    grid.SetCols(1);
    StretchLastColumn(grid, 3000);
    EXPECT_EQ(grid.ColWidth(0), 2600);
    grid.SetCols(0);
    StretchLastColumn(grid, 3000);
}

TEST_F(FlexGridTest, Alignment) {
    Fill(1);
    const auto alignment = [&](int col) {
        return Qt::Alignment(grid.model()->index(0, col).data(Qt::TextAlignmentRole).toInt());
    };
    grid.SetTextMatrix(1, 0, u"17");
    grid.SetTextMatrix(1, 1, u"17");
    grid.SetColAlignment(0, FlexGrid::LeftBottom);
    EXPECT_EQ(alignment(0), Qt::AlignLeft | Qt::AlignBottom);
    EXPECT_EQ(alignment(1), Qt::AlignRight | Qt::AlignVCenter) << "numbers right";
    EXPECT_EQ(alignment(2), Qt::AlignLeft | Qt::AlignVCenter) << "texts left";
    grid.SetTextMatrix(1, 1, u"-17,5");
    EXPECT_EQ(alignment(1), Qt::AlignRight | Qt::AlignVCenter);
    grid.SetTextMatrix(1, 1, u"495-17");
    EXPECT_EQ(alignment(1), Qt::AlignLeft | Qt::AlignVCenter);
    grid.Clear();
    grid.SetTextMatrix(1, 0, u"17");
    EXPECT_EQ(alignment(0), Qt::AlignLeft | Qt::AlignBottom) << "stays over Clear";
}

TEST_F(FlexGridTest, Mouse) {
    Fill(5);
    QWidget* ground = grid.viewport();
    QWidget* header = grid.horizontalHeader()->viewport();
    const QPoint empty(20, ground->height() - 5);
    QTest::mouseClick(ground, Qt::LeftButton, {}, PlaceOf(3));
    EXPECT_EQ(grid.Row(), 3);
    QTest::mouseClick(ground, Qt::LeftButton, Qt::ControlModifier, PlaceOf(3));
    EXPECT_TRUE(grid.selectionModel()->isRowSelected(2, {})) << "the mark stays on the current row";

    QTest::mousePress(ground, Qt::RightButton, {}, PlaceOf(5));
    EXPECT_EQ(menus, 1) << "on pressing";
    EXPECT_EQ(menuPlace, ground->mapToGlobal(PlaceOf(5)));
    QTest::mouseRelease(ground, Qt::RightButton, {}, PlaceOf(5));
    QTest::mouseClick(ground, Qt::RightButton, {}, empty);
    QTest::mouseClick(header, Qt::RightButton, {}, QPoint(20, 5));
    EXPECT_EQ(menus, 3);
    EXPECT_EQ(grid.Row(), 3) << "the right button moves nothing";

    for (QWidget* part : {ground, header}) {
        QTest::mouseClick(part, Qt::LeftButton, {}, part == ground ? empty : QPoint(20, 5));
        EXPECT_EQ(grid.Row(), 3);
        EXPECT_TRUE(grid.selectionModel()->isRowSelected(2, {}));
    }
    QTest::mouseDClick(ground, Qt::LeftButton, {}, PlaceOf(4));
    EXPECT_EQ(grid.Row(), 4);
    EXPECT_EQ(doubleClicks, 1);
    QTest::mouseDClick(ground, Qt::LeftButton, {}, empty);
    QTest::mouseDClick(header, Qt::LeftButton, {}, QPoint(20, 5));
    EXPECT_EQ(doubleClicks, 3);
    QTest::mouseDClick(ground, Qt::RightButton, {}, PlaceOf(4));
    EXPECT_EQ(doubleClicks, 3);

    const QString longText(60, u'x');
    grid.SetTextMatrix(2, 1, longText);
    grid.SetTextMatrix(0, 2, longText);
    const auto tip = [](QWidget* part, QPoint place) {
        QToolTip::hideText();
        EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
        QHelpEvent event(QEvent::ToolTip, place, part->mapToGlobal(place));
        QApplication::sendEvent(part, &event);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    const auto placeIn = [this](int col) { return grid.visualRect(grid.model()->index(1, col)).center(); };
    EXPECT_EQ(tip(ground, placeIn(1)), longText);
    EXPECT_EQ(tip(ground, placeIn(3)), QString());
    EXPECT_EQ(tip(header, QPoint(placeIn(2).x(), 5)), longText);
    EXPECT_EQ(tip(header, QPoint(placeIn(1).x(), 5)), QString());
    QTest::mouseDClick(header, Qt::LeftButton, {},
                       QPoint(grid.columnViewportPosition(1) + grid.columnWidth(1), 5));
    EXPECT_EQ(doubleClicks, 3);
    EXPECT_EQ(tip(ground, grid.visualRect(grid.model()->index(1, 1)).topLeft() + QPoint(5, 5)), QString())
        << "the column fits its texts";
}

TEST_F(FlexGridTest, TheCurrentRowStaysStrongUnderItsMenu) {
    Fill(3);
    grid.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&grid));
    grid.setFocus();
    struct Reader : QStyledItemDelegate {
        using QStyledItemDelegate::initStyleOption;
    };
    const auto ground = [this] {
        QStyleOptionViewItem option;
        option.widget = &grid;
        option.palette = grid.palette();
        option.state = QStyle::State_Selected;
        (qobject_cast<QStyledItemDelegate*>(grid.itemDelegate())->*&Reader::initStyleOption)(
            &option, grid.currentIndex());
        return option.palette.color(QPalette::Active, QPalette::Highlight);
    };
    const QColor strong = ground();
    EXPECT_EQ(strong, grid.palette().color(QPalette::Active, QPalette::Highlight));
    QMenu menu(&grid);
    menu.setActiveAction(menu.addAction(QStringLiteral("x")));
    menu.popup(grid.mapToGlobal(QPoint(20, 20)));
    menu.setFocus(); // as an entry under the pointer does
    EXPECT_EQ(ground(), strong);
    menu.close();
    grid.clearFocus();
    EXPECT_NE(ground(), strong);
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
    EXPECT_EQ(copied(), QStringLiteral("1/0\t1/2")) << "what is seen";
    Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(copied(), QStringLiteral("1/0\t1/2")) << "commands on a list are about one row";
    grid.AllowSelectAll();
    Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(grid.selectionModel()->isRowSelected(1, {}));
    EXPECT_EQ(copied(), QStringLiteral("0/0\t0/2\n1/0\t1/2\n2/0\ta b c"));
    Key(Qt::Key_Down);
    EXPECT_EQ(copied(), QStringLiteral("2/0\ta b c"));
}

TEST_F(FlexGridTest, Keyboard) {
    Fill(100);
    struct Case {
        Qt::Key key;
        std::function<bool(int before)> reached;
    };
    const Case cases[] = {
        {Qt::Key_Down, [&](int before) { return grid.Row() == before + 1; }},
        {Qt::Key_End, [&](int) { return grid.Row() == 100; }},
        {Qt::Key_Up, [&](int before) { return grid.Row() == before - 1; }},
        {Qt::Key_PageUp, [&](int before) { return grid.Row() < before - 3 && grid.Row() > 1; }},
        {Qt::Key_Home, [&](int) { return grid.Row() == 1; }},
        {Qt::Key_PageDown, [&](int before) { return grid.Row() > before + 3; }},
    };
    for (const Case& c : cases) {
        const int before = grid.Row();
        Key(c.key);
        EXPECT_TRUE(c.reached(before)) << c.key << " from " << before << " to " << grid.Row();
    }
    const QRect cell = grid.visualRect(grid.currentIndex());
    Key(Qt::Key_Menu);
    EXPECT_EQ(menuPlace, grid.viewport()->mapToGlobal(cell.bottomLeft()));
    Key(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(menus, 2);
    Key(Qt::Key_F10);
    EXPECT_EQ(menus, 2);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, cell.center(), {}); // all that some systems send
    QApplication::sendEvent(&grid, &byKey);
    EXPECT_EQ(menus, 3);
}

TEST_F(FlexGridTest, ManyRowsCostLittleMoreThanTheirTexts) {
    grid.SetCols(6);
    Fill(200000);
    EXPECT_EQ(grid.TextMatrix(200000, 5), QStringLiteral("200000/5"));
    grid.SetRows(2);
    EXPECT_EQ(grid.TextMatrix(1, 5), QStringLiteral("1/5"));
}
