#pragma once

#include "shared/FilterForm.h"

/// The window that says which cards to list.
class frmRecordsFilter final : public FilterForm {
    Q_OBJECT

public:
    frmRecordsFilter();

protected:
    void CreateControls(QWidget* surface) override;
    std::shared_ptr<ListForm> MakeList() override;
    QString Statement() const override;

private:
    QWidget* MakeRecordPage(QWidget* parent);
    QWidget* MakeTelefonPage(QWidget* parent);
};
