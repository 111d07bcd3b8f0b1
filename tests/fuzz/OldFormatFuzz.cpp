// The reader of the old format over hostile files. An input is a list of changes to a sound file, or, where
// its first byte says so, the file itself. Besides what the sanitizers find, a run fails if a table is
// delivered in part or if the reader holds more memory than four times the size of the file.

#include "platform/engine/jet4/Reader.h"
#include "platform/runtime/Failure.h"

#include <QByteArray>
#include <QFile>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <sanitizer/allocator_interface.h>

namespace {

using engine::jet4::Reader;
using engine::jet4::Table;

std::size_t held = 0;
std::size_t mostHeld = 0;

void CountTaken(const volatile void*, std::size_t size) {
    held += size;
    mostHeld = held > mostHeld ? held : mostHeld;
}

void CountGiven(const volatile void* memory) {
    held -= __sanitizer_get_allocated_size(memory);
}

void Require(bool holds) {
    if (!holds)
        std::abort();
}

QByteArray SoundFile(std::uint8_t choice) {
    static const std::array<QByteArray, 4> files = [] {
        std::array<QByteArray, 4> read;
        const std::array<const char*, 4> names{"v1-old", "v3-upgraded", "foreign", "v1-encoded"};
        for (std::size_t i = 0; i < names.size(); ++i) {
            QFile file(QStringLiteral(ZAVELIK_TEST_DATA "/jet/%1.mdb").arg(QLatin1String(names[i])));
            Require(file.open(QIODevice::ReadOnly));
            read[i] = file.readAll();
        }
        return read;
    }();
    return files[choice % files.size()];
}

/// Each change: three bytes of place, one of length, and the new bytes.
QByteArray Changed(QByteArray bytes, QByteArrayView changes) {
    while (changes.size() > 4) {
        const auto byte = [&changes](qsizetype i) { return static_cast<std::uint8_t>(changes[i]); };
        const qsizetype place = (byte(0) | (byte(1) << 8) | (byte(2) << 16)) % bytes.size();
        const qsizetype length =
            std::min({qsizetype{byte(3) % 16 + 1}, changes.size() - 4, bytes.size() - place});
        std::copy_n(changes.begin() + 4, length, bytes.begin() + place);
        changes = changes.sliced(4 + length);
    }
    return bytes;
}

void ReadAll(QByteArray bytes) {
    const auto size = static_cast<std::size_t>(bytes.size());
    bytes.detach();
    mostHeld = held;
    const std::size_t before = held - size;
    try {
        const Reader reader(std::move(bytes), QStringLiteral("x.mdb"));
        std::vector<engine::Value> values;
        for (const Table& table : reader.Tables()) {
            std::uint32_t count = 0;
            for (const auto place : reader.Rows(table)) {
                reader.Read(table, place, values);
                Require(values.size() == table.columns.size());
                ++count;
            }
            Require(count == table.rowCount);
        }
    } catch (const runtime::Failure& failure) {
        Require(failure.number() == 3049 || failure.number() == 3031 || failure.number() == 3343);
    }
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
    const QByteArrayView rest(reinterpret_cast<const char*>(data) + 1, static_cast<qsizetype>(size) - 1);
    constexpr std::uint8_t wholeFile = 0xFF;
    ReadAll(data[0] == wholeFile ? rest.toByteArray() : Changed(SoundFile(data[0]), rest));
    return 0;
}
