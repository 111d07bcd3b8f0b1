#include "database/ConvertOldBase.h"
#include "database/General.h"
#include "database/GiveUp.h"
#include "database/Schema.h"
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
    schema::KeepLookUps();
    const QString head = QStringLiteral("Функция Main:");
    try {
        const QString path = gRegister().GetKeyVal(QStringLiteral("DB_Path"));
        if (!runtime::IsPlainFile(path)) {
            if (!AskRunInstallMaster())
                return;
        } else {
            if (!OfferConversion(path))
                return;
            gWorkspace = engine::DBEngine::Workspaces(0);
            gDatabase = gWorkspace->OpenDatabase(path);
        }
        UpdateBaseIfNeed();
        const std::shared_ptr<frmMain> frame = Form::Default<frmMain>();
        frame->Load();
        frame->Show();
    } catch (const runtime::Failure& failure) {
        forms::ShowErrorBox(head, failure);
        if (gDatabase)
            forms::Attempt(head, [] { gDatabase->Close(); });
        GiveUp(head, gWorkspace, gDatabase);
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
