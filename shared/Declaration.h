#pragma once

#include "platform/engine/dao/DBEngine.h"
#include "platform/forms/Application.h"
#include "shared/clsRegister.h"

#include <memory>

// The process-wide objects. Every routine reads them directly; gDatabase is not rebound while the main window
// stands.

/// Title of every message box, name of the program in the settings store and of its first file.
inline constexpr auto AppTitle = u"Zavelik";

/// The default workspace; null while nothing is bound.
extern std::shared_ptr<engine::Workspace> gWorkspace;
/// The open working database; null while nothing is bound.
extern std::shared_ptr<engine::Database> gDatabase;

/// The one instance of the settings class, made at its first use.
clsRegister& gRegister();

/// Here what statements have written reaches the disk: before every message box, whenever the program is
/// idle, at its end, and in a routine that ends without a box. Failures as engine::DBEngine::Commit.
void WriteToDisk();

/// What the windows are told of this program.
forms::Program ThisProgram();
