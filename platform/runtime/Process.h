#pragma once

#include <cstdlib>
#include <functional>

namespace runtime {

/// Ends the process at once: no window is asked or unloaded and no destructor runs. Only the routines
/// registered with AtEnd run first (the engine makes finished statements durable there).
[[noreturn]] void End();

/// Registers a routine that End() runs before it leaves. A Failure thrown by it is passed over: the process
/// is going away and nobody could be told.
void AtEnd(std::function<void()> routine);

/// How End() leaves. Tests put a throw in its place.
inline void (*leave)() = [] { std::_Exit(EXIT_SUCCESS); };

} // namespace runtime
