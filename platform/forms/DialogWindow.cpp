#include "platform/forms/DialogWindow.h"

#include "platform/forms/Asking.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QWindow>

namespace forms {

namespace {

Qt::WindowFlags FlagsOf(Border border) {
    if (border == Border::Sizable)
        return Qt::Dialog;
    return Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
           Qt::WindowCloseButtonHint | Qt::MSWindowsFixedSizeDialogHint;
}

} // namespace

DialogWindow::DialogWindow(std::weak_ptr<Form> form, const Design& design)
    : QWidget(nullptr, FlagsOf(design.border))
    , m_form(std::move(form)) {
    setWindowModality(Qt::ApplicationModal);
}

void DialogWindow::Place(QWidget* owner, bool onScreen) {
    ensurePolished();
    adjustSize();
    winId(); // a dialog is no child of its owner's: it may live on, hidden; so the windows are tied instead
    windowHandle()->setTransientParent(owner ? owner->windowHandle() : nullptr);
    if (onScreen)
        Asking::CentreOnScreen(*this, owner);
    else
        Asking::Centre(*this, owner);
}

void DialogWindow::closeEvent(QCloseEvent* event) {
    if (const std::shared_ptr<Form> form = m_form.lock())
        form->Unload();
    event->accept();
}

/// The keyboard goes back to the owner. Window managers see to that too, but not all of them where a box and
/// the dialog below it go at once.
void DialogWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    const QWindow* window = windowHandle();
    QWindow* owner = window ? window->transientParent() : nullptr;
    if (owner && owner->isVisible())
        owner->requestActivate();
}

void DialogWindow::keyPressEvent(QKeyEvent* event) {
    const std::shared_ptr<Form> form = m_form.lock();
    if (!form || !form->PressButtonFor(*event))
        QWidget::keyPressEvent(event);
}

void DialogWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (const std::shared_ptr<Form> form = m_form.lock())
        form->Resized();
}

} // namespace forms
