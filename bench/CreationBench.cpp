// Creating a database: the file, the schema and the 1,992 reference rows, statement by statement, beside
// plain SQLite with the same durability, the same moments of commit, and prepared statements.

#include "bench/BenchBook.h"
#include "bench/Ratios.h"
#include "database/SeedData.h"

#include <QCoreApplication>
#include <QFile>

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

void CreationProgram(benchmark::State& state) {
    const QTemporaryDir folder;
    const auto workspace = engine::DBEngine::Workspaces(0);
    for (auto _ : state) {
        const QString path = folder.filePath(QStringLiteral("book.mdb"));
        const auto database = workspace->CreateDatabase(path, QString::fromUtf16(engine::dbLangGeneral));
        if (!General::ApplySQLToCreateDB(*database))
            qFatal("the book could not be created");
        database->Close();
        QFile::remove(path);
    }
}

// Commits as the program does: what is 50 ms old.
class Group {
public:
    explicit Group(bench::Plain& plain)
        : m_plain(plain) {
        Begin();
    }
    ~Group() { m_plain.Run("COMMIT"); }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;

    void Done() {
        if (Clock::now() - m_start < std::chrono::milliseconds(50))
            return;
        m_plain.Run("COMMIT");
        Begin();
    }

private:
    void Begin() {
        m_plain.Run("BEGIN IMMEDIATE");
        m_start = Clock::now();
    }
    bench::Plain& m_plain;
    Clock::time_point m_start;
};

void BindText(sqlite3_stmt* statement, int place, const char16_t* text) {
    sqlite3_bind_text16(statement, place, text, -1, SQLITE_STATIC);
}

void CreationPlain(benchmark::State& state) {
    const QTemporaryDir folder;
    for (auto _ : state) {
        const QString path = folder.filePath(QStringLiteral("plain.db"));
        {
            bench::Plain plain(path);
            Group group(plain);
            plain.Run("CREATE TABLE a01 (a01clid INTEGER PRIMARY KEY, a01last TEXT, a01frst TEXT, a01midl "
                      "TEXT, a01memo TEXT, "
                      "a01bith TEXT); CREATE TABLE t01 (t01ctid INTEGER PRIMARY KEY AUTOINCREMENT, t01type "
                      "INTEGER NOT NULL, "
                      "t01code INTEGER NOT NULL, t01cval TEXT NOT NULL UNIQUE); CREATE TABLE a02 (a02rcid "
                      "INTEGER PRIMARY "
                      "KEY AUTOINCREMENT, a02clid INTEGER NOT NULL, a02code INTEGER NOT NULL, a02cval TEXT "
                      "NOT NULL); CREATE "
                      "TABLE v00 (v00vrid INTEGER NOT NULL PRIMARY KEY); INSERT INTO v00 VALUES (3); CREATE "
                      "TABLE t02 "
                      "(t02rcid INTEGER PRIMARY KEY AUTOINCREMENT, t02cval TEXT NOT NULL UNIQUE); CREATE "
                      "TABLE t03 (t03rcid "
                      "INTEGER PRIMARY KEY AUTOINCREMENT, t03code INTEGER NOT NULL, t03cval TEXT NOT NULL, "
                      "t03numb INTEGER "
                      "NOT NULL); CREATE TABLE a03 (a03evid INTEGER PRIMARY KEY AUTOINCREMENT, a03evnm TEXT "
                      "NOT NULL, "
                      "a03evdt TEXT NOT NULL, a03evpr INTEGER NOT NULL)");
            sqlite3_stmt* region = plain.Prepare("INSERT INTO t02 (t02cval) VALUES (?1)");
            sqlite3_stmt* town =
                plain.Prepare("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (?1, ?2, ?3)");
            int number = 0;
            for (const seed::Region& entry : seed::AllRegions()) {
                BindText(region, 1, entry.name);
                sqlite3_step(region);
                sqlite3_reset(region);
                group.Done();
                ++number;
                for (const seed::Town& row : entry.towns) {
                    sqlite3_bind_int(town, 1, number);
                    BindText(town, 2, row.name);
                    sqlite3_bind_int(town, 3, row.code);
                    sqlite3_step(town);
                    sqlite3_reset(town);
                    group.Done();
                }
            }
            sqlite3_finalize(region);
            sqlite3_finalize(town);
        }
        QFile::remove(path);
    }
}

BENCHMARK(CreationProgram)->Apply(bench::Measure);
BENCHMARK(CreationPlain)->Apply(bench::Measure);

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return bench::RunPairs(argc, argv);
}
