#include "tests/exchange/CsvFuzz.h"

#include "exchange/CsvReader.h"
#include "platform/runtime/Failure.h"

#include <QTemporaryFile>

#include <cstdlib>

namespace {

void Require(bool holds) {
    if (!holds)
        std::abort();
}

void CheckFile(const QString& path, QChar delimiter) {
    runtime::InputFile lines(path);
    exchange::CsvReader reader(path, delimiter);
    while (!reader.AtEnd()) {
        Require(!lines.AtEnd());
        const QString line = lines.LineInput();
        const QStringList cells = reader.ReadCells();
        Require(cells.isEmpty() == line.isEmpty());
        Require(cells.size() <= exchange::MaxCells);
        Require(cells.join(delimiter) == line);
        for (int cell = 0; cell < cells.size() && cell < exchange::MaxCells - 1; ++cell)
            Require(!cells.at(cell).contains(delimiter));
    }
    Require(lines.AtEnd());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    QTemporaryFile file;
    Require(file.open());
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    CheckFile(file.fileName(), u',');
    CheckFile(file.fileName(), u';');
    return 0;
}
