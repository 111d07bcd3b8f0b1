#pragma once

#include "platform/forms/MsgBox.h"

#include <QMessageBox>

namespace forms {

/// The window of a message box. The text is shown as it is: no markup, no letters underlined. Esc and the
/// close box of a question mean No.
class MessageWindow final : public QMessageBox {
    Q_OBJECT

public:
    MessageWindow(QWidget* owner, const QString& text, forms::Icon icon, forms::Buttons buttons,
                  Answer preselected);

    Answer Chosen() const;

protected:
    void showEvent(QShowEvent* event) override;

private:
    bool IsQuestion() const { return m_buttons == forms::Buttons::YesNo; }

    forms::Buttons m_buttons;
};

} // namespace forms
