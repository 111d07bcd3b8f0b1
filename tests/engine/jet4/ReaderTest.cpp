#include "platform/engine/jet4/Reader.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/jet4/RowParts.h"
#include "tests/engine/jet4/OldFiles.h"

#include <gtest/gtest.h>

using engine::Value;
using engine::jet4::Reader;
using engine::jet4::Table;

namespace {

void ReadAll(const Reader& reader) {
    for (const Table& table : reader.Tables()) {
        std::uint32_t count = 0;
        reader.ForEachRow(table, [&count](const std::vector<Value>&) { ++count; });
        EXPECT_EQ(count, table.rowCount);
    }
}

} // namespace

TEST(OldFormatReader, NamesWhatItRefuses) {
    const struct {
        const char* file;
        int number;
    } files[] = {
        {"broken-empty.mdb", engine::UnrecognisedFormat},
        {"broken-text.mdb", engine::UnrecognisedFormat},
        {"broken-jet3-header.mdb", engine::UnrecognisedFormat},
        {"broken-ace-header.mdb", engine::UnrecognisedFormat},
        {"broken-short-header.mdb", engine::CannotOpenDatabase},
        {"broken-header-only.mdb", engine::CannotOpenDatabase},
        {"broken-truncated.mdb", engine::CannotOpenDatabase},
        {"broken-truncated-tail.mdb", engine::CannotOpenDatabase},
        {"broken-page.mdb", engine::CannotOpenDatabase},
        {"broken-columns.mdb", engine::CannotOpenDatabase},
        {"broken-pointer-loop.mdb", engine::CannotOpenDatabase},
        {"v1-password.mdb", engine::PasswordNeeded},
        {"missing.mdb", engine::FileNotFound},
        {"", engine::FileNotFound},
    };
    for (const auto& file : files) {
        const QString path = test::OldFile(QString::fromUtf8(file.file));
        EXPECT_EQ(test::FailureOf([&path] { ReadAll(Reader(path)); }), file.number) << file.file;
        EXPECT_EQ(Reader::IsOldFormat(path),
                  file.number == engine::CannotOpenDatabase || file.number == engine::PasswordNeeded)
            << file.file;
    }
}

TEST(OldFormatReader, CompressedTextSwitchesItsMode) {
    const struct {
        QByteArray bytes;
        QString text;
    } rows[] = {
        {QByteArray("\xFF\xFE"
                    "ab\xFC"),
         QStringLiteral("abü")},
        {QByteArray("\xFF\xFE"
                    "Max \0\x1B\x04\x43\x04\0.B\0\x10\x04",
                    18),
         QStringLiteral("Max Лу.BА")},
        {QByteArray("\xFF\xFE\0\x1B\x04", 5), QStringLiteral("Л")},
        {QByteArray("\xFF\xFE"), QString()},
        {QByteArray("a\0\x1B\x04", 4), QStringLiteral("aЛ")},
    };
    for (const auto& row : rows)
        EXPECT_EQ(engine::jet4::DecodeText(row.bytes), row.text);
    EXPECT_THROW(engine::jet4::DecodeText(QByteArray("\xFF\xFE\0\x1B", 4)), engine::jet4::Damage);
}

TEST(OldFormatReader, ARowHoldsTheValuesOfItsColumnsAlone) {
    Table table;
    table.columnsEver = table.variableColumns = 2;
    for (const std::uint16_t place : {0, 1}) {
        engine::jet4::Column column;
        column.number = column.variable = place;
        table.columns.push_back(column);
    }
    const struct {
        const char* values;
        QByteArray offsets; ///< where the values end and begin, the last one first
        bool sound;
    } rows[] = {
        {"abc", QByteArray("\5\0\4\0\2\0", 6), true},
        {"ab", QByteArray("\4\0\2\0", 4), false},
        {"abcd", QByteArray("\6\0\5\0\4\0\2\0", 8), false},
    };
    for (const auto& row : rows) {
        const char count[] = {static_cast<char>(row.offsets.size() / 2 - 1), 0};
        const QByteArray bytes =
            QByteArray("\2\0", 2) + row.values + row.offsets + QByteArray(count, 2) + '\1';
        if (row.sound)
            EXPECT_EQ(engine::jet4::RowParts(bytes, table).Value(table.columns[0]).View(), "ab");
        else
            EXPECT_THROW(engine::jet4::RowParts(bytes, table), engine::jet4::Damage) << row.values;
    }
}

// Rows that have grown stand elsewhere, each behind a pointer of its own.
TEST(OldFormatReader, NoRowIsReadByTwoPointers) {
    for (const unsigned pointers : {1U, 2U}) {
        QByteArray bytes = test::ReadBytes(test::OldFile(QStringLiteral("v1-old.mdb")));
        const Reader sound(bytes, QString());
        const Table& table = *sound.Find(u"a02");
        std::vector<engine::jet4::RowPlace> rows;
        sound.ForEachPlace(table, [&](engine::jet4::RowPlace row) { rows.push_back(row); });
        const auto target = rows.at(2);
        const auto mark = [&](engine::jet4::RowPlace row, unsigned flag) {
            char* page = bytes.data() + row.page * 4096;
            const unsigned entry = qFromLittleEndian<std::uint16_t>(page + 14 + 2 * row.row) | flag;
            qToLittleEndian(static_cast<std::uint16_t>(entry), page + 14 + 2 * row.row);
            return page + (entry & 0x1FFF);
        };
        mark(target, 0x8000);
        for (unsigned i = 0; i < pointers; ++i)
            qToLittleEndian(target.page << 8 | target.row, mark(rows.at(i), 0x4000));
        qToLittleEndian(table.rowCount - 1, bytes.data() + table.definition * 4096 + 16);
        const int number = test::FailureOf([&] { ReadAll(Reader(bytes, QString())); });
        EXPECT_EQ(number, pointers == 1 ? 0 : engine::CannotOpenDatabase);
    }
}

// Every page in turn is spoilt in several ways: the reader either reads all rows or says that the file is
// damaged.
TEST(OldFormatReader, NeverDeliversHalfATable) {
    const QByteArray sound = test::ReadBytes(test::OldFile(QStringLiteral("v1-old.mdb")));
    constexpr qsizetype pageSize = 4096;
    const char patterns[] = {'\0', '\xFF', '\x01', '\x40', '\x80'};
    int refused = 0;
    for (qsizetype page = 1; page < sound.size() / pageSize; ++page) {
        for (const char pattern : patterns) {
            for (const qsizetype place : {0, 1, 4, 8, 12, 14, 16, 43, 45, 51, 55, 63, 200, 4090}) {
                QByteArray bytes = sound;
                for (qsizetype i = 0; i < 4; ++i)
                    bytes[page * pageSize + place + i] = pattern;
                const int number =
                    test::FailureOf([&bytes] { ReadAll(Reader(bytes, QStringLiteral("x.mdb"))); });
                EXPECT_TRUE(number == 0 || number == engine::CannotOpenDatabase) << number;
                refused += number != 0;
            }
        }
    }
    EXPECT_GT(refused, 500);
}
