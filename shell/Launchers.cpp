#include "citycodes/frmTelKodFilter.h"
#include "exchange/frmImportMasterStep1.h"
#include "organiser/frmCalendar.h"
#include "records/frmEditTelefonType.h"
#include "records/frmRecordsFilter.h"
#include "shell/General.h"
#include "sqlwatcher/frmUserEditor.h"

namespace {

/// Each launch makes a window of its own, which nobody owns once it is shown.
template <class Window>
void Launch() {
    forms::Form::Create<Window>()->Show();
}

} // namespace

void General::ShowRecordsFilter() {
    Launch<frmRecordsFilter>();
}

void General::ShowEditTelefonType() {
    Launch<frmEditTelefonType>();
}

void General::ShowTelKodFilter() {
    Launch<frmTelKodFilter>();
}

void General::ShowUserEditor() {
    Launch<frmUserEditor>();
}

void General::ShowCalendar() {
    Launch<frmCalendar>();
}

void General::ShowImportMaster() {
    Launch<frmImportMasterStep1>();
}
