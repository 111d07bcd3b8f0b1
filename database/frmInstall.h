#pragma once

#include "platform/forms/CommonDialog.h"
#include "platform/forms/Form.h"

namespace forms {
class TextBox;
}

/// The master for users without a database: creates a file or picks one. Tag "1" on hiding says that
/// gWorkspace, gDatabase and the stored path are set.
class frmInstall final : public forms::Form {
    Q_OBJECT

public:
    frmInstall();

protected:
    void CreateControls(QWidget* surface) override;
    void Form_Load() override;

private:
    void cmdCreate_Click();
    void cmdSelect_Click();
    /// Stores the path and ends the modal show with the answer "1".
    void Finish(const QString& path);

    QPointer<forms::TextBox> txtDBPath;
    forms::CommonDialog cdlInstall{QStringLiteral("cdlInstall")};
};
