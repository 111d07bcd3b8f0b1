#pragma once

#include <QString>

namespace forms {
class Form;
}

namespace exchange {

/// Writes the rows of a record list, by running its statement once more, to a delimited text file that the
/// user names. Every failure is shown here.
void ExtractToCSV(forms::Form& list, const QString& strCurrentSQL);

} // namespace exchange
