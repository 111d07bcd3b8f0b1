#include "exchange/CsvReader.h"

#include "tests/support/Expect.h"

namespace {

QStringList Numbers(int from, int to) {
    QStringList numbers;
    for (int i = from; i <= to; ++i)
        numbers.append(QString::number(i));
    return numbers;
}

TEST(CsvReader, Cells) {
    const struct {
        QString line;
        QStringList cells;
    } rows[] = {
        {"", {}},
        {",a\n,\"b;c\", ", {"", "a\n", "\"b;c\"", " "}}, // nothing but the delimiter cuts
        {Numbers(1, 150).join(u','), Numbers(1, 150)},
        {Numbers(1, 152).join(u','), Numbers(1, 149) + QStringList{"150,151,152"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(exchange::CutCells(row.line, u','), row.cells);
}

} // namespace
