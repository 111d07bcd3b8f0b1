// Any text as a number: what is read is finite, comes back from the text that it is written as, and fits
// where it is put; all else is one of two failures.
#include "platform/runtime/Numbers.h"
#include "tests/fuzz/Fuzz.h"

#include <cmath>
#include <optional>

namespace {

using fuzz::Require;

/// The number, or nothing after a failure that may be.
template <class Reader>
auto Read(Reader reader, const QString& text) -> std::optional<decltype(reader(text))> {
    try {
        return reader(text);
    } catch (const runtime::Failure& failure) {
        Require(failure.number() == runtime::TypeMismatch || failure.number() == runtime::Overflow);
        return std::nullopt;
    }
}

void CheckLong(std::optional<std::int32_t> read, std::optional<double> value) {
    const double rounded = runtime::RoundHalfEven(value.value_or(NAN));
    const bool fits = rounded >= std::numeric_limits<std::int32_t>::min() &&
                      rounded <= std::numeric_limits<std::int32_t>::max();
    Require(read.has_value() == fits);
    Require(!read || (*read == rounded && std::abs(rounded - *value) <= 0.5));
}

void CheckWayBack(double value) {
    constexpr double precision = 1e-14; // 15 digits are written
    constexpr double smallest = 1e-300; // smaller ones lose digits
    const QString written = runtime::NumberToText(value);
    const auto back = Read(runtime::TextToNumber, written);
    if (std::abs(value) > smallest && std::abs(value) < std::numeric_limits<double>::max() / 2)
        Require(back && std::abs(*back - value) <= precision * std::abs(value));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text = QString::fromUtf8(fuzz::Bytes(data, size));
    const auto value = Read(runtime::TextToNumber, text);
    Require(!value || std::isfinite(*value));
    if (value)
        CheckWayBack(*value);
    CheckLong(Read(runtime::TextToLong, text), value);
    Require(!std::isnan(runtime::Val(text)));
    return 0;
}
