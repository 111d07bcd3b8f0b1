#pragma once

#include <QPointer>
#include <QWidget>

namespace forms {

/// Whose handler is running, as long as the guard lives: boxes and dialogs stand in the middle of the window
/// that asks.
class Asking {
public:
    explicit Asking(QWidget* window);
    ~Asking();
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;

    /// What a box or a dialog that is about to be shown belongs to; null if no window is on the screen.
    static QWidget* Owner();
    /// Moves a window that is about to be shown to the middle of the one that asks, if that stands on the
    /// owner and can be seen; else to the middle of the owner, or without one of the screen. It stays wholly
    /// on the screen.
    static void Centre(QWidget& window, const QWidget* owner);
    static void CentreOnScreen(QWidget& window, const QWidget* owner);

private:
    QPointer<QWidget> m_window;
    Asking* m_outer;
};

} // namespace forms
