#pragma once

#include "platform/engine/dao/DBEngine.h"
#include "shared/clsRegister.h"

#include <memory>

// The process-wide objects. Every routine reads them directly; gDatabase is not rebound while the main window
// stands.

/// The default workspace; null while nothing is bound.
extern std::shared_ptr<engine::Workspace> gWorkspace;
/// The open working database; null while nothing is bound.
extern std::shared_ptr<engine::Database> gDatabase;

/// The one instance of the settings class, made at its first use.
clsRegister& gRegister();
