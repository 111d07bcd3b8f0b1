#include "shell/LinkLabel.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

namespace {

class LinkInterface final : public QAccessibleWidget {
public:
    explicit LinkInterface(LinkLabel* label)
        : QAccessibleWidget(label, QAccessible::Link, label->text()) {}

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString& action) override {
        if (action == pressAction())
            Q_EMIT static_cast<LinkLabel*>(object())->Click();
        else
            QAccessibleWidget::doAction(action);
    }
};

QAccessibleInterface* MakeInterface(const QString& /*className*/, QObject* object) {
    auto* label = qobject_cast<LinkLabel*>(object);
    return label ? new LinkInterface(label) : nullptr;
}

} // namespace

LinkLabel::LinkLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent) {
    QAccessible::installFactory(MakeInterface); // once, however often it is told
    setTextFormat(Qt::PlainText);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    QFont underlined = font();
    underlined.setUnderline(true);
    setFont(underlined);
    Colour();
}

void LinkLabel::Colour() {
    constexpr int HalfLight = 128;
    const bool dark = palette().color(QPalette::Window).lightness() < HalfLight;
    const QColor blue = dark ? QColor(0x7A, 0xB0, 0xFF) : QColor(0x00, 0x00, 0xCC);
    if (palette().color(QPalette::WindowText) == blue)
        return;
    QPalette coloured = palette();
    coloured.setColor(QPalette::WindowText, blue);
    setPalette(coloured);
}

void LinkLabel::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        Q_EMIT Click();
}

void LinkLabel::keyPressEvent(QKeyEvent* event) {
    const bool follow =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space;
    if (follow)
        Q_EMIT Click();
    else
        QLabel::keyPressEvent(event);
}

void LinkLabel::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    if (!hasFocus())
        return;
    QPainter painter(this);
    QStyleOptionFocusRect option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void LinkLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        Colour();
}
