#include "exchange/CsvReader.h"

#include "platform/runtime/Failure.h"

namespace exchange {

QStringList CutCells(const QString& line, QChar delimiter) {
    QStringList cells;
    if (line.isEmpty())
        return cells;
    qsizetype start = 0;
    while (cells.size() < MaxCells - 1) {
        const qsizetype end = line.indexOf(delimiter, start);
        if (end < 0)
            break;
        cells.append(line.mid(start, end - start));
        start = end + 1;
    }
    cells.append(line.mid(start));
    return cells;
}

const QString& CellAt(const QStringList& cells, int place) {
    if (place < 0 || place >= cells.size())
        runtime::Raise(runtime::SubscriptOutOfRange);
    return cells.at(place);
}

CsvReader::CsvReader(const QString& path, QChar delimiter)
    : m_file(path)
    , m_delimiter(delimiter) {
}

bool CsvReader::AtEnd() const {
    return m_file.AtEnd();
}

QStringList CsvReader::ReadCells() {
    return CutCells(m_file.LineInput(), m_delimiter);
}

} // namespace exchange
