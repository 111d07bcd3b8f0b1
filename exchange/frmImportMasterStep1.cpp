#include "exchange/frmImportMasterStep1.h"

#include "exchange/CsvColumns.h"
#include "exchange/CsvReader.h"
#include "exchange/DelimiterChoice.h"
#include "platform/engine/store/LockWait.h"
#include "platform/forms/CommonDialog.h"
#include "platform/forms/Controls.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Files.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

using exchange::CsvColumn;
using exchange::CsvColumnDesign;
using exchange::FindImported;

namespace {

constexpr int CharactersOfPath = 70; ///< in sight without scrolling

bool IsNameColumn(const QString& cell) {
    const CsvColumnDesign* design = FindImported(cell);
    return design && design->phoneCode == 0;
}

/// The column that fills the same field as this one; empty if there is none.
QString PartnerOf(const QString& cell) {
    const CsvColumnDesign* design = FindImported(cell);
    if (design && design->column == CsvColumn::Name)
        return QStringLiteral("FIRST NAME");
    if (design && design->column == CsvColumn::FirstName)
        return QStringLiteral("NAME");
    return {};
}

} // namespace

frmImportMasterStep1::frmImportMasterStep1()
    : Form({.name = QStringLiteral("frmImportMasterStep1"),
            .caption = QStringLiteral("Мастер импорта телефонов"),
            .border = forms::Border::Fixed,
            .tag = {}}) {
}

void frmImportMasterStep1::CreateControls(QWidget* surface) {
    auto* label1 = forms::MakeLabel(QStringLiteral("Label1"),
                                    QStringLiteral("Добро пожаловать в мастер импорта телефонных номеров."));
    tabImport = forms::MakeTabs(QStringLiteral("tabImport"), surface);
    tabImport->addTab(MakeFilePage(), QStringLiteral("Шаг первый"));
    tabImport->addTab(MakeDelimiterPage(), QStringLiteral("Шаг второй"));
    tabImport->addTab(MakeParameterPage(), QStringLiteral("Шаг третий"));
    tabImport->setAccessibleName(label1->text());

    auto* layout = new QVBoxLayout(surface);
    layout->addWidget(label1);
    layout->addWidget(tabImport);
    layout->addLayout(MakeButtonRow());

    txtFile->setFocus(); // the file comes first
    On(
        tabImport, &QTabWidget::currentChanged, [this] { tabImport_Click(); }, Head("tabImport_Click"));
    On(
        lstParameter, &QListWidget::itemChanged,
        [this](QListWidgetItem* item) { lstParameter_ItemCheck(*item); }, Head("lstParameter_ItemCheck"));
}

QWidget* frmImportMasterStep1::MakeFilePage() {
    auto* page = new QWidget;
    auto* label2 =
        forms::MakeLabel(QStringLiteral("Label2"),
                         QStringLiteral("Выберите файл, из которого Вы хотите импортировать данные:"));
    txtFile = forms::MakeTextBox(QStringLiteral("txtFile"), 150);
    txtFile->HoldPath();
    forms::NameField(txtFile, txtFile->objectName(), label2);
    txtFile->setMinimumWidth(txtFile->fontMetrics().averageCharWidth() * CharactersOfPath);
    auto* cmdSelect = forms::MakeButton(QStringLiteral("cmdSelect"), QStringLiteral("Выбрать..."));

    auto* line = new QHBoxLayout;
    line->addWidget(txtFile);
    line->addWidget(cmdSelect);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(label2);
    layout->addLayout(line);
    layout->addStretch();

    OnGotFocus(txtFile, [this] { txtFile->selectAll(); });
    On(
        cmdSelect, &QPushButton::clicked, [this] { cmdSelect_Click(); }, Head("cmdSelect_Click"));
    return page;
}

QWidget* frmImportMasterStep1::MakeDelimiterPage() {
    auto* page = new QWidget;
    auto* label3 =
        forms::MakeLabel(QStringLiteral("Label3"), QStringLiteral("Выберите разделитель записей в файле:"));
    optDelimiter = new exchange::DelimiterChoice;
    label3->setBuddy(optDelimiter->First());

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(label3);
    layout->addWidget(optDelimiter);
    layout->addStretch();
    return page;
}

QWidget* frmImportMasterStep1::MakeParameterPage() {
    auto* page = new QWidget;
    auto* label4 = forms::MakeLabel(
        QStringLiteral("Label4"), QStringLiteral("Выберите те параметры, которые Вы хотете импортировать:"));
    lstParameter = forms::MakeTickList(QStringLiteral("lstParameter"), label4);

    auto* layout = new QVBoxLayout(page);
    layout->addWidget(label4);
    layout->addWidget(lstParameter);
    return page;
}

QLayout* frmImportMasterStep1::MakeButtonRow() {
    cmdImport = forms::MakeButton(QStringLiteral("cmdImport"), QStringLiteral("Импорт"));
    cmdImport->setEnabled(false);
    auto* cmdCancel = forms::MakeButton(QStringLiteral("cmdCancel"), QStringLiteral("Отмена"));

    SetDefaultButton(cmdImport);
    SetCancelButton(cmdCancel);
    On(
        cmdImport, &QPushButton::clicked, [this] { cmdImport_Click(); }, Head("cmdImport_Click"));
    On(cmdCancel, &QPushButton::clicked, [this] { Unload(); });
    return forms::ButtonRow({cmdImport, cmdCancel});
}

void frmImportMasterStep1::cmdSelect_Click() {
    forms::CommonDialog cdlImport(QStringLiteral("cdlImport"));
    cdlImport.InitDir = runtime::ProgramFolder();
    cdlImport.Flags = forms::cdlOFNFileMustExist | forms::cdlOFNPathMustExist;
    cdlImport.Filter = QStringLiteral("Завелик (*.csv)|*.csv");
    cdlImport.ShowOpen(Surface());
    if (!cdlImport.FileName.isEmpty())
        txtFile->setText(cdlImport.FileName);
}

void frmImportMasterStep1::tabImport_Click() {
    if (tabImport->currentIndex() > 0) {
        const QString path = runtime::Trim(txtFile->text());
        if (path.isEmpty())
            return AskForFile(QStringLiteral("Сначала необходимо выбрать файл из которого будут "
                                             "импортироваться данные (шаг первый)."));
        if (!runtime::IsPlainFile(path))
            return AskForFile(QStringLiteral("Выбранного Вами файла не существует."));
    }
    if (tabImport->currentIndex() != 2) {
        cmdImport->setEnabled(false);
        return;
    }
    FillParameters();
}

void frmImportMasterStep1::AskForFile(const QString& message) {
    forms::MsgBox(message, forms::Icon::Information);
    tabImport->setCurrentIndex(0);
    txtFile->setFocus();
}

void frmImportMasterStep1::FillParameters() {
    lstParameter->clear();
    exchange::CsvReader file(txtFile->text(), optDelimiter->Delimiter());
    const QStringList cells = file.ReadCells();
    std::size_t items = 0;
    for (int place = 0; place < cells.size(); ++place) {
        if (!FindImported(cells.at(place)))
            continue;
        auto* item = new QListWidgetItem(cells.at(place));
        item->setCheckState(Qt::Unchecked);
        lstParameter->addItem(item);
        bytColumnMap.at(items++) = static_cast<std::uint8_t>(place);
    }
    lstParameter->setCurrentRow(0); // the keyboard's place is seen
}

void frmImportMasterStep1::lstParameter_ItemCheck(const QListWidgetItem& item) {
    QList<QListWidgetItem*> partners;
    if (const QString name = PartnerOf(item.text()); !name.isEmpty())
        partners = lstParameter->findItems(name, Qt::MatchFixedString);
    cmdImport->setEnabled(true);
    if (partners.isEmpty())
        return;
    const QSignalBlocker notTheUser(lstParameter);
    partners.front()->setCheckState(Qt::Unchecked);
}

std::vector<int> frmImportMasterStep1::CheckedItems() const {
    std::vector<int> items;
    for (int item = 0; item < lstParameter->count(); ++item) {
        if (lstParameter->item(item)->checkState() == Qt::Checked)
            items.push_back(item);
    }
    return items;
}

void frmImportMasterStep1::cmdImport_Click() {
    const std::vector<int> items = CheckedItems();
    if (items.empty()) {
        forms::MsgBox(QStringLiteral("Не выбрано ни одного параметра для импорта."),
                      forms::Icon::Exclamation);
        return;
    }
    if (std::none_of(items.begin(), items.end(),
                     [this](int item) { return IsNameColumn(lstParameter->item(item)->text()); })) {
        forms::MsgBox(QStringLiteral("Необходимо выбрать хотя бы один из следующих параметров: "
                                     "first name, last name, middle name, name."),
                      forms::Icon::Exclamation);
        return;
    }
    const Outcome outcome = ImportFile(items);
    if (outcome.errors != 0)
        forms::MsgBox(QStringLiteral("Импорт записей завершен с ошибками. Обработано ") +
                          QString::number(outcome.lines - 1) +
                          QStringLiteral(" записей, из них с ошибками: ") + QString::number(outcome.errors) +
                          u'.',
                      forms::Icon::Information);
    else
        forms::MsgBox(QStringLiteral("Импорт записей успешно завершен. Обновлено записей: ") +
                          QString::number(objRecord.GetUpdateNumber()) +
                          QStringLiteral(". Добавлено записей: ") +
                          QString::number(objRecord.GetInsertNumber()),
                      forms::Icon::Information);
    Unload();
}

/// Merges the rows of the file by the columns of these items of the list. What went in before a failure stays
/// in.
frmImportMasterStep1::Outcome frmImportMasterStep1::ImportFile(const std::vector<int>& items) {
    const forms::BusyPointer busy;
    const engine::OneLockWait oneLockWait;
    exchange::CsvReader file(txtFile->text(), optDelimiter->Delimiter());
    QStringList names;
    for (const int item : items)
        names.append(lstParameter->item(item)->text());

    Outcome outcome;
    while (!file.AtEnd()) {
        const QStringList cells = file.ReadCells();
        if (outcome.lines != 0) {
            objRecord.Clear();
            for (std::size_t i = 0; i < items.size(); ++i)
                objRecord.SetParameter(names.at(static_cast<int>(i)),
                                       exchange::CellAt(cells, bytColumnMap.at(items[i])));
            if (!objRecord.PutRecord())
                ++outcome.errors;
        }
        ++outcome.lines;
    }
    return outcome;
}
