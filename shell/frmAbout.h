#pragma once

#include "platform/forms/Form.h"
#include "platform/runtime/Mail.h"

class QGridLayout;

namespace forms {
class TextBox;
}

/// Versions, file in use, date of the build, and a mail to the author.
class frmAbout final : public forms::Form {
    Q_OBJECT

public:
    frmAbout();

protected:
    void CreateControls(QWidget* surface) override;
    void Form_Load() override;
    /// Esc closes the window, which has no button for it.
    bool Form_KeyDown(int key, Qt::KeyboardModifiers modifiers) override;

private:
    /// A label and its read-only text box as the next row of the grid.
    static forms::TextBox* AddRow(QGridLayout* grid, const QString& labelName, const QString& caption,
                                  const QString& fieldName);
    void lblMailTo_Click();

    QPointer<forms::TextBox> txtVersion;
    QPointer<forms::TextBox> txtVersionBase;
    QPointer<forms::TextBox> txtUseBase;
    QPointer<forms::TextBox> txtCompileDate;
    runtime::MapiSession mpsConnect;
    runtime::MapiMessage mpmMessage;
};
