#pragma once

#include "platform/runtime/Numbers.h"

#include <cstdint>

namespace exchange {

/// Calls `each` with the row numbers 1 to `count` under a signed 16-bit counter: more than 32,767 rows are
/// failure 6 before the first call, exactly 32,767 are failure 6 behind the last one.
template <class Each>
void ForEachRow(std::int64_t count, Each each) {
    const runtime::Int16 last{count};
    for (runtime::Int16 row{1}; row <= last; ++row)
        each(row.value());
}

} // namespace exchange
