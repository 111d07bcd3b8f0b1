#include "platform/forms/ProgramStyle.h"

#include "platform/forms/RowDelegate.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionButton>
#include <QStyleOptionMenuItem>
#include <QStyleOptionTitleBar>

namespace forms {

namespace {

constexpr int MiddleGrey = 128;

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < MiddleGrey;
}

/// Outlines are shades of the window's colour.
void LightOutlines(QPalette& palette) {
    palette.setColor(QPalette::Window, palette.color(QPalette::WindowText));
}

/// For what stands in numbers: seen, but quieter than a mark.
void SoftenOutlines(QPalette& palette) {
    palette.setColor(QPalette::Window,
                     Mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 0.5));
}

} // namespace

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    const auto draw = [&](auto lit, void (*change)(QPalette&)) {
        change(lit.palette);
        QProxyStyle::drawPrimitive(element, &lit, painter, widget);
    };
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    const bool isMark = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
    const bool dark = IsDark(option->palette);
    if (dark && isMark && button)
        draw(*button, LightOutlines);
    else if (dark && element == PE_PanelMenu)
        draw(*option, LightOutlines);
    else if (dark && (element == PE_FrameLineEdit || element == PE_Frame) && frame)
        draw(*frame, SoftenOutlines);
    else
        QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void ProgramStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    const auto* entry = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuBarItem && entry && entry->state.testFlag(State_Selected)) {
        QStyleOptionMenuItem chosen(*entry);
        chosen.state |= State_Sunken; // seen before it opens, for those who go by Alt and the arrow keys
        QProxyStyle::drawControl(element, &chosen, painter, widget);
        return;
    }
    const bool isSeparator = element == CE_MenuItem && entry &&
                             entry->menuItemType == QStyleOptionMenuItem::Separator && entry->text.isEmpty();
    if (!isSeparator || !IsDark(option->palette)) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    constexpr int Inset = 6;
    const QRect place = option->rect;
    painter->fillRect(QRect(place.left() + Inset, place.center().y(), place.width() - 2 * Inset, 1),
                      option->palette.color(QPalette::WindowText).darker(250));
}

void ProgramStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
    const auto* bar = qstyleoption_cast<const QStyleOptionTitleBar*>(option);
    const bool active = bar && (bar->titleBarState & State_Active);
    if (control != CC_TitleBar || !bar || active || !IsDark(option->palette)) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    // The signs on an inactive title bar would be black: as on an active one they are light.
    QStyleOptionTitleBar lit(*bar);
    lit.titleBarState |= State_Active;
    lit.state |= State_Active;
    lit.palette.setColor(QPalette::Highlight, bar->palette.color(QPalette::Window).lighter(120));
    QProxyStyle::drawComplexControl(control, &lit, painter, widget);
}

void ProgramStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    constexpr int HalfSeen = 128;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        if (!IsDark(palette) || palette.color(group, QPalette::PlaceholderText).lightness() >= MiddleGrey)
            continue;
        QColor hint = palette.color(group, QPalette::Text);
        hint.setAlpha(HalfSeen);
        palette.setColor(group, QPalette::PlaceholderText, hint);
    }
}

int ProgramStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    const int pixels = QProxyStyle::pixelMetric(metric, option, widget);
    if (metric != PM_TitleBarHeight)
        return pixels;
    constexpr int AroundTitle = 6;
    return std::max(pixels, QFontMetrics(QApplication::font("QMdiSubWindowTitleBar")).height() + AroundTitle);
}

int ProgramStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                            QStyleHintReturn* data) const {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
}

} // namespace forms
