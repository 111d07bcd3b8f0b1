#pragma once

#include "shared/FilterForm.h"

/// Searches the towns by name, dialling code and region.
class frmTelKodFilter : public FilterForm {
    Q_OBJECT

public:
    frmTelKodFilter();

protected:
    void CreateControls(QWidget* surface) override;
    std::shared_ptr<ListForm> MakeList() override;
    QString Statement() const override;
};
