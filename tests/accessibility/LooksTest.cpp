// What is seen in the styles and colours that users have: enough contrast, nothing cut off.

#include "platform/forms/Application.h"
#include "platform/forms/Colours.h"
#include "platform/forms/ProgramStyle.h"
#include "tests/support/WindowTest.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QProxyStyle>
#include <QStyleFactory>
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

/// Controls of a window whose text is pale or does not fit, by name.
QStringList TextFaults(QWidget& window) {
    QStringList faults;
    const auto check = [&faults](QWidget& widget, const QString& text, int margin) {
        if (!widget.isVisible() || text.isEmpty())
            return;
        const QFontMetrics letters = widget.fontMetrics();
        if (widget.isEnabled() &&
            MarkOn(widget, widget.rect().adjusted(margin, margin, -margin, -margin)) < Readable)
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

class LooksTest : public test::WindowTest {
protected:
    static forms::Application& Program() { return *static_cast<forms::Application*>(qApp); }

    void SetUp() override {
        WindowTest::SetUp();
        AddCard(1, QStringLiteral("Белова"), QStringLiteral("Анна"));
        AddCard(2, QStringLiteral("Воронин"), QStringLiteral("Борис"));
    }
    static bool IsOwnStyle() { return dynamic_cast<forms::ProgramStyle*>(QApplication::style()); }

    void CheckWindows() {
        Choose("mnuBookRecords");
        const auto filter = Last("frmRecordsFilter");
        EXPECT_EQ(TextFaults(*filter->Surface()), QStringList());
        if (IsOwnStyle()) { // what other styles draw is theirs
            auto& box = Control<QCheckBox>(filter, "chkLastName");
            EXPECT_GE(MarkOn(box, QRect(0, 0, box.height(), box.height())), Visible) << "its outline";
        }
        Press(Qt::Key_Return);
        const auto list = Last("frmRecords");
        EXPECT_EQ(TextFaults(*list->Surface()), QStringList());
        auto& grid = Control<QTableView>(list, "gridRecords");
        EXPECT_GE(MarkOn(*grid.viewport(), grid.visualRect(grid.model()->index(0, 1))), Visible)
            << "selected";
        EXPECT_GE(MarkOn(*grid.viewport(), grid.visualRect(grid.model()->index(1, 1))), Readable);
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
        for (const char* arrow : {"qt_calendar_prevmonth", "qt_calendar_nextmonth"}) {
            auto& button = Control<QToolButton>(Last("frmCalendar"), arrow);
            EXPECT_GE(MarkOn(*button.parentWidget(), button.geometry()), Visible) << arrow;
        }
        for (const auto& form : forms::Form::Loaded())
            if (form.get() != &Frame())
                form->Unload();
    }

private:
    static double SignsOf(QMdiSubWindow& window) {
        return MarkOn(window, QRect(window.width() - 24, 3, 20, 16));
    }
};

TEST_F(LooksTest, EverythingIsSeenWholeInEveryStyle) {
    for (const char* name :
         {"fusion", "proxy", "qt6ct-style", "gtk2", "kvantum", "adwaita", "adwaita-dark"}) {
        SCOPED_TRACE(name);
        QStyle* style = name == QLatin1String("proxy") ? new QProxyStyle(QStringLiteral("fusion"))
                                                       : QStyleFactory::create(name);
        if (!style)
            continue; // not installed
        QApplication::setStyle(style);
        Program().ChooseStyle();
        CheckWindows();
        if (!IsOwnStyle())
            continue; // its colours are its own
        Program().PreferDark(true);
        EXPECT_TRUE(forms::IsDark(QApplication::palette().color(QPalette::Window)));
        CheckWindows();
        Program().PreferDark(false);
        EXPECT_FALSE(forms::IsDark(QApplication::palette().color(QPalette::Window)));
    }
}

} // namespace
