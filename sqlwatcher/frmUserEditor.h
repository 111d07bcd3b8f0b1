#pragma once

#include "platform/forms/Form.h"

class QLabel;
class QPlainTextEdit;

namespace engine {
class Recordset;
}
namespace forms {
class FlexGrid;
}

/// A window in which the user runs a query on the open database and looks at its result.
class frmUserEditor : public forms::Form {
    Q_OBJECT

public:
    frmUserEditor();

protected:
    void CreateControls(QWidget* surface) override;
    bool Form_KeyDown(int key, Qt::KeyboardModifiers modifiers) override;
    void Form_Resize() override;

private:
    QString Query() const;
    void RunQuery();
    void ShowResult(engine::Recordset& rows);
    void FillRows(engine::Recordset& rows);

    QPointer<QLabel> Label3;
    QPointer<QPlainTextEdit> txtSQLEditor;
    QPointer<forms::FlexGrid> gridSQLEditor;
};
