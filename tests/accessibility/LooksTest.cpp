// What is seen in the styles and colours that users have: enough contrast, nothing cut off.

#include "platform/forms/Application.h"
#include "platform/forms/Colours.h"
#include "platform/forms/MonthView.h"
#include "platform/forms/ProgramStyle.h"
#include "tests/support/WindowTest.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QProxyStyle>
#include <QStyleOption>
#include <QTableView>
#include <QToolButton>

#include <cmath>
#include <map>

namespace {

constexpr double Readable = 4.5;
constexpr double Visible = 3;

double Luminance(QColor colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double Contrast(QColor one, QColor other) {
    const double a = Luminance(one) + 0.05;
    const double b = Luminance(other) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

/// The strongest contrast of anything in a part of a window with the ground, the colour that most of it has.
double MarkOn(QWidget& window, const QRect& part) {
    const QImage image = window.grab(part).toImage();
    std::map<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            ++counts[image.pixel(x, y)];
    const auto lessOften = [](const auto& one, const auto& other) { return one.second < other.second; };
    const QColor ground = std::max_element(counts.begin(), counts.end(), lessOften)->first;
    double strongest = 1;
    for (const auto& [colour, count] : counts)
        strongest = std::max(strongest, Contrast(colour, ground));
    return strongest;
}

QRect Inside(const QWidget& widget, int margin) {
    return widget.rect().adjusted(margin, margin, -margin, -margin);
}

/// Controls of a window whose text is pale or does not fit, by name.
QStringList TextFaults(QWidget& window) {
    QStringList faults;
    const auto check = [&faults](QWidget& widget, const QString& text, int margin) {
        if (!widget.isVisible() || text.isEmpty())
            return;
        const QFontMetrics letters = widget.fontMetrics();
        if (widget.isEnabled() && MarkOn(widget, Inside(widget, margin)) < Readable)
            faults += widget.objectName() + QStringLiteral(" is pale");
        const auto* label = qobject_cast<const QLabel*>(&widget);
        const int width =
            label && label->wordWrap() ? 0 : letters.horizontalAdvance(QString(text).remove(u'&'));
        if (widget.height() < letters.height() || widget.width() < width)
            faults += widget.objectName() + QStringLiteral(" is cut");
    };
    for (auto* label : window.findChildren<QLabel*>())
        check(*label, label->text(), 0);
    for (auto* button : window.findChildren<QAbstractButton*>())
        check(*button, button->text(), 3);
    for (auto* field : window.findChildren<QLineEdit*>())
        check(*field, field->text(), 3);
    return faults;
}

class LooksTest : public test::WindowTest, public testing::WithParamInterface<const char*> {
protected:
    static forms::Application& Program() { return *static_cast<forms::Application*>(qApp); }

    void SetUp() override {
        const QString name = QString::fromLatin1(GetParam());
        if (name == u"proxy")
            QApplication::setStyle(new QProxyStyle(QStringLiteral("fusion")));
        else if (!QApplication::setStyle(name))
            GTEST_SKIP() << "the style " << GetParam() << " is not installed";
        Program().ChooseStyle();
        WindowTest::SetUp();
        AddCard(1, QStringLiteral("Белова"), QStringLiteral("Анна"));
        AddCard(2, QStringLiteral("Воронин"), QStringLiteral("Борис"));
    }
    void TearDown() override {
        if (!IsSkipped())
            WindowTest::TearDown();
    }

    static bool IsOwnStyle() { return dynamic_cast<forms::ProgramStyle*>(QApplication::style()); }

    void CheckWindows() {
        Choose("mnuBookRecords");
        const auto filter = Last("frmRecordsFilter");
        EXPECT_EQ(TextFaults(*filter->Surface()), QStringList());
        if (IsOwnStyle()) // what other styles draw is theirs
            CheckBoxes(*filter->Surface());
        Press(Qt::Key_Return);
        const auto list = Last("frmRecords");
        EXPECT_EQ(TextFaults(*list->Surface()), QStringList());
        auto& grid = Control<QTableView>(list, "gridRecords");
        EXPECT_GE(MarkOn(*grid.viewport(), grid.visualRect(grid.model()->index(0, 1))), Visible)
            << "selected";
        EXPECT_GE(MarkOn(*grid.viewport(), grid.visualRect(grid.model()->index(1, 1))), Readable);
        EXPECT_GE(grid.rowHeight(0), grid.fontMetrics().height());
        Choose("mnuRecordsEdit");
        const auto card = Last("frmEditRecords");
        EXPECT_EQ(TextFaults(*card->Surface()), QStringList());
        auto& types = Control<QListWidget>(card, "lstTelefonType");
        for (int row = 0; row < 2; ++row) // selected and not, without the keyboard
            EXPECT_GE(MarkOn(*types.viewport(), types.visualItemRect(types.item(row))), Readable);
        if (IsOwnStyle()) {
            EXPECT_GE(SignsOf(FrameOf(card)), Visible) << "on the title bar in front";
            EXPECT_GE(SignsOf(FrameOf(list)), Visible) << "on the one behind";
        }
        Choose("mnuBookCalendar");
        CheckTitleOf(Control<forms::MonthView>(Last("frmCalendar"), "mnvCalendar"));
    }

private:
    /// The outlines against the field inside and the window around.
    static void CheckBoxes(const QWidget& window) {
        auto& box = ControlOf<QCheckBox>(window, "chkLastName");
        QStyleOptionButton option;
        option.initFrom(&box);
        const QRect mark = box.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &box);
        const QImage image = box.grab(QRect(0, mark.center().y(), mark.right() + 3, 1)).toImage();
        double outline = 1;
        for (int x = 0; x < mark.left() + mark.width() / 4; ++x)
            outline =
                std::max(outline, Contrast(image.pixelColor(x, 0), window.palette().color(QPalette::Window)));
        EXPECT_GE(outline, Visible) << "of a check box";
    }

    static double SignsOf(QMdiSubWindow& window) {
        QStyleOptionTitleBar bar;
        bar.initFrom(&window);
        const int height = window.style()->pixelMetric(QStyle::PM_TitleBarHeight, &bar, &window);
        return MarkOn(window, QRect(window.width() - height, 3, height - 3, height - 3));
    }

    static void CheckTitleOf(forms::MonthView& calendar) {
        for (const char* arrow : {"qt_calendar_prevmonth", "qt_calendar_nextmonth"}) {
            const auto& button = ControlOf<QToolButton>(calendar, arrow);
            const QImage picture = button.icon().pixmap(QSize(16, 16)).toImage();
            const QColor title = calendar.palette().color(QPalette::HighlightedText);
            EXPECT_EQ(picture.pixelColor(8, 5).rgb(), title.rgb()) << arrow;
        }
        auto& month = ControlOf<QToolButton>(calendar, "qt_calendar_monthbutton");
        if (!IsOwnStyle())
            return;
        const QImage withMenu = month.grab().toImage();
        QMenu* menu = month.menu();
        month.setMenu(nullptr);
        EXPECT_EQ(month.grab().toImage(), withMenu) << "a sign of the menu";
        month.setMenu(menu);
    }
};

TEST_P(LooksTest, EverythingIsSeenWhole) {
    CheckWindows();
}

TEST_P(LooksTest, EverythingIsSeenWholeInDarkColours) {
    if (!IsOwnStyle())
        GTEST_SKIP() << "its colours are its own";
    Program().PreferDark(true);
    EXPECT_TRUE(forms::IsDark(QApplication::palette().color(QPalette::Window)));
    CheckWindows();
    Program().PreferDark(false);
    EXPECT_FALSE(forms::IsDark(QApplication::palette().color(QPalette::Window)));
}

INSTANTIATE_TEST_SUITE_P(Styles, LooksTest,
                         testing::Values("fusion", "proxy", "qt6ct-style", "gtk2", "kvantum", "adwaita",
                                         "adwaita-dark"),
                         [](const auto& row) {
                             QString name = QString::fromLatin1(row.param);
                             return name.remove(u'-').toStdString();
                         });

} // namespace
