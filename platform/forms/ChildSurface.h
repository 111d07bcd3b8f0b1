#pragma once

#include "platform/forms/Form.h"

namespace forms {

/// The ground of a child window's controls.
class ChildSurface final : public QWidget {
    Q_OBJECT

public:
    explicit ChildSurface(std::weak_ptr<Form> form)
        : m_form(std::move(form)) {}

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::weak_ptr<Form> m_form;
};

} // namespace forms
