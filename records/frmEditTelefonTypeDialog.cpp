#include "records/frmEditTelefonTypeDialog.h"

#include "platform/forms/MsgBox.h"
#include "platform/runtime/Numbers.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace {

constexpr int NameLength = 50;

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmEditTelefonTypeDialog");
    design.kind = forms::Kind::Dialog;
    design.border = forms::Border::Fixed;
    return design;
}

} // namespace

frmEditTelefonTypeDialog::frmEditTelefonTypeDialog()
    : Form(WindowDesign()) {
}

void frmEditTelefonTypeDialog::CreateControls(QWidget* surface) {
    auto* Label1 = forms::MakeLabel(QStringLiteral("Label1"), QStringLiteral("Новое значение:"), surface);
    txtNewValue = forms::MakeTextBox(QStringLiteral("txtNewValue"), NameLength, surface);
    forms::NameField(txtNewValue, QStringLiteral("txtNewValue"), Label1);
    txtNewValue->setMinimumWidth(surface->fontMetrics().averageCharWidth() * 44);
    auto* cmdSave = forms::MakeButton(QStringLiteral("cmdSave"), QStringLiteral("Сохранить"), surface);
    auto* cmdCancel = forms::MakeButton(QStringLiteral("cmdCancel"), QStringLiteral("Отмена"), surface);

    auto* layout = new QVBoxLayout(surface);
    layout->addWidget(Label1);
    layout->addWidget(txtNewValue);
    layout->addLayout(forms::ButtonRow({cmdSave, cmdCancel}));

    SetDefaultButton(cmdSave);
    SetCancelButton(cmdCancel);
    OnGotFocus(txtNewValue, [this] { txtNewValue->selectAll(); });
    OnLostFocus(txtNewValue, [this] { forms::ReplaceApostrophes(txtNewValue); });
    On(cmdSave, &QPushButton::clicked, [this] { cmdSave_Click(); });
    On(cmdCancel, &QPushButton::clicked, [this] { cmdCancel_Click(); });
}

QString frmEditTelefonTypeDialog::NewValue() const {
    return txtNewValue->Value();
}

void frmEditTelefonTypeDialog::SetNewValue(const QString& value) {
    txtNewValue->ShowStored(value);
}

void frmEditTelefonTypeDialog::cmdSave_Click() {
    if (runtime::Trim(txtNewValue->text()).isEmpty()) {
        forms::MsgBox(
            QStringLiteral("Поле 'Новое значение' нельзя оставлять пустым или заполнять одними пробелами."),
            forms::Icon::Exclamation);
        return;
    }
    SetTag(QStringLiteral("1"));
    SetVisible(false);
}

void frmEditTelefonTypeDialog::cmdCancel_Click() {
    SetTag(QStringLiteral("0"));
    SetVisible(false);
}
