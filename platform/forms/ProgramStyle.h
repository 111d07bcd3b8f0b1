#pragma once

#include <QProxyStyle>

namespace forms {

/// The toolkit's own style as the program wants it. On dark grounds it draws the outlines of boxes, circles,
/// fields and menus and the signs of inactive title bars darker than the ground; here they are lighter. Title
/// bars grow with their font. The buttons of boxes and dialogs have no icons, as those of the windows have
/// none.
class ProgramStyle : public QProxyStyle {
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    using QProxyStyle::polish;
    /// A theme may leave the hints in empty fields dark on its dark grounds.
    void polish(QPalette& palette) override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
};

} // namespace forms
