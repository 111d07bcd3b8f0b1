#pragma once

#include <QtGlobal>

namespace test {

/// Whether sweeps take every place, and kills their random moments, instead of the sample of a quick run:
/// ZAVELIK_FULL=1 in the environment. tools/full-run sets it.
inline bool IsFullRun() {
    return qEnvironmentVariableIntValue("ZAVELIK_FULL") != 0;
}

} // namespace test
