#pragma once

#include <chrono>

struct sqlite3;

namespace engine {

/// How long anything waits for the lock of another program.
struct LockWait {
    /// The time after which a wait was in vain. Tests shorten it.
    static inline std::chrono::milliseconds limit{5000};

    /// Lets the statements of the connection wait, or fail at once.
    static void Allow(sqlite3* db, bool wait);
};

/// While one of these lives, a run of many statements is going on, of which only one may wait in vain: those
/// behind it fail at once where something is locked, so that the run comes to its end.
class OneLockWait {
public:
    OneLockWait();
    ~OneLockWait();
    OneLockWait(const OneLockWait&) = delete;
    OneLockWait& operator=(const OneLockWait&) = delete;
};

} // namespace engine
