#include "database/GiveUp.h"

#include "platform/forms/MsgBox.h"

void GiveUp(const QString& head, std::shared_ptr<engine::Workspace>& workspace,
            std::shared_ptr<engine::Database>& database, const std::shared_ptr<runtime::OldFile>& old) {
    if (database)
        database->Discard();
    database.reset();
    if (old)
        forms::Attempt(head, [&old] { engine::DBEngine::KillDatabase(*old); });
    if (workspace)
        forms::Attempt(head, [&workspace] { workspace->Close(); });
    workspace.reset();
}
