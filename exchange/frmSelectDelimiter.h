#pragma once

#include "platform/forms/Form.h"

class QListWidget;

namespace exchange {
class DelimiterChoice;
}

/// The modal dialog that asks for the delimiter and the columns of an export. Tag "1" after OK, else "0". A
/// confirmed cancel leaves it loaded and hidden, so that it comes back as the user left it.
class frmSelectDelimiter : public forms::Form {
    Q_OBJECT

public:
    frmSelectDelimiter();

    QChar Delimiter() const;
    /// Whether an item of lstParameter is ticked; items count from 1.
    bool IsChecked(int item) const;

protected:
    void CreateControls(QWidget* surface) override;
    void Form_Load() override;

private:
    void cmdOk_Click();
    void cmdCancel_Click();

    QPointer<exchange::DelimiterChoice> optDelimiter;
    QPointer<QListWidget> lstParameter;
};
