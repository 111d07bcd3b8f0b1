#pragma once

#include <QProxyStyle>

namespace forms {

/// The toolkit's own style with boxes and circles that are seen on dark grounds too: it draws their outlines
/// darker than the ground, whatever the ground is.
class MarkStyle : public QProxyStyle {
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

} // namespace forms
