#pragma once

#include "platform/forms/MsgBox.h"

#include <QMessageBox>

namespace forms {

/// The window of a message box. The text is shown as it is: no markup, no letters underlined. A question can
/// be left by its two buttons alone.
class MessageWindow final : public QMessageBox {
    Q_OBJECT

public:
    MessageWindow(QWidget* owner, const QString& text, forms::Icon icon, forms::Buttons buttons,
                  Answer preselected);

    Answer Chosen() const;

    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool IsQuestion() const { return m_buttons == forms::Buttons::YesNo; }

    forms::Buttons m_buttons;
};

} // namespace forms
