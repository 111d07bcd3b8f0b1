#pragma once

#include "platform/forms/ListForm.h"

/// The list of towns with their regions and dialling codes. Made and shown by its filter.
class frmTelKod : public forms::ListForm {
    Q_OBJECT

public:
    frmTelKod();

protected:
    std::shared_ptr<forms::FilterForm> MakeFilter() override;
};
