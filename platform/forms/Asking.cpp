#include "platform/forms/Asking.h"

#include "platform/forms/MdiForm.h"

#include <QApplication>
#include <QMainWindow>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace forms {

namespace {

Asking* innermost = nullptr;

QRect ScreenOf(const QWidget* owner) {
    const QScreen* screen = owner ? owner->screen() : QGuiApplication::primaryScreen();
    return screen->availableGeometry();
}

void MoveCentre(QWidget& window, QPoint centre, const QRect& limits) {
    QRect place(QPoint(), window.size());
    place.moveCenter(centre);
    place.moveLeft(std::max(limits.left(), std::min(place.left(), limits.right() - place.width())));
    place.moveTop(std::max(limits.top(), std::min(place.top(), limits.bottom() - place.height())));
    window.move(place.topLeft());
}

/// The part of a child window that can be seen on its frame.
QRect InSight(const QWidget& child) {
    const auto onScreen = [](const QWidget& widget) {
        return QRect(widget.mapToGlobal(QPoint()), widget.size());
    };
    return onScreen(child) & onScreen(*child.window());
}

} // namespace

Asking::Asking(QWidget* window)
    : m_window(window)
    , m_outer(std::exchange(innermost, this)) {
}

Asking::~Asking() {
    innermost = m_outer;
}

QWidget* Asking::Owner() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    // A dialog that has just been unloaded may still count as active; it would take the box along.
    QWidget* active = QApplication::activeWindow();
    if (active && active->isVisible())
        return active->window();
    const MdiForm* frame = MdiForm::Current();
    return frame && frame->Window()->isVisible() ? frame->Window() : nullptr;
}

void Asking::Centre(QWidget& window, const QWidget* owner) {
    if (!owner)
        return CentreOnScreen(window, owner);
    QPoint centre = owner->window()->frameGeometry().center();
    const QWidget* child = innermost ? innermost->m_window.data() : nullptr;
    const bool asksOnOwner = child && !child->isWindow() && child->window() == owner->window() &&
                             child->isVisible() && !child->isMinimized();
    if (const QRect seen = asksOnOwner ? InSight(*child) : QRect(); !seen.isEmpty())
        centre = seen.center();
    MoveCentre(window, centre, ScreenOf(owner));
}

void Asking::CentreOnScreen(QWidget& window, const QWidget* owner) {
    const QRect screen = ScreenOf(owner);
    MoveCentre(window, screen.center(), screen);
}

} // namespace forms
