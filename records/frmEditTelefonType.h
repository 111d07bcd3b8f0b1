#pragma once

#include "platform/forms/Controls.h"
#include "platform/forms/Form.h"

/// Adds, renames and deletes phone types. The types that every new database starts with are protected.
class frmEditTelefonType final : public forms::Form {
    Q_OBJECT

public:
    frmEditTelefonType();

protected:
    void CreateControls(QWidget* surface) override;
    void Form_Load() override;

private:
    void FillList();
    void ShowChange();
    void lstTelefonType_Click();
    void cmdAdd_Click();
    void cmdEdit_Click();
    void cmdDelete_Click();

    QString SelectedType() const;

    QPointer<forms::ListBox> lstTelefonType;
    QPointer<QPushButton> cmdEdit;
    QPointer<QPushButton> cmdDelete;
};
