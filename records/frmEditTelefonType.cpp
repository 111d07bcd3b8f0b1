#include "records/frmEditTelefonType.h"

#include "platform/engine/EngineError.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Numbers.h"
#include "records/frmEditTelefonTypeDialog.h"
#include "shared/Declaration.h"

#include <QGridLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int LastProtectedIndex = 3; // the types of a new database stand first
constexpr int FirstUserCode = 10;     // lower codes are kept for types of the program's own

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmEditTelefonType");
    design.caption = QStringLiteral("Редакт. типов телефон. номеров");
    return design;
}

int NextCode() {
    const engine::Recordset last =
        gDatabase->OpenRecordset(QStringLiteral("SELECT max(t01code) FROM t01 WHERE t01type = 0"));
    const engine::Value code = last.Fields(0).Value();
    return std::max(code.IsNull() ? FirstUserCode : code.Long() + 1, FirstUserCode);
}

/// From the current row on, whether a phone has a number that the user would lose.
bool AnyFilledNumber(engine::Recordset& phones) {
    for (; !phones.EndOfFile(); phones.MoveNext()) {
        if (!runtime::Trim(phones.Fields(u"a02cval").Text()).isEmpty())
            return true;
    }
    return false;
}

void Execute(const QString& sql) {
    gDatabase->Execute(sql, engine::dbFailOnError);
}

void ShowIntegrityBox() {
    forms::MsgBox(QStringLiteral("Нарушена целостность базы данных:\r\n"
                                 "в базе отсутствуют записи типов телефонных номеров."),
                  forms::Icon::Critical);
}

} // namespace

frmEditTelefonType::frmEditTelefonType()
    : Form(WindowDesign()) {
}

void frmEditTelefonType::CreateControls(QWidget* surface) {
    lstTelefonType = forms::Named(new forms::ListBox(surface), QStringLiteral("lstTelefonType"));
    lstTelefonType->setAccessibleName(WindowDesign().caption);
    auto* cmdAdd = forms::MakeButton(QStringLiteral("cmdAdd"), QStringLiteral("Добавить..."), surface);
    cmdEdit = forms::MakeButton(QStringLiteral("cmdEdit"), QStringLiteral("Редактировать..."), surface);
    cmdDelete = forms::MakeButton(QStringLiteral("cmdDelete"), QStringLiteral("Удалить"), surface);
    lstTelefonType_Click(); // nothing is selected yet

    auto* buttons = new QVBoxLayout; // one column, so equal widths
    buttons->addWidget(cmdAdd);
    buttons->addWidget(cmdEdit);
    buttons->addWidget(cmdDelete);
    buttons->addStretch();
    auto* layout = new QGridLayout(surface);
    layout->addWidget(lstTelefonType, 0, 0);
    layout->addLayout(buttons, 0, 1);
    // The layout's sizes, not the list's: in a narrower tile it stays off the buttons.
    layout->setColumnMinimumWidth(0, surface->fontMetrics().averageCharWidth() * 36);
    layout->setRowMinimumHeight(0, surface->fontMetrics().height() * 8);
    layout->setColumnStretch(0, 1);

    On(lstTelefonType, &forms::ListBox::Click, [this] { lstTelefonType_Click(); });
    On(cmdAdd, &QPushButton::clicked, [this] { cmdAdd_Click(); });
    On(cmdEdit, &QPushButton::clicked, [this] { cmdEdit_Click(); });
    On(
        cmdDelete, &QPushButton::clicked, [this] { cmdDelete_Click(); }, Head("cmdDelete_Click"));
}

void frmEditTelefonType::Form_Load() {
    FillList();
}

void frmEditTelefonType::FillList() {
    forms::Attempt(Head("FillList"), [this] {
        lstTelefonType->Clear();
        // Without ORDER BY the rows come in the order of their keys, so as they were created.
        engine::Recordset types = gDatabase->OpenRecordset(
            QStringLiteral("SELECT * FROM t01 WHERE t01type = 0"), engine::dbOpenDynaset);
        if (types.RecordCount() < 1)
            ShowIntegrityBox();
        for (; !types.EndOfFile(); types.MoveNext()) {
            const QString name = types.Fields(u"t01cval").Text();
            lstTelefonType->AddItem(name.isEmpty() ? QStringLiteral(" ") : name);
        }
        types.Close();
        lstTelefonType->SetListIndex(0);
    });
}

/// Behind the statement of a change: no box follows that would make it durable or tell that it met no row.
/// What is not in the file is not shown.
void frmEditTelefonType::ShowChange() {
    lstTelefonType->setFocus(); // the button is disabled behind this
    try {
        if (gDatabase->RecordsAffected() == 0)
            ShowIntegrityBox();
        WriteToDisk();
    } catch (const engine::UnsyncedCommit&) {
        FillList();
        throw;
    }
    FillList();
}

QString frmEditTelefonType::SelectedType() const {
    return lstTelefonType->List(lstTelefonType->ListIndex());
}

void frmEditTelefonType::lstTelefonType_Click() {
    const bool changeable = lstTelefonType->ListIndex() > LastProtectedIndex;
    cmdDelete->setEnabled(changeable);
    cmdEdit->setEnabled(changeable);
}

void frmEditTelefonType::cmdAdd_Click() {
    const auto dialog = Default<frmEditTelefonTypeDialog>();
    forms::Attempt(Head("cmdAdd_Click"), [&] {
        dialog->Load();
        dialog->SetCaption(QStringLiteral("Добавление"));
        dialog->Show(true);
        if (runtime::TextToNumber(dialog->Tag()) == 0)
            return;
        Execute(QStringLiteral("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, ") +
                QString::number(NextCode()) + QStringLiteral(", '") + dialog->NewValue() +
                QStringLiteral("')"));
        ShowChange();
    });
    dialog->Unload();
}

void frmEditTelefonType::cmdEdit_Click() {
    const auto dialog = Default<frmEditTelefonTypeDialog>();
    forms::Attempt(Head("cmdEdit_Click"), [&] {
        const QString name = SelectedType();
        dialog->Load();
        dialog->SetCaption(QStringLiteral("Редактирование"));
        dialog->SetNewValue(name);
        dialog->Show(true);
        if (dialog->Tag() != u"1")
            return;
        Execute(QStringLiteral("UPDATE t01 SET t01cval = '") + dialog->NewValue() +
                QStringLiteral("' WHERE t01cval = '") + name + QStringLiteral("'"));
        ShowChange();
    });
    dialog->Unload();
}

void frmEditTelefonType::cmdDelete_Click() {
    const QString name = SelectedType();
    engine::Recordset phones = gDatabase->OpenRecordset(
        QStringLiteral("SELECT * FROM a02, t01 WHERE a02code = t01code AND t01type = 0 AND t01cval = '") +
            name + QStringLiteral("'"),
        engine::dbOpenDynaset);
    if (phones.RecordCount() < 1) {
        Execute(QStringLiteral("DELETE FROM t01 WHERE t01cval = '") + name + QStringLiteral("'"));
    } else {
        if (AnyFilledNumber(phones) &&
            !forms::AskNo(
                QStringLiteral("В книге присутствуют записи с этим типом телефона. При удалении данного "
                               "типа телефона эти записи также будут удалены. Вы согласны?")))
            return;
        phones.MoveFirst();
        const QString code = phones.Fields(u"t01code").Text();
        Execute(QStringLiteral("DELETE FROM a02 WHERE a02code = ") + code);
        Execute(QStringLiteral("DELETE FROM t01 WHERE t01code = ") + code);
    }
    ShowChange();
}
