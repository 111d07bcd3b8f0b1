#pragma once

#include <QString>

namespace forms {
class Form;
}

namespace exchange {

/// Makes a new database file that holds the cards of a record list with all their phones, the phone types and
/// all events. The working database is only read. Every failure is shown here and leaves no file.
void ExtractToAnotherDB(forms::Form& list, const QString& strCurrentSQL);

} // namespace exchange
