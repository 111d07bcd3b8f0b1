#include "platform/forms/EscapeWatch.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace forms {

namespace {

constexpr qint64 lookInterval = 50; ///< milliseconds

} // namespace

EscapeWatch::~EscapeWatch() {
    for (KeptEvent& kept : m_kept)
        if (kept.receiver)
            QCoreApplication::postEvent(kept.receiver, kept.event.release());
}

bool EscapeWatch::WasPressed() {
    if (m_pressed || m_lastLook.elapsed() < lookInterval)
        return m_pressed;
    QCoreApplication* const program = QCoreApplication::instance();
    program->installEventFilter(this);
    QCoreApplication::processEvents();
    program->removeEventFilter(this);
    m_lastLook.restart();
    return m_pressed;
}

bool EscapeWatch::eventFilter(QObject* receiver, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
        m_pressed = m_pressed || static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
        return true;
    case QEvent::ShortcutOverride:
        event->accept(); // else the key would be looked for among the shortcuts
        return true;
    case QEvent::Shortcut:
    case QEvent::InputMethod:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::Timer: // it fires again
        return true;
    case QEvent::Close:
        event->ignore();
        return true;
    case QEvent::FocusAboutToChange:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
    case QEvent::ActivationChange:
    case QEvent::ApplicationStateChange:
    case QEvent::WindowStateChange:
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::LayoutRequest:
        m_kept.push_back({receiver, std::unique_ptr<QEvent>(event->clone())});
        return true;
    default:
        return event->isInputEvent();
    }
}

} // namespace forms
