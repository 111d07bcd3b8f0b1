#include "organiser/frmEvent.h"

#include "platform/engine/EngineError.h"
#include "platform/forms/Controls.h"
#include "platform/forms/DTPicker.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Dates.h"
#include "platform/runtime/Numbers.h"
#include "shared/Declaration.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QVBoxLayout>

namespace {

constexpr int NewEvent = -1;

forms::Design WindowDesign() {
    forms::Design design;
    design.name = QStringLiteral("frmEvent");
    design.kind = forms::Kind::Dialog;
    design.border = forms::Border::Fixed;
    design.tag = QString::number(NewEvent);
    return design;
}

} // namespace

void General::ShowEventDialog(const QString& strCaption, QDate dtDate, std::int32_t nEventId) {
    const auto dialog = forms::Form::Create<frmEvent>();
    dialog->SetCaption(strCaption);
    dialog->SetEventDate(dtDate);
    if (nEventId != NewEvent)
        dialog->SetTag(QString::number(nEventId));
    dialog->Show(true);
}

frmEvent::frmEvent()
    : Form(WindowDesign()) {
}

void frmEvent::SetEventDate(QDate date) {
    Load();
    dtpEventDate->SetValue(date);
}

void frmEvent::CreateControls(QWidget* surface) {
    QLabel* Label1 = forms::MakeLabel(QStringLiteral("Label1"), QStringLiteral("Дата события:"), surface);
    dtpEventDate = new forms::DTPicker(surface);
    forms::NameField(dtpEventDate, QStringLiteral("dtpEventDate"), Label1);

    QLabel* Label2 = forms::MakeLabel(QStringLiteral("Label2"), QStringLiteral("Название события:"), surface);
    txtEventName = forms::MakeTextBox(QStringLiteral("txtEventName"), 50, surface);
    forms::NameField(txtEventName, QStringLiteral("txtEventName"), Label2);
    txtEventName->setMinimumWidth(txtEventName->fontMetrics().averageCharWidth() * 40);

    auto* Frame1 =
        forms::Named(new QGroupBox(QStringLiteral("Периодичность:"), surface), QStringLiteral("Frame1"));
    optEventPeriod[0] = forms::Named(new QRadioButton(QStringLiteral("Не повторять"), Frame1),
                                     QStringLiteral("optEventPeriod_0"));
    optEventPeriod[1] = forms::Named(new QRadioButton(QStringLiteral("Повторять раз в год"), Frame1),
                                     QStringLiteral("optEventPeriod_1"));
    optEventPeriod[1]->setChecked(true);
    forms::GroupOptions({optEventPeriod[0], optEventPeriod[1]});
    auto* periods = new QVBoxLayout(Frame1);
    periods->addWidget(optEventPeriod[0]);
    periods->addWidget(optEventPeriod[1]);

    QPushButton* cmdSaveEvent =
        forms::MakeButton(QStringLiteral("cmdSaveEvent"), QStringLiteral("Сохранить"), surface);
    QPushButton* cmdCancelEvent =
        forms::MakeButton(QStringLiteral("cmdCancelEvent"), QStringLiteral("Отменить"), surface);

    auto* layout = new QGridLayout(surface);
    layout->addWidget(Label1, 0, 0);
    layout->addWidget(dtpEventDate, 0, 1, Qt::AlignLeft);
    layout->addWidget(Label2, 1, 0);
    layout->addWidget(txtEventName, 1, 1);
    layout->addWidget(Frame1, 2, 0, 1, 2);
    layout->addLayout(forms::ButtonRow({cmdSaveEvent, cmdCancelEvent}), 3, 0, 1, 2);

    SetDefaultButton(cmdSaveEvent);
    SetCancelButton(cmdCancelEvent);
    On(
        cmdSaveEvent, &QPushButton::clicked, [this] { cmdSaveEvent_Click(); }, Head("cmdSaveEvent_Click"));
    On(cmdCancelEvent, &QPushButton::clicked, [this] { Unload(); });
}

void frmEvent::Form_Activate() {
    if (Tag().isEmpty() || runtime::Val(Tag()) <= NewEvent)
        return;
    forms::Attempt(Head("Form_Load"), [this] { LoadEvent(); });
}

void frmEvent::LoadEvent() {
    const engine::Recordset event = gDatabase->OpenRecordset(
        QStringLiteral("SELECT * FROM a03 WHERE a03evid = ") + Tag(), engine::dbOpenDynaset);
    if (event.RecordCount() == 0)
        return;
    dtpEventDate->SetValue(runtime::TextToDate(event.Fields(u"a03evdt").Text()).date());
    txtEventName->ShowStored(event.Fields(u"a03evnm").Text());
    const bool oneOff = event.Fields(u"a03evpr").Value().Long() == 0;
    optEventPeriod[oneOff ? 0 : 1]->setChecked(true);
}

void frmEvent::cmdSaveEvent_Click() {
    const QString name = runtime::Trim(txtEventName->text());
    if (name.isEmpty()) {
        forms::MsgBox(QStringLiteral("Необходимо задать поле 'Название события'"), forms::Icon::Exclamation);
        txtEventName->setFocus();
        return;
    }

    const QString date = runtime::DateToText(dtpEventDate->Value());
    const QString period = optEventPeriod[0]->isChecked() ? QStringLiteral("0") : QStringLiteral("1");
    if (runtime::Val(Tag()) == NewEvent) {
        gDatabase->Execute(QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('") + name +
                               QStringLiteral("', '") + date + QStringLiteral("', ") + period +
                               QStringLiteral(")"),
                           engine::dbFailOnError);
        try {
            forms::MsgBox(QStringLiteral("Событие успешно добавлено."), forms::Icon::Information);
        } catch (const engine::UnsyncedCommit&) { // it is in the file: the next try is not for a second one
            SetTag(gDatabase
                       ->OpenRecordset(QStringLiteral("SELECT MAX(a03evid) FROM a03 WHERE a03evnm = '") +
                                       name + QStringLiteral("' AND a03evdt = '") + date + u'\'')
                       .Fields(0)
                       .Text());
            throw;
        }
    } else {
        // A name of which only a part was seen stays in the file as it is.
        const QString newName = txtEventName->ShowsPart()
                                    ? QString()
                                    : QStringLiteral("a03evnm = '") + name + QStringLiteral("', ");
        gDatabase->Execute(QStringLiteral("UPDATE a03 SET ") + newName + QStringLiteral("a03evdt = '") +
                               date + QStringLiteral("', a03evpr = ") + period +
                               QStringLiteral(" WHERE a03evid = ") + Tag(),
                           engine::dbFailOnError);
        forms::MsgBox(QStringLiteral("Событие успешно обновлено."), forms::Icon::Information);
    }
    Unload();
}
