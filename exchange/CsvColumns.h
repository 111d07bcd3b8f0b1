#pragma once

#include <QString>

#include <optional>
#include <span>

namespace exchange {

/// The columns of the files. The phones are told apart by their codes, whatever the user calls the types.
enum class CsvColumn { FirstName, LastName, MiddleName, Name, HomePhone, MobilePhone, BusinessPhone, Notes };

struct CsvColumnDesign {
    CsvColumn column;
    int item;          ///< place in the list of the export's dialog, from 1
    QString header;    ///< in the first line of a file
    QString caption;   ///< in that list
    int phoneCode = 0; ///< of a phone
};

/// All eight, in the order of an exported file.
std::span<const CsvColumnDesign> CsvColumns();

/// The column of that header, case ignored, if an import reads it: it reads no notes.
const CsvColumnDesign* FindImported(const QString& header);

} // namespace exchange
