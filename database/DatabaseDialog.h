#pragma once

#include "platform/forms/CommonDialog.h"

/// Lets the user pick an existing database file; the empty text if the user cancelled.
QString AskDatabaseFile(forms::CommonDialog& dialog, QWidget* owner);
