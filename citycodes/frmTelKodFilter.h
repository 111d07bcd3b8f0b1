#pragma once

#include "platform/forms/FilterForm.h"

/// Searches the towns by name, dialling code and region.
class frmTelKodFilter : public forms::FilterForm {
    Q_OBJECT

public:
    frmTelKodFilter();

protected:
    void CreateControls(QWidget* surface) override;
    std::shared_ptr<forms::ListForm> MakeList() override;
    QString Statement() const override;
    ListSource Source() override;

private:
    forms::Criterion* m_city = nullptr;
    forms::Criterion* m_cityKod = nullptr;
    forms::Criterion* m_region = nullptr;
};
