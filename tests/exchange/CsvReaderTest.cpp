#include "exchange/CsvReader.h"

#include "platform/runtime/Codec1251.h"
#include "platform/runtime/Failure.h"
#include "tests/exchange/ExchangeTest.h"

namespace {

struct FileCase {
    const char* name;
    QByteArray bytes;
    QChar delimiter;
    QList<QStringList> lines;
};

QStringList Numbers(int from, int to) {
    QStringList numbers;
    for (int i = from; i <= to; ++i)
        numbers.append(QString::number(i));
    return numbers;
}

TEST(CsvReader, LinesAndCells) {
    const QList<FileCase> cases{
        {"the last line needs no end", "a,b\r\nc,d", u',', {{"a", "b"}, {"c", "d"}}},
        {"CR alone ends a line", "a\rb\r\r\nc\r", u',', {{"a"}, {"b"}, {}, {"c"}}},
        {"a lone LF belongs to the cell", "a\nb,c\r\nd\n", u',', {{"a\nb", "c"}, {"d\n"}}},
        {"an empty line has no cells", "a\r\n\r\nb\r\n", u',', {{"a"}, {}, {"b"}}},
        {"delimiters at the ends make empty cells", ",a,\r\n,\r\n", u',', {{"", "a", ""}, {"", ""}}},
        {"nothing but the delimiter cuts", " a ;\"b,c\";\t\r\n", u';', {{" a ", "\"b,c\"", "\t"}}},
        {"byte 1A ends the file", "a\r\nb\x1A\r\nc\r\n", u',', {{"a"}, {"b"}}},
        {"the code page",
         "\xC8\xE2\xE0\xED \xB9\xAB\xBB\xB8\xA8\x98,\x88\r\n",
         u',',
         {{"Иван №«»ёЁ\u0098", "€"}}},
        {"zero bytes", QByteArray("a\0b,c\r\n", 7), u',', {{QString::fromLatin1("a\0b", 3), "c"}}},
        {"150 cells", Numbers(1, 150).join(u',').toLatin1(), u',', {Numbers(1, 150)}},
        {"the 150th cell takes the rest",
         Numbers(1, 152).join(u',').toLatin1(),
         u',',
         {Numbers(1, 149) + QStringList{"150,151,152"}}},
    };
    const test::TestFolder folder;
    const QString path = folder.Path("lines.csv");
    for (const FileCase& c : cases) {
        SCOPED_TRACE(c.name);
        test::WriteBytes(path, c.bytes);
        exchange::CsvReader reader(path, c.delimiter);
        QList<QStringList> lines;
        while (!reader.AtEnd())
            lines.append(reader.ReadCells());
        EXPECT_EQ(lines, c.lines);
    }
}

TEST(CsvReader, Failures) {
    const test::TestFolder folder;
    const QString path = folder.Path("empty.csv");
    EXPECT_EQ(test::FailureOf([&] { exchange::CsvReader(path, u','); }), 53);
    test::WriteBytes(path, {});
    exchange::CsvReader reader(path, u',');
    EXPECT_TRUE(reader.AtEnd());
    EXPECT_EQ(test::FailureOf([&] { reader.ReadCells(); }), 62);
    EXPECT_EQ(test::FailureOf([] { exchange::CellAt({"a", "b"}, 2); }), 9);
    EXPECT_EQ(test::FailureOf([] { exchange::CellAt({}, 0); }), 9);
    EXPECT_EQ(exchange::CellAt({"a", "b"}, 1), QStringLiteral("b"));
}

} // namespace
