#include "records/frmRecords.h"

#include "exchange/ExtractToAnotherDB.h"
#include "exchange/ExtractToCSV.h"
#include "platform/runtime/Numbers.h"
#include "records/frmEditRecords.h"
#include "records/frmRecordsFilter.h"

namespace {

constexpr int NameWidth = 3000;
constexpr QSize StartingSize(760, 440); // wide enough for the last column to stretch

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmRecords");
    design.caption = QStringLiteral("Записи");
    design.size = StartingSize;
    return design;
}

ListDesign Columns() {
    ListDesign list;
    list.gridName = QStringLiteral("gridRecords");
    list.contextMenu = QStringLiteral("mnuRecords");
    list.defaultStatement = QStringLiteral("SELECT * FROM a01 ORDER BY a01last, a01frst, a01midl");
    list.columns = {
        {QStringLiteral("ИД"), QStringLiteral("a01clid"), 0, true},
        {QStringLiteral("Фамилия"), QStringLiteral("a01last"), NameWidth},
        {QStringLiteral("Имя"), QStringLiteral("a01frst"), NameWidth},
        {QStringLiteral("Отчество"), QStringLiteral("a01midl")},
    };
    list.searchColumn = 1;
    return list;
}

} // namespace

frmRecords::frmRecords()
    : ListForm(WindowDesign(), Columns()) {
}

std::shared_ptr<FilterForm> frmRecords::MakeFilter() {
    return Create<frmRecordsFilter>();
}

void frmRecords::CreateControls(QWidget* surface) {
    ListForm::CreateControls(surface);
    On(Grid(), &forms::FlexGrid::DblClick, [this] { EditRecord(View); });
}

void frmRecords::ExtractToCSV() {
    exchange::ExtractToCSV(*this, CurrentSQL());
}

void frmRecords::ExtractToAnotherDB() {
    exchange::ExtractToAnotherDB(*this, CurrentSQL());
}

bool frmRecords::StandsOnRecord() const {
    // The tag tells a record from the blank row of an empty list.
    return runtime::TextToLong(Grid()->Tag()) >= Grid()->Row();
}

void frmRecords::EditRecord(int nAction) {
    if (nAction != Add && !StandsOnRecord())
        return;
    const auto card = Create<frmEditRecords>();
    card->Load();
    switch (nAction) {
    case Edit:
        card->SetCaption(QStringLiteral("Редактирование параметров записи"));
        card->SetTag(Grid()->TextMatrix(Grid()->Row(), 0));
        break;
    case Add:
        card->SetCaption(QStringLiteral("Добавление новой записи"));
        break;
    case View:
        card->SetCaption(QStringLiteral("Просмотр параметров записи"));
        card->SetTag(Grid()->TextMatrix(Grid()->Row(), 0));
        card->LockForView();
        break;
    }
    card->SetFrm(std::static_pointer_cast<ListForm>(shared_from_this()));
    card->Show();
}
