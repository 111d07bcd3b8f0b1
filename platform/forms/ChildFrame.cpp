#include "platform/forms/ChildFrame.h"

#include <QCloseEvent>
#include <QLayout>

namespace forms {

ChildFrame::ChildFrame(std::weak_ptr<Form> form, const Design& design)
    : QMdiSubWindow(nullptr, design.Flags(Qt::SubWindow))
    , m_form(std::move(form))
    , m_fixed(design.border == Border::Fixed) {
    setObjectName(design.name);
    setWindowTitle(design.caption);
}

void ChildFrame::setVisible(bool visible) {
    if (!visible && isVisible() && widget())
        m_focus = widget()->focusWidget(); // hiding moves it on to the next field
    QMdiSubWindow::setVisible(visible);
    if (visible && m_focus)
        m_focus->setFocus();
}

bool ChildFrame::event(QEvent* event) {
    const bool layoutChanged = m_fixed && event->type() == QEvent::LayoutRequest;
    const bool handled = QMdiSubWindow::event(event); // the deferred deletion ends this object
    if (layoutChanged)
        setFixedSize(sizeHint());
    return handled;
}

void ChildFrame::changeEvent(QEvent* event) {
    QMdiSubWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        if (const std::shared_ptr<Form> form = Owner())
            form->Resized();
}

void ChildFrame::closeEvent(QCloseEvent* event) {
    event->ignore(); // the form takes the window away itself
    if (const std::shared_ptr<Form> form = Owner())
        form->Unload();
}

void ChildFrame::resizeEvent(QResizeEvent* event) {
    QMdiSubWindow::resizeEvent(event);
    if (const std::shared_ptr<Form> form = Owner())
        form->Resized();
}

} // namespace forms
