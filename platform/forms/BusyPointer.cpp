#include "platform/forms/BusyPointer.h"

#include <QCursor>
#include <QGuiApplication>

namespace forms {

BusyPointer::BusyPointer() {
    Renew();
}

BusyPointer::~BusyPointer() {
    Release();
}

void BusyPointer::Release() {
    if (m_busy)
        QGuiApplication::restoreOverrideCursor();
    m_busy = false;
}

void BusyPointer::Renew() {
    if (!m_busy)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    m_busy = true;
}

} // namespace forms
