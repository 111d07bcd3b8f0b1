#pragma once

#include <QProxyStyle>

namespace forms {

/// The toolkit's own style as the program wants it. On dark grounds it draws the outlines of boxes, circles,
/// fields and menus and the signs of inactive title bars darker than the ground; here they are lighter. On
/// light grounds the outlines of boxes and circles are dark enough to be seen. Title bars grow with their
/// font. The buttons of boxes and dialogs have no icons, as those of the windows have none; message boxes
/// have those of the icon theme or, without one, drawn ones.
class ProgramStyle : public QProxyStyle {
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    /// Whether a style is the one that this is made for, also within the proxies that settings programs put
    /// around it.
    static bool IsBuiltOn(const QStyle& style);

    /// Colours for who prefers dark windows under a theme that has only light ones.
    static QPalette DarkPalette();

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
    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override;
};

} // namespace forms
