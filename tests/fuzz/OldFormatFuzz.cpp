// The reader of the old format over hostile files. An input is a list of changes to a sound file, or, where
// its first byte says so, the file itself. A run fails if a table is delivered in part.

#include "platform/engine/jet4/Reader.h"
#include "tests/fuzz/Changes.h"
#include "tests/fuzz/Fuzz.h"

#include <QByteArray>
#include <QFile>

#include <array>

namespace {

using engine::jet4::Reader;
using engine::jet4::Table;
using fuzz::Require;

QByteArray SoundFile(std::uint8_t choice) {
    static const std::array<const char*, 4> names{"v1-old", "v3-upgraded", "foreign", "v1-encoded"};
    QFile file(
        QStringLiteral(ZAVELIK_TEST_DATA "/jet/%1.mdb").arg(QLatin1String(names[choice % names.size()])));
    Require(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void ReadAll(const QByteArray& bytes) {
    const int failure = fuzz::FailureOf([&] {
        const Reader reader(bytes, QStringLiteral("x.mdb"));
        for (const Table& table : reader.Tables()) {
            std::uint32_t count = 0;
            reader.ForEachRow(table, [&](const std::vector<engine::Value>& values) {
                Require(values.size() == table.columns.size());
                ++count;
            });
            Require(count == table.rowCount);
        }
    });
    Require(failure == 0 || failure == 3049 || failure == 3031 || failure == 3343);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const QByteArrayView rest = fuzz::Bytes(data, size).sliced(1);
    constexpr std::uint8_t wholeFile = 0xFF;
    ReadAll(data[0] == wholeFile ? rest.toByteArray() : fuzz::Changed(SoundFile(data[0]), rest));
    return 0;
}
