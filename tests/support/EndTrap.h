#pragma once

#include "platform/runtime/Process.h"

#include <utility>

namespace test {

/// Thrown where the process would end. Not a Failure, so that no handler of the program swallows it.
struct ProcessEnded {};

/// While alive, the end of the process throws ProcessEnded.
class EndTrap {
public:
    EndTrap()
        : m_before(std::exchange(runtime::leave, [] { throw ProcessEnded(); })) {}
    ~EndTrap() { runtime::leave = m_before; }
    EndTrap(const EndTrap&) = delete;
    EndTrap& operator=(const EndTrap&) = delete;

private:
    void (*m_before)();
};

} // namespace test
