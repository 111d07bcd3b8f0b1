#pragma once

#include "platform/forms/Controls.h"
#include "platform/forms/Form.h"

/// Asks for the name of a phone type. Tag is 1 after Save, 0 after Cancel, empty if neither ended the dialog.
class frmEditTelefonTypeDialog final : public forms::Form {
    Q_OBJECT

public:
    frmEditTelefonTypeDialog();

    /// The text of txtNewValue while the dialog is loaded.
    QString NewValue() const;
    void SetNewValue(const QString& value);

protected:
    void CreateControls(QWidget* surface) override;

private:
    void cmdSave_Click();
    void cmdCancel_Click();

    QPointer<forms::TextBox> txtNewValue;
};
