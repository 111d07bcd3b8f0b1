// The reader of the old format over hostile files. An input is a list of changes to a sound file, or, where
// its first byte says so, the file itself. Besides what the sanitizers find, a run fails if a table is
// delivered in part or if the reader holds more memory than four times the size of the file.

#include "platform/engine/jet4/Reader.h"
#include "tests/fuzz/Changes.h"
#include "tests/fuzz/Fuzz.h"

#include <QByteArray>
#include <QFile>

#include <array>
#include <sanitizer/allocator_interface.h>

namespace {

using engine::jet4::Reader;
using engine::jet4::Table;
using fuzz::Require;

std::size_t held = 0;
std::size_t mostHeld = 0;

void CountTaken(const volatile void*, std::size_t size) {
    held += size;
    mostHeld = held > mostHeld ? held : mostHeld;
}

void CountGiven(const volatile void* memory) {
    held -= __sanitizer_get_allocated_size(memory);
}

QByteArray SoundFile(std::uint8_t choice) {
    static const std::array<const char*, 4> names{"v1-old", "v3-upgraded", "foreign", "v1-encoded"};
    QFile file(
        QStringLiteral(ZAVELIK_TEST_DATA "/jet/%1.mdb").arg(QLatin1String(names[choice % names.size()])));
    Require(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

void ReadAll(QByteArray bytes) {
    const auto size = static_cast<std::size_t>(bytes.size());
    bytes.detach();
    mostHeld = held;
    const std::size_t before = held - size;
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
    constexpr std::size_t slack = 64 * 1024; // of the runtime, whatever the file
    Require(mostHeld - before <= 4 * size + slack);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    __sanitizer_install_malloc_and_free_hooks(CountTaken, CountGiven);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const QByteArrayView rest = fuzz::Bytes(data, size).sliced(1);
    constexpr std::uint8_t wholeFile = 0xFF;
    ReadAll(data[0] == wholeFile ? rest.toByteArray() : fuzz::Changed(SoundFile(data[0]), rest));
    return 0;
}
