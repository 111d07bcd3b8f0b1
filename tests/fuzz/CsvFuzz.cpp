// Any bytes as a file of the import, through the reader and through the merge into a small book.
#include "database/Schema.h"
#include "exchange/CsvReader.h"
#include "exchange/clsRecord.h"
#include "shared/Declaration.h"
#include "tests/fuzz/Fuzz.h"

#include <QTemporaryDir>
#include <QTemporaryFile>

namespace {

using fuzz::Require;

void CheckReader(const QString& path, QChar delimiter) {
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

std::int32_t Number(const char* sql) {
    return gDatabase->OpenRecordset(QString::fromLatin1(sql)).Fields(0).Value().Long();
}

/// As the master does with every column ticked.
void MergeRows(const QString& path, QChar delimiter, clsRecord& record) {
    exchange::CsvReader reader(path, delimiter);
    const QStringList names = reader.AtEnd() ? QStringList() : reader.ReadCells();
    while (!reader.AtEnd()) {
        const QStringList cells = reader.ReadCells();
        record.Clear();
        for (int column = 0; column < names.size(); ++column)
            record.SetParameter(names[column], exchange::CellAt(cells, column));
        record.PutRecord();
    }
}

/// Into a book with two cards; what is merged is taken back.
void CheckMerge(const QString& path, QChar delimiter) {
    gWorkspace->BeginTrans();
    const std::int32_t before = Number("SELECT COUNT(*) FROM a01");
    clsRecord record;
    const int failure = fuzz::FailureOf([&] { MergeRows(path, delimiter, record); });
    Require(failure == 0 || failure == runtime::SubscriptOutOfRange); // a row with too few cells
    Require(Number("SELECT COUNT(*) FROM a01") == before + record.GetInsertNumber());
    Require(Number("SELECT COUNT(*) FROM a02 WHERE a02clid NOT IN (SELECT a01clid FROM a01)") == 0);
    Require(
        Number("SELECT COUNT(*) FROM (SELECT a02clid FROM a02 GROUP BY a02clid, a02code HAVING COUNT(*) > "
               "1) AS q") == 0);
    gWorkspace->Rollback();
}

void MakeBook(const QString& path) {
    gWorkspace = engine::DBEngine::Workspaces(0);
    gDatabase = gWorkspace->CreateDatabase(path, QString::fromUtf16(engine::dbLangGeneral));
    const auto run = [](const QString& sql) { gDatabase->Execute(sql, engine::dbFailOnError); };
    run(schema::CreateA01(true));
    run(schema::CreateA02());
    for (const char* column : {"a01last", "a01frst", "a01midl"})
        gDatabase->TableDefs(QStringLiteral("a01"))
            .Fields(QString::fromLatin1(column))
            .SetAllowZeroLength(true);
    run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (1, 'Иванов', 'Иван')"));
    run(QStringLiteral("INSERT INTO a01 (a01clid, a01frst) VALUES (32764, 'Анна')")); // numbers run out
    run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 2, '5')"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const QTemporaryDir folder;
    if (!gDatabase) {
        MakeBook(folder.filePath(QStringLiteral("f.mdb")));
        std::atexit([] { gDatabase.reset(); });
    }
    QTemporaryFile file;
    Require(file.open());
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    for (const QChar delimiter : {u',', u';'}) {
        CheckReader(file.fileName(), delimiter);
        CheckMerge(file.fileName(), delimiter);
    }
    return 0;
}
