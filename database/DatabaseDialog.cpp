#include "database/DatabaseDialog.h"

#include "platform/runtime/Files.h"

QString AskDatabaseFile(forms::CommonDialog& dialog, QWidget* owner) {
    dialog.InitDir = runtime::ProgramFolder();
    dialog.Flags = forms::cdlOFNFileMustExist + forms::cdlOFNPathMustExist;
    dialog.Filter = QStringLiteral("База данных Access (*.mdb)|*.mdb");
    dialog.FileName.clear();
    dialog.ShowOpen(owner);
    return dialog.FileName;
}
