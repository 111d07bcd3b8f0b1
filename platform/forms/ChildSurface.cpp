#include "platform/forms/ChildSurface.h"

#include <QKeyEvent>

namespace forms {

void ChildSurface::keyPressEvent(QKeyEvent* event) {
    const std::shared_ptr<Form> form = m_form.lock();
    if (!form || !form->PressButtonFor(*event))
        QWidget::keyPressEvent(event);
}

} // namespace forms
