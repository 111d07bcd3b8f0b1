#include "platform/forms/FrameWindow.h"

#include <QCloseEvent>
#include <QMdiArea>

namespace forms {

QBrush FrameWindow::GroundOf(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    const bool dark = window.lightness() < 128;
    return window.darker(dark ? 160 : 150);
}

bool FrameWindow::event(QEvent* event) {
    const auto form = std::static_pointer_cast<MdiForm>(m_form.lock());
    const bool activation =
        event->type() == QEvent::WindowActivate || event->type() == QEvent::WindowDeactivate;
    if (!form || !activation)
        return QMainWindow::event(event);
    bool handled = false;
    form->FollowWindowActivation([&] { handled = QMainWindow::event(event); });
    return handled;
}

void FrameWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    auto* area = qobject_cast<QMdiArea*>(centralWidget());
    if (event->type() == QEvent::PaletteChange && area)
        area->setBackground(GroundOf(palette()));
}

void FrameWindow::closeEvent(QCloseEvent* event) {
    if (const std::shared_ptr<Form> form = m_form.lock())
        form->Unload();
    event->accept();
}

void FrameWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (const std::shared_ptr<Form> form = m_form.lock())
        form->Resized();
}

} // namespace forms
