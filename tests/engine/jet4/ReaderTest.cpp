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
        {"broken-jet3-header.mdb", engine::UnrecognisedFormat},
        {"broken-header-only.mdb", engine::CannotOpenDatabase},
        {"broken-truncated.mdb", engine::CannotOpenDatabase},
        {"broken-page.mdb", engine::CannotOpenDatabase},
        {"broken-columns.mdb", engine::CannotOpenDatabase},
        {"broken-pointer-loop.mdb", engine::CannotOpenDatabase},
        {"v1-password.mdb", engine::PasswordNeeded},
        {"missing.mdb", engine::FileNotFound},
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
        {QByteArray("a\0\x1B\x04", 4), QStringLiteral("aЛ")},
    };
    for (const auto& row : rows)
        EXPECT_EQ(engine::jet4::DecodeText(row.bytes), row.text);
    EXPECT_THROW(engine::jet4::DecodeText(QByteArray("\xFF\xFE\0\x1B", 4)), engine::jet4::Damage);
}

// Every page in turn is spoilt in several ways: the reader either reads all rows or says that the file is
// damaged.
TEST(OldFormatReader, NeverDeliversHalfATable) {
    const QByteArray sound = test::ReadBytes(test::OldFile(QStringLiteral("v1-old.mdb")));
    constexpr qsizetype pageSize = 4096;
    int refused = 0;
    for (qsizetype page = 1; page < sound.size() / pageSize; ++page) {
        for (const char pattern : {'\0', '\xFF', '\x40'}) {
            for (const qsizetype place : {0, 1, 4, 8, 12, 14, 16, 43, 45, 51, 55, 63, 200, 4090}) {
                QByteArray bytes = sound;
                for (qsizetype i = 0; i < 4; ++i)
                    bytes[page * pageSize + place + i] = pattern;
                const int number = test::FailureOf([&] { ReadAll(Reader(bytes, QStringLiteral("x.mdb"))); });
                EXPECT_TRUE(number == 0 || number == engine::CannotOpenDatabase) << number;
                refused += number != 0;
            }
        }
    }
    EXPECT_GT(refused, 300);
}
