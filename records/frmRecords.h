#pragma once

#include "shared/ListForm.h"

/// The list of cards that one statement finds, with the way to the card windows and out to files.
class frmRecords final : public ListForm {
    Q_OBJECT

public:
    frmRecords();

    enum Action { Edit = 0, Add = 1, View = 2 };

    void ExtractToCSV() override;
    void ExtractToAnotherDB() override;
    /// Opens a new card for the record on the current row, or for a new record.
    void EditRecord(int nAction) override;

protected:
    std::shared_ptr<FilterForm> MakeFilter() override;
    void CreateControls(QWidget* surface) override;

private:
    bool StandsOnRecord() const;
};
