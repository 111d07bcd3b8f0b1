// Filling the list of cards: the window's whole fill (statement, rows, grid) beside plain SQLite that reads
// the same rows in the same order of the Russian alphabet and copies the same four texts of each.

#include "bench/BenchBook.h"
#include "bench/Ratios.h"
#include "records/frmRecords.h"
#include "shared/Declaration.h"
#include "shell/frmMain.h"

#include <QCollator>

#include <vector>

namespace {

constexpr int Cards = 32766;

bench::Book& TheBook() {
    static bench::Book book(Cards);
    return book;
}

void ListProgram(benchmark::State& state) {
    gWorkspace = TheBook().workspace;
    gDatabase = TheBook().database;
    auto frame = forms::Form::Default<frmMain>();
    frame->Show();
    auto list = forms::Form::Create<frmRecords>();
    list->Show();
    list->DoNotFillGrid(true);
    for (auto _ : state)
        list->FillGrid(QString());
    list->Unload();
    frame->Unload();
}

int Compare(void* collator, int lengthA, const void* a, int lengthB, const void* b) {
    return static_cast<QCollator*>(collator)->compare(QStringView(static_cast<const QChar*>(a), lengthA / 2),
                                                      QStringView(static_cast<const QChar*>(b), lengthB / 2));
}

void ListPlain(benchmark::State& state) {
    TheBook();
    QCollator collator{QLocale(QLocale::Russian)};
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    bench::Plain plain(TheBook().Path());
    sqlite3_create_collation(plain.Handle(), "ZV_FOLD", SQLITE_UTF16_ALIGNED, &collator, Compare);
    sqlite3_create_collation(plain.Handle(), "RU", SQLITE_UTF16_ALIGNED, &collator, Compare);
    sqlite3_stmt* statement = plain.Prepare(
        "SELECT * FROM a01 ORDER BY a01last COLLATE RU, a01frst COLLATE RU, a01midl COLLATE RU");
    for (auto _ : state) {
        std::vector<QString> cells;
        cells.reserve(Cards * 4);
        while (sqlite3_step(statement) == SQLITE_ROW)
            for (int column = 0; column < 4; ++column)
                cells.emplace_back(static_cast<const QChar*>(sqlite3_column_text16(statement, column)),
                                   sqlite3_column_bytes16(statement, column) / 2);
        sqlite3_reset(statement);
        benchmark::DoNotOptimize(cells.data());
    }
    sqlite3_finalize(statement);
}

BENCHMARK(ListProgram)->Apply(bench::Measure);
BENCHMARK(ListPlain)->Apply(bench::Measure);

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    forms::Application application(argc, argv, ThisProgram());
    return bench::RunPairs(argc, argv);
}
