#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace forms {

/// The busy pointer while it lives.
class BusyPointer {
public:
    BusyPointer() { Renew(); }
    ~BusyPointer() { Release(); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

    /// Back to the normal pointer before the end of life, and busy again.
    void Release() {
        if (std::exchange(m_busy, false))
            QGuiApplication::restoreOverrideCursor();
    }
    void Renew() {
        if (!std::exchange(m_busy, true))
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    }

private:
    bool m_busy = false;
};

} // namespace forms
