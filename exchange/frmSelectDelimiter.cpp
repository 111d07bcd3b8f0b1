#include "exchange/frmSelectDelimiter.h"

#include "exchange/CsvColumns.h"
#include "exchange/DelimiterChoice.h"
#include "platform/forms/Controls.h"
#include "platform/forms/MsgBox.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <map>

frmSelectDelimiter::frmSelectDelimiter()
    : Form({.name = QStringLiteral("frmSelectDelimiter"),
            .caption = QStringLiteral("Выбор разделителя"),
            .kind = forms::Kind::Dialog,
            .border = forms::Border::Fixed,
            .tag = QStringLiteral("0"),
            .onScreen = true}) {
}

void frmSelectDelimiter::CreateControls(QWidget* surface) {
    auto* label1 =
        forms::MakeLabel(QStringLiteral("Label1"), QStringLiteral("Выберите разделитель значений в файле:"));
    auto* label2 = forms::MakeLabel(QStringLiteral("Label2"),
                                    QStringLiteral("Выберите параметры, которые Вы хотите экспортировать:"));
    optDelimiter = new exchange::DelimiterChoice;
    label1->setBuddy(optDelimiter->First());
    lstParameter = forms::MakeTickList(QStringLiteral("lstParameter"), label2);
    auto* cmdOk = forms::MakeButton(QStringLiteral("cmdOk"), QStringLiteral("OK"));
    auto* cmdCancel = forms::MakeButton(QStringLiteral("cmdCancel"), QStringLiteral("Отмена"));

    auto* layout = new QVBoxLayout(surface);
    layout->addWidget(label1);
    layout->addWidget(optDelimiter);
    layout->addWidget(label2);
    layout->addWidget(lstParameter);
    layout->addLayout(forms::ButtonRow({cmdOk, cmdCancel}));

    SetDefaultButton(cmdOk);
    SetCancelButton(cmdCancel);
    On(cmdOk, &QPushButton::clicked, [this] { cmdOk_Click(); });
    On(cmdCancel, &QPushButton::clicked, [this] { cmdCancel_Click(); });
}

void frmSelectDelimiter::Form_Load() {
    lstParameter->clear();
    std::map<int, QString> captions;
    for (const exchange::CsvColumnDesign& design : exchange::CsvColumns())
        captions[design.item] = design.caption;
    for (const auto& [item, caption] : captions) {
        lstParameter->addItem(caption);
        lstParameter->item(item - 1)->setCheckState(Qt::Checked);
    }
    lstParameter->setFixedHeight(forms::HeightForRows(*lstParameter, lstParameter->count()));
}

QChar frmSelectDelimiter::Delimiter() const {
    return optDelimiter->Delimiter();
}

bool frmSelectDelimiter::IsChecked(int item) const {
    return lstParameter->item(item - 1)->checkState() == Qt::Checked;
}

void frmSelectDelimiter::cmdOk_Click() {
    SetTag(QStringLiteral("1"));
    SetVisible(false);
}

void frmSelectDelimiter::cmdCancel_Click() {
    if (forms::AskNo(QStringLiteral("Вы действительно хотите прервать процесс экспорта данных в файл CSV?")))
        SetVisible(false);
}
