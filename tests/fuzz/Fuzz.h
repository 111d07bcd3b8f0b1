#pragma once

#include "platform/runtime/Failure.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>

namespace fuzz {

/// What does not hold is a find.
inline void Require(bool holds) {
    if (!holds)
        std::abort();
}

/// The number of the failure that the work ends in; 0 if it ends well.
inline int FailureOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const runtime::Failure& failure) {
        Require(!failure.description().isEmpty());
        return failure.number();
    }
    return 0;
}

inline QByteArrayView Bytes(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
}

} // namespace fuzz

/// One input; ends the process if something does not hold for it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
