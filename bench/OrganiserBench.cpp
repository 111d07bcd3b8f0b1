// One refresh of the organiser on a book of 32,767 birthdays: the bold days of the month and the table of the
// day, beside plain SQLite that reads the dates of all cards and events twice, as the two fills do.

#include "bench/BenchBook.h"
#include "bench/Ratios.h"
#include "organiser/frmCalendar.h"
#include "platform/forms/MonthView.h"
#include "shared/Declaration.h"
#include "shell/frmMain.h"

namespace {

constexpr int Cards = 32767;

bench::Book& TheBook() {
    static bench::Book book(Cards);
    return book;
}

void OrganiserProgram(benchmark::State& state) {
    gWorkspace = TheBook().workspace;
    gDatabase = TheBook().database;
    auto frame = forms::Form::Default<frmMain>();
    frame->Show();
    auto calendar = forms::Form::Create<frmCalendar>();
    calendar->Show();
    auto* month = calendar->Surface()->findChild<forms::MonthView*>();
    for (auto _ : state)
        Q_EMIT month->MouseUp();
    calendar->Unload();
    frame->Unload();
}

int CountOfMonth(sqlite3_stmt* statement, QStringView month) {
    int count = 0;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        const QStringView date(static_cast<const QChar*>(sqlite3_column_text16(statement, 0)),
                               sqlite3_column_bytes16(statement, 0) / 2);
        count += date.mid(3, 2) == month ? 1 : 0;
    }
    sqlite3_reset(statement);
    return count;
}

void OrganiserPlain(benchmark::State& state) {
    TheBook();
    bench::Plain plain(TheBook().Path());
    sqlite3_stmt* births = plain.Prepare("SELECT a01bith FROM a01 WHERE a01bith IS NOT NULL");
    sqlite3_stmt* events = plain.Prepare("SELECT a03evdt FROM a03");
    for (auto _ : state) {
        for (int fill = 0; fill < 2; ++fill) {
            benchmark::DoNotOptimize(CountOfMonth(births, u"05"));
            benchmark::DoNotOptimize(CountOfMonth(events, u"05"));
        }
    }
    sqlite3_finalize(births);
    sqlite3_finalize(events);
}

BENCHMARK(OrganiserProgram)->Apply(bench::Measure);
BENCHMARK(OrganiserPlain)->Apply(bench::Measure);

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    forms::Application application(argc, argv, ThisProgram());
    return bench::RunPairs(argc, argv);
}
