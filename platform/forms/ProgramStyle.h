#pragma once

#include <QProxyStyle>

namespace forms {

/// The toolkit's own style as the program wants it. Boxes and circles are seen on dark grounds too: it draws
/// their outlines darker than the ground, whatever the ground is. The buttons of boxes and dialogs have no
/// icons, as those of the windows have none.
class ProgramStyle : public QProxyStyle {
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
};

} // namespace forms
