#include "platform/engine/store/LockWait.h"

#include <sqlite3.h>

#include <algorithm>
#include <thread>

namespace engine {

namespace {

using Clock = std::chrono::steady_clock;

int runs = 0;
bool waitedInVain = false; ///< in the run that is going on

/// SQLite calls this while something is locked, with the number of its calls so far; 0 ends the wait.
int Wait(void*, int calls) {
    static Clock::time_point start;
    if (calls == 0)
        start = Clock::now();
    if (waitedInVain)
        return 0;
    const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    if (waited >= LockWait::limit) {
        waitedInVain = runs > 0;
        return 0;
    }
    constexpr std::chrono::milliseconds longest{25};
    const std::chrono::milliseconds pause{calls + 1};
    std::this_thread::sleep_for(std::min({pause, longest, LockWait::limit - waited}));
    return 1;
}

} // namespace

void LockWait::Allow(sqlite3* db, bool wait) {
    sqlite3_busy_handler(db, wait ? Wait : nullptr, nullptr);
}

OneLockWait::OneLockWait() {
    ++runs;
}

OneLockWait::~OneLockWait() {
    if (--runs == 0)
        waitedInVain = false;
}

} // namespace engine
