#pragma once

#include <QString>

namespace forms {
class Form;
}

namespace exchange {

/// Asks for the file to write, by the dialog cdlExtract of the list; empty if the user cancelled.
QString AskTargetFile(const forms::Form& list, const QString& filter);

/// Asks whether an existing file may be replaced; No is preselected.
bool AskOverwrite(const QString& fileName);

} // namespace exchange
