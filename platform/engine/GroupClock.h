#pragma once

#include <chrono>

namespace engine {

/// The clock by which groups of statements grow old and other programs are looked at.
class GroupClock {
public:
    using Time = std::chrono::steady_clock::time_point;

    static Time Now() { return std::chrono::steady_clock::now() + ahead; }

    /// For tests: from now on it is so much later.
    static void Advance(std::chrono::milliseconds by) { ahead += by; }

private:
    inline static std::chrono::steady_clock::duration ahead{};
};

} // namespace engine
