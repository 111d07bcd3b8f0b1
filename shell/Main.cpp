#include "database/ConvertOldBase.h"
#include "database/General.h"
#include "database/frmInstall.h"
#include "platform/forms/MsgBox.h"
#include "platform/runtime/Files.h"
#include "platform/runtime/Numbers.h"
#include "platform/runtime/Process.h"
#include "shared/Declaration.h"
#include "shell/General.h"
#include "shell/frmMain.h"

using forms::Form;

void General::Main() {
    const QString head = QStringLiteral("Функция Main:");
    bool bDatabaseOpen = false;
    bool bWorkspaceOpen = false;
    try {
        const QString path = gRegister().GetKeyVal(QStringLiteral("DB_Path"));
        if (!runtime::IsPlainFile(path)) {
            if (!AskRunInstallMaster())
                return;
            bWorkspaceOpen = true;
            bDatabaseOpen = true;
        } else {
            if (!OfferConversion(path))
                return;
            gWorkspace = engine::DBEngine::Workspaces(0);
            bWorkspaceOpen = true;
            gDatabase = gWorkspace->OpenDatabase(path);
            bDatabaseOpen = true;
        }
        UpdateBaseIfNeed();
        const std::shared_ptr<frmMain> frame = Form::Default<frmMain>();
        frame->Load();
        frame->Show();
    } catch (const runtime::Failure& failure) {
        forms::ShowErrorBox(head, failure);
        if (bDatabaseOpen) {
            forms::Attempt(head, [] { gDatabase->Close(); });
            gDatabase.reset();
        }
        if (bWorkspaceOpen) {
            gWorkspace->Close(); // what it held open has gone by now
            gWorkspace.reset();
        }
    }
}

bool General::AskRunInstallMaster() {
    if (!forms::AskYes(QStringLiteral("База данных не создана. Запустить мастер создания базы данных?")))
        runtime::End();
    const std::shared_ptr<frmInstall> master = Form::Default<frmInstall>();
    master->Load();
    master->Show(true);
    const bool result = runtime::TextToNumber(master->Tag()) == 1;
    master->Unload();
    return result;
}
