#pragma once

#include "platform/engine/dao/DBEngine.h"

/// Behind a failed opening or making: gives up what stands open, in this order: the database, with the file
/// if it is being made, the file that it was to replace, which the user has agreed to lose, and the
/// workspace. What fails on the way is told under the head.
void GiveUp(const QString& head, std::shared_ptr<engine::Workspace>& workspace,
            std::shared_ptr<engine::Database>& database, const std::shared_ptr<runtime::OldFile>& old = {});
