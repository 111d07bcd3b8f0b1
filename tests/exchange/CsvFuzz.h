#pragma once

#include <cstddef>
#include <cstdint>

/// Reads the bytes as a file of the import and checks what holds for every file; ends the process if it does
/// not.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
