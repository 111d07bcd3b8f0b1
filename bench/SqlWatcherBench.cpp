// A result of 200,000 rows in the window for statements of the user: the whole way from the key to the filled
// grid, beside plain SQLite that delivers the same rows as texts. The memory that the grid takes is told in
// bytes for each byte of text shown.

#include "bench/BenchBook.h"
#include "bench/Ratios.h"
#include "platform/forms/FlexGrid.h"
#include "shared/Declaration.h"
#include "shell/frmMain.h"
#include "sqlwatcher/frmUserEditor.h"

#include <QKeyEvent>
#include <QPlainTextEdit>

#include <malloc.h>
#include <vector>

namespace {

constexpr int Rows = 200'000;

bench::Book& TheBook() {
    static bench::Book book(0);
    return book;
}

double HeapBytes() {
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

double TextBytes(const forms::FlexGrid& grid) {
    double bytes = 0;
    for (int row = 0; row < grid.Rows(); ++row)
        for (int column = 0; column < grid.Cols(); ++column)
            bytes += static_cast<double>(grid.TextMatrix(row, column).size()) * 2;
    return bytes;
}

void ResultProgram(benchmark::State& state) {
    gWorkspace = TheBook().workspace;
    gDatabase = TheBook().database;
    auto frame = forms::Form::Default<frmMain>();
    frame->Show();
    auto window = forms::Form::Create<frmUserEditor>();
    window->Show();
    auto* editor = window->Surface()->findChild<QPlainTextEdit*>();
    auto* grid = window->Surface()->findChild<forms::FlexGrid*>();
    const double before = HeapBytes();
    editor->setPlainText(QStringLiteral("SELECT TOP %1 x.t03rcid, x.t03cval, y.t03cval AS other, y.t03numb "
                                        "FROM t03 AS x, t03 AS y")
                             .arg(Rows));
    for (auto _ : state) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_F9, Qt::NoModifier);
        QApplication::sendEvent(editor, &press);
    }
    if (grid->Rows() != Rows + 1)
        state.SkipWithError("the result is not complete");
    state.counters["bytes for each byte of text"] = (HeapBytes() - before) / TextBytes(*grid);
    window->Unload();
    frame->Unload();
}

void ResultPlain(benchmark::State& state) {
    TheBook();
    bench::Plain plain(TheBook().Path());
    sqlite3_stmt* statement =
        plain.Prepare("SELECT x.t03rcid, x.t03cval, y.t03cval, y.t03numb FROM t03 AS x, "
                      "t03 AS y LIMIT 200000");
    for (auto _ : state) {
        std::vector<QString> cells;
        cells.reserve(Rows * 4);
        while (sqlite3_step(statement) == SQLITE_ROW)
            for (int column = 0; column < 4; ++column)
                cells.emplace_back(static_cast<const QChar*>(sqlite3_column_text16(statement, column)),
                                   sqlite3_column_bytes16(statement, column) / 2);
        sqlite3_reset(statement);
        benchmark::DoNotOptimize(cells.data());
    }
    sqlite3_finalize(statement);
}

BENCHMARK(ResultProgram)->Apply(bench::Measure);
BENCHMARK(ResultPlain)->Apply(bench::Measure);

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    forms::Application application(argc, argv, ThisProgram());
    return bench::RunPairs(argc, argv);
}
