#pragma once

#include "platform/runtime/Files.h"

#include <QStringList>

namespace exchange {

/// The most cells that a line is cut into; the last one takes the rest of the line, delimiters included.
inline constexpr int MaxCells = 150;

/// Cuts a line at every delimiter. Quotes mean nothing, nothing is trimmed; an empty line has no cells at
/// all.
QStringList CutCells(const QString& line, QChar delimiter);

/// The cell at a place counted from 0; failure 9 if the line has fewer.
const QString& CellAt(const QStringList& cells, int place);

/// A delimited text file as the import sees it: lines of cells, the first line being the header.
class CsvReader {
public:
    /// Failures of runtime::InputFile.
    CsvReader(const QString& path, QChar delimiter);

    bool AtEnd() const;
    /// The cells of the next line; failure 62 at the end of the file.
    QStringList ReadCells();

private:
    runtime::InputFile m_file;
    QChar m_delimiter;
};

} // namespace exchange
