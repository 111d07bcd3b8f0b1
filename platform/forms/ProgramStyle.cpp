#include "platform/forms/ProgramStyle.h"

#include <QStyleOptionButton>

namespace forms {

namespace {

constexpr int MiddleGrey = 128;

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < MiddleGrey;
}

} // namespace

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    const bool isMark = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (!isMark || !button || !IsDark(option->palette)) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    // The outline is a shade of the window's colour.
    QStyleOptionButton lit(*button);
    lit.palette.setColor(QPalette::Window, lit.palette.color(QPalette::WindowText));
    QProxyStyle::drawPrimitive(element, &lit, painter, widget);
}

int ProgramStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                            QStyleHintReturn* data) const {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons)
        return 0;
    return QProxyStyle::styleHint(hint, option, widget, data);
}

} // namespace forms
