#pragma once

#include "platform/forms/ListForm.h"

/// The list of cards that one statement finds, with the way to the card windows and out to files.
class frmRecords final : public forms::ListForm {
    Q_OBJECT

public:
    frmRecords();

    enum Action { Edit = 0, Add = 1, View = 2 };

    Q_INVOKABLE void ExtractToCSV();
    Q_INVOKABLE void ExtractToAnotherDB();
    /// Opens a new card for the record on the current row, or for a new record.
    Q_INVOKABLE void EditRecord(int nAction);

protected:
    std::shared_ptr<forms::FilterForm> MakeFilter() override;
    void CreateControls(QWidget* surface) override;

private:
    bool StandsOnRecord() const;
};
