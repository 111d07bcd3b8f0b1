// The conversion of an old book of 20,000 cards and 45,000 phones, from reading the file to the durable new
// one in its place, beside plain SQLite that inserts the same rows from memory and commits.

#include "bench/BenchBook.h"
#include "bench/Ratios.h"
#include "database/ConvertOldBase.h"
#include "platform/engine/jet4/Reader.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace {

using engine::Value;
using engine::jet4::Reader;

/// A folder with the unpacked book.
class Unpacked {
public:
    Unpacked() {
        QProcess xz;
        xz.setStandardOutputFile(Path("large.mdb"));
        xz.start(QStringLiteral("xz"),
                 {QStringLiteral("-dc"), QStringLiteral(ZAVELIK_TEST_DATA "/jet/v3-large.mdb.xz")});
        if (!xz.waitForFinished() || xz.exitCode() != 0)
            qFatal("xz cannot unpack the book");
    }
    QString Path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }

private:
    QTemporaryDir m_folder;
};

const Unpacked& TheBook() {
    static const Unpacked book;
    return book;
}

void OldBookProgram(benchmark::State& state) {
    const QString path = TheBook().Path("book.mdb");
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(path);
        QFile::remove(TheBook().Path("book.jet4.mdb"));
        QFile::copy(TheBook().Path("large.mdb"), path);
        state.ResumeTiming();
        engine::jet4::Conversion(path, OldBaseRules()).Run();
    }
}

struct TableRows {
    const char* create;
    const char* insert;
    QStringView name;
    std::vector<std::vector<Value>> rows;
};

std::vector<TableRows> RowsInMemory() {
    std::vector<TableRows> tables{
        {"CREATE TABLE a01 (a INTEGER NOT NULL PRIMARY KEY, b TEXT, c TEXT, d TEXT, e TEXT, f TEXT)",
         "INSERT INTO a01 VALUES (?, ?, ?, ?, ?, ?)",
         u"a01",
         {}},
        {"CREATE TABLE a02 (a INTEGER NOT NULL PRIMARY KEY, b INTEGER NOT NULL, c INTEGER NOT NULL, d TEXT "
         "NOT NULL)",
         "INSERT INTO a02 VALUES (?, ?, ?, ?)",
         u"a02",
         {}},
        {"CREATE TABLE t01 (a INTEGER NOT NULL PRIMARY KEY, b INTEGER NOT NULL, c INTEGER NOT NULL, d TEXT "
         "NOT NULL "
         "UNIQUE)",
         "INSERT INTO t01 VALUES (?, ?, ?, ?)",
         u"t01",
         {}},
        {"CREATE TABLE t02 (a INTEGER NOT NULL PRIMARY KEY, b TEXT NOT NULL UNIQUE)",
         "INSERT INTO t02 VALUES (?, ?)",
         u"t02",
         {}},
        {"CREATE TABLE t03 (a INTEGER NOT NULL PRIMARY KEY, b INTEGER NOT NULL, c TEXT NOT NULL, d INTEGER "
         "NOT NULL)",
         "INSERT INTO t03 VALUES (?, ?, ?, ?)",
         u"t03",
         {}},
        {"CREATE TABLE a03 (a INTEGER NOT NULL PRIMARY KEY, b TEXT NOT NULL, c TEXT NOT NULL, d INTEGER NOT "
         "NULL)",
         "INSERT INTO a03 VALUES (?, ?, ?, ?)",
         u"a03",
         {}},
    };
    const Reader reader(TheBook().Path("large.mdb"));
    for (TableRows& table : tables) {
        const engine::jet4::Table& source = *reader.Find(table.name);
        reader.ForEachRow(source, [&](const std::vector<Value>& values) { table.rows.push_back(values); });
    }
    return tables;
}

void Bind(sqlite3_stmt* statement, int place, const Value& value) {
    if (const auto* number = value.As<std::int64_t>())
        sqlite3_bind_int64(statement, place, *number);
    else if (const auto* text = value.As<QString>())
        sqlite3_bind_text16(statement, place, text->utf16(), static_cast<int>(text->size() * 2),
                            SQLITE_STATIC);
    else
        sqlite3_bind_null(statement, place);
}

void OldBookPlain(benchmark::State& state) {
    const std::vector<TableRows> tables = RowsInMemory();
    const QString path = TheBook().Path("plain.db");
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(path);
        state.ResumeTiming();
        bench::Plain plain(path);
        plain.Run("BEGIN");
        for (const TableRows& table : tables) {
            plain.Run(table.create);
            sqlite3_stmt* insert = plain.Prepare(table.insert);
            for (const auto& row : table.rows) {
                for (std::size_t i = 0; i < row.size(); ++i)
                    Bind(insert, static_cast<int>(i) + 1, row[i]);
                sqlite3_step(insert);
                sqlite3_reset(insert);
            }
            sqlite3_finalize(insert);
        }
        plain.Run("COMMIT");
    }
}

BENCHMARK(OldBookProgram)->Apply(bench::Measure);
BENCHMARK(OldBookPlain)->Apply(bench::Measure);

} // namespace

int main(int argc, char** argv) {
    return bench::RunPairs(argc, argv);
}
