#include "platform/forms/ProgramStyle.h"

#include "platform/forms/Colours.h"
#include "platform/forms/MessageIcon.h"
#include "platform/forms/MonthView.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionButton>
#include <QStyleOptionMenuItem>
#include <QStyleOptionTitleBar>

namespace forms {

namespace {

/// Outlines are shades of the window's colour.
void LightOutlines(QPalette& palette) {
    palette.setColor(QPalette::Window, palette.color(QPalette::WindowText));
}

/// The style takes them darker still: 3:1 and more to the field inside and to the window around.
void DarkenOutlines(QPalette& palette) {
    palette.setColor(QPalette::Window,
                     Mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 0.4));
}

/// For what stands in numbers: seen, but quieter than a mark.
void SoftenOutlines(QPalette& palette) {
    palette.setColor(QPalette::Window,
                     Mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), 0.5));
    palette.setColor(QPalette::Highlight, palette.color(QPalette::Highlight).lighter(150)); // of the focus
}

} // namespace

bool ProgramStyle::IsBuiltOn(const QStyle& style) {
    const QStyle* base = &style;
    while (const auto* proxy = qobject_cast<const QProxyStyle*>(base))
        base = proxy->baseStyle();
    return base && base->inherits("QFusionStyle");
}

QPalette ProgramStyle::DarkPalette() {
    QPalette palette(QColor(0x32, 0x32, 0x32)); // the constructor derives bevels and light letters
    const QColor ground(0x24, 0x24, 0x24);
    const QColor letters(0xf0, 0xf0, 0xf0);
    const struct {
        QPalette::ColorRole role;
        QColor colour;
    } colours[] = {
        {QPalette::Base, ground},
        {QPalette::AlternateBase, QColor(0x2b, 0x2b, 0x2b)},
        {QPalette::Text, letters},
        {QPalette::WindowText, letters},
        {QPalette::ButtonText, letters},
        {QPalette::ToolTipBase, QColor(0x3c, 0x3c, 0x3c)},
        {QPalette::ToolTipText, letters},
        {QPalette::Highlight, QColor(0x1f, 0x6f, 0xa8)},
        {QPalette::HighlightedText, QColor(Qt::white)},
        {QPalette::Link, QColor(0x8a, 0xb8, 0xff)},
    };
    for (const auto& [role, colour] : colours)
        palette.setColor(role, colour);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x96, 0x96, 0x96));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0x50, 0x50, 0x50));
    return palette;
}

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    const auto draw = [&](auto lit, void (*change)(QPalette&)) {
        change(lit.palette);
        QProxyStyle::drawPrimitive(element, &lit, painter, widget);
    };
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    const bool isMark = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
    const bool dark = IsDark(option->palette.color(QPalette::Window));
    if (isMark && button)
        draw(*button, dark ? LightOutlines : DarkenOutlines);
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
    if (!isSeparator || !IsDark(option->palette.color(QPalette::Window))) {
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
    const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
    if (control == CC_ToolButton && button && MonthView::IsTitle(widget)) {
        QStyleOptionToolButton plain(*button);
        plain.features &= ~QStyleOptionToolButton::HasMenu; // its sign would stand under the text, half cut
        QProxyStyle::drawComplexControl(control, &plain, painter, widget);
        return;
    }
    const auto* bar = qstyleoption_cast<const QStyleOptionTitleBar*>(option);
    const bool active = bar && (bar->titleBarState & State_Active);
    if (control != CC_TitleBar || !bar || active || !IsDark(option->palette.color(QPalette::Window))) {
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
    if (!IsDark(palette.color(QPalette::Window)))
        return;
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        if (!IsDark(palette.color(group, QPalette::PlaceholderText)))
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

QIcon ProgramStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                                 const QWidget* widget) const {
    const QIcon icon = MessageIcon(which);
    return icon.isNull() ? QProxyStyle::standardIcon(which, option, widget) : icon;
}

} // namespace forms
