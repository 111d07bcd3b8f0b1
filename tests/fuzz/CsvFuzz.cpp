// Any bytes as a file of the import, through the reader and through the merge into a small book.
#include "exchange/CsvReader.h"
#include "exchange/clsRecord.h"
#include "platform/runtime/Failure.h"
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

/// A book with two cards; what is merged into it is taken back.
class Book {
public:
    Book() {
        gWorkspace = engine::DBEngine::Workspaces(0);
        gDatabase = gWorkspace->CreateDatabase(m_folder.filePath(QStringLiteral("f.mdb")),
                                               QString::fromUtf16(engine::dbLangGeneral));
        const char* statements[] = {
            "CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY, a01last TEXT(50), a01frst TEXT(50), "
            "a01midl TEXT(50), a01memo TEXT(100))",
            "CREATE TABLE a02 (a02rcid COUNTER NOT NULL PRIMARY KEY, a02clid INTEGER NOT NULL, a02code SHORT "
            "NOT NULL, a02cval TEXT(50) NOT NULL)",
        };
        for (const char* statement : statements)
            Run(QString::fromUtf8(statement));
        for (const char* column : {"a01last", "a01frst", "a01midl"})
            gDatabase->TableDefs(QStringLiteral("a01"))
                .Fields(QString::fromLatin1(column))
                .SetAllowZeroLength(true);
        Run(QStringLiteral("INSERT INTO a01 VALUES (1, 'Иванов', 'Иван', '', 'друг')"));
        Run(QStringLiteral("INSERT INTO a01 VALUES (32764, '', 'Анна', NULL, NULL)")); // numbers run out
        Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 2, '5')"));
    }
    ~Book() {
        gDatabase.reset();
        gWorkspace.reset();
    }
    Book(const Book&) = delete;
    Book& operator=(const Book&) = delete;

    static void Merge(const QString& path, QChar delimiter) {
        gWorkspace->BeginTrans();
        const std::int32_t before = Number(QStringLiteral("SELECT COUNT(*) FROM a01"));
        clsRecord record;
        try {
            MergeRows(path, delimiter, record);
        } catch (const runtime::Failure& failure) {
            Require(failure.number() == runtime::SubscriptOutOfRange); // a row with too few cells
        }
        Require(Number(QStringLiteral("SELECT COUNT(*) FROM a01")) == before + record.GetInsertNumber());
        Require(Number(QStringLiteral("SELECT COUNT(*) FROM a02 WHERE a02clid NOT IN (SELECT a01clid FROM "
                                      "a01)")) == 0);
        Require(gDatabase
                    ->OpenRecordset(QStringLiteral(
                        "SELECT a02clid FROM a02 GROUP BY a02clid, a02code HAVING COUNT(*) > 1"))
                    .EndOfFile());
        gWorkspace->Rollback();
    }

private:
    static void Run(const QString& sql) { gDatabase->Execute(sql, engine::dbFailOnError); }
    static std::int32_t Number(const QString& sql) {
        return gDatabase->OpenRecordset(sql).Fields(0).Value().Long();
    }

    /// As the master does with every column ticked.
    static void MergeRows(const QString& path, QChar delimiter, clsRecord& record) {
        exchange::CsvReader reader(path, delimiter);
        const QStringList names = reader.AtEnd() ? QStringList() : reader.ReadCells();
        while (!reader.AtEnd()) {
            const QStringList cells = reader.ReadCells();
            const int counted = record.GetInsertNumber() + record.GetUpdateNumber();
            record.Clear();
            for (int column = 0; column < names.size(); ++column)
                record.SetParameter(names[column], exchange::CellAt(cells, column));
            const bool merged = record.PutRecord();
            const int counts = record.GetInsertNumber() + record.GetUpdateNumber() - counted;
            Require(merged ? counts == 1 : counts <= 1);
        }
    }

    QTemporaryDir m_folder;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Book book;
    QTemporaryFile file;
    Require(file.open());
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    for (const QChar delimiter : {u',', u';'}) {
        CheckReader(file.fileName(), delimiter);
        Book::Merge(file.fileName(), delimiter);
    }
    return 0;
}
