#include "platform/forms/FrameWindow.h"

#include "platform/forms/Colours.h"

#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

namespace forms {

FrameWindow::FrameWindow(std::weak_ptr<Form> form)
    : m_form(std::move(form)) {
    const auto add = [this](QKeyCombination key, auto act) {
        connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this, act);
    };
    add(Qt::Key_F10, [this] { OpenMenuBar(); });
    add(Qt::CTRL | Qt::Key_F6, [this] { GoThroughChildren(1); });
    add(Qt::CTRL | Qt::SHIFT | Qt::Key_F6, [this] { GoThroughChildren(-1); });
    const auto withActive = [this](auto act) {
        return [this, act] {
            if (QMdiSubWindow* child = Area()->activeSubWindow())
                (child->*act)();
        };
    };
    add(Qt::ALT | Qt::Key_Minus, withActive(&QMdiSubWindow::showSystemMenu));
    // Where this is the system's own key, the children have it already.
    const QKeyCombination close = Qt::CTRL | Qt::Key_F4;
    if (!QKeySequence::keyBindings(QKeySequence::Close).contains(QKeySequence(close)))
        add(close, withActive(&QMdiSubWindow::close));
}

/// The first menu, on its first entry.
void FrameWindow::OpenMenuBar() {
    QAction* first = menuBar()->actions().value(0);
    if (!first || !first->menu())
        return;
    menuBar()->setActiveAction(first);
    first->menu()->setActiveAction(first->menu()->actions().value(0));
}

/// In the order in which they were opened, so that both ways lead through all of them.
void FrameWindow::GoThroughChildren(int step) {
    QList<QMdiSubWindow*> children = Area()->subWindowList(QMdiArea::CreationOrder);
    children.removeIf([](const QMdiSubWindow* child) { return child->isHidden(); });
    const qsizetype count = children.size();
    const qsizetype active = children.indexOf(Area()->activeSubWindow());
    if (active >= 0)
        Area()->setActiveSubWindow(children[(active + step + count) % count]);
}

QMdiArea* FrameWindow::Area() const {
    return qobject_cast<QMdiArea*>(centralWidget());
}

QBrush FrameWindow::GroundOf(const QPalette& palette) {
    const QColor window = palette.color(QPalette::Window);
    return window.darker(IsDark(window) ? 160 : 150);
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
    if (event->type() == QEvent::PaletteChange && Area())
        Area()->setBackground(GroundOf(palette()));
}

} // namespace forms
