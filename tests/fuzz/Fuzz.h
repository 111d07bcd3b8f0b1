#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace fuzz {

/// What does not hold is a find.
inline void Require(bool holds) {
    if (!holds)
        std::abort();
}

inline QByteArrayView Bytes(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
}

} // namespace fuzz

/// One input; ends the process if something does not hold for it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
