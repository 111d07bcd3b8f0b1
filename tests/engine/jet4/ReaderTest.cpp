#include "platform/engine/jet4/Reader.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/jet4/RowParts.h"
#include "tests/engine/jet4/OldFiles.h"

#include <gtest/gtest.h>

using engine::jet4::Reader;

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
        const auto read = [&path] {
            const Reader reader(path);
            for (const engine::jet4::Table& table : reader.Tables())
                reader.ForEachRow(table, [](const auto&) {});
        };
        EXPECT_EQ(test::FailureOf(read), file.number) << file.file;
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
