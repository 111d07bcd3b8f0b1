#pragma once

#include <QElapsedTimer>
#include <QEvent>
#include <QObject>
#include <QPointer>

#include <memory>
#include <vector>

namespace forms {

/// Finds out whether Esc is pressed while a long piece of work keeps the program from its event loop.
///
/// No handler of the program runs meanwhile: keys, clicks, drops and requests to close that come during the
/// work are passed over, timers wait; of a change of the active window, the focus, place or size the windows
/// are told at the end of the watch. Only painting goes on.
class EscapeWatch : public QObject {
public:
    EscapeWatch() { m_lastLook.start(); }
    ~EscapeWatch() override;

    /// Looks every 50 ms at most; stays true.
    bool WasPressed();

protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    struct KeptEvent {
        QPointer<QObject> receiver;
        std::unique_ptr<QEvent> event;
    };

    bool m_pressed = false;
    QElapsedTimer m_lastLook;
    std::vector<KeptEvent> m_kept;
};

} // namespace forms
