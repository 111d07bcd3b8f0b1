#pragma once

#include <functional>

namespace runtime {

/// Ends the process at once: no window is asked or unloaded and no destructor runs. Only the routines
/// registered with AtEnd run first (the engine makes finished statements durable there).
[[noreturn]] void End();

/// Registers a routine that End() runs before it leaves. A Failure thrown by it is passed over: the process
/// is going away and nobody could be told.
void AtEnd(std::function<void()> routine);

/// What End() throws instead of leaving while a test holds an EndTrap. Not a Failure, so that no handler of
/// the program swallows it.
struct ProcessEnded {};

/// While alive, End() throws ProcessEnded; for tests.
class EndTrap {
public:
    EndTrap();
    ~EndTrap();
    EndTrap(const EndTrap&) = delete;
    EndTrap& operator=(const EndTrap&) = delete;
};

} // namespace runtime
