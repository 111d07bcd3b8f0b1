#pragma once

#include "exchange/clsRecord.h"
#include "platform/forms/Form.h"

#include <array>
#include <vector>

class QLayout;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QTabWidget;

namespace exchange {
class DelimiterChoice;
}
namespace forms {
class TextBox;
}

/// The master that imports a delimited text file: file, delimiter, columns.
class frmImportMasterStep1 : public forms::Form {
    Q_OBJECT

public:
    frmImportMasterStep1();

protected:
    void CreateControls(QWidget* surface) override;

private:
    /// What a run over the file came to.
    struct Outcome {
        runtime::Int16 lines; ///< the header counts
        runtime::Int16 errors;
    };

    QWidget* MakeFilePage();
    QWidget* MakeDelimiterPage();
    QWidget* MakeParameterPage();
    QLayout* MakeButtonRow();

    void cmdSelect_Click();
    void tabImport_Click();
    void lstParameter_ItemCheck(const QListWidgetItem& item);
    void cmdImport_Click();

    void AskForFile(const QString& message);
    void FillParameters();
    std::vector<int> CheckedItems() const;
    Outcome ImportFile(const std::vector<int>& items);

    QPointer<QTabWidget> tabImport;
    QPointer<forms::TextBox> txtFile;
    QPointer<exchange::DelimiterChoice> optDelimiter;
    QPointer<QListWidget> lstParameter;
    QPointer<QPushButton> cmdImport;

    /// For each item of lstParameter the place of its column in the file, both counted from 0.
    std::array<std::uint8_t, 151> bytColumnMap{};
    clsRecord objRecord;
};
