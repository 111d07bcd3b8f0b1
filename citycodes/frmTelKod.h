#pragma once

#include "shared/ListForm.h"

/// The list of towns with their regions and dialling codes. Made and shown by its filter.
class frmTelKod : public ListForm {
    Q_OBJECT

public:
    frmTelKod();

protected:
    std::shared_ptr<FilterForm> MakeFilter() override;
};
