#pragma once

#include "platform/forms/FilterForm.h"

/// The window that says which cards to list.
class frmRecordsFilter final : public forms::FilterForm {
    Q_OBJECT

public:
    frmRecordsFilter();

protected:
    void CreateControls(QWidget* surface) override;
    std::shared_ptr<forms::ListForm> MakeList() override;
    ListSource Source() override;
    QString Statement() const override;

private:
    QWidget* MakeRecordPage(QWidget* parent);
    QWidget* MakeTelefonPage(QWidget* parent);

    forms::Criterion* m_lastName = nullptr;
    forms::Criterion* m_firstName = nullptr;
    forms::Criterion* m_middleName = nullptr;
    forms::Criterion* m_remark = nullptr;
    forms::Criterion* m_bith = nullptr;
    forms::Criterion* m_telefonType = nullptr;
    forms::Criterion* m_telefonNumber = nullptr;
};
