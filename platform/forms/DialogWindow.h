#pragma once

#include "platform/forms/Form.h"

namespace forms {

/// A top-level window with its controls. Its close box unloads the form.
class DialogWindow final : public QWidget {
    Q_OBJECT

public:
    DialogWindow(std::weak_ptr<Form> form, const Design& design);

    /// Centres the window on its owner, or on the screen if it is to or has no owner, and ties it to the
    /// owner.
    void Place(QWidget* owner, bool onScreen);

protected:
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    std::weak_ptr<Form> m_form;
};

} // namespace forms
