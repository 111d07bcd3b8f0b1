#include "platform/runtime/Process.h"

#include "platform/runtime/Failure.h"

#include <cstdlib>
#include <utility>
#include <vector>

namespace runtime {

namespace {

std::vector<std::function<void()>>& Routines() {
    static std::vector<std::function<void()>> routines;
    return routines;
}

void RunQuietly(const std::function<void()>& routine) {
    try {
        routine();
    } catch (const Failure&) { // NOLINT(bugprone-empty-catch): nobody is left to be told
    }
}

} // namespace

void End() {
    for (const std::function<void()>& routine : Routines())
        RunQuietly(routine);
    leave();
    std::abort();
}

void AtEnd(std::function<void()> routine) {
    Routines().push_back(std::move(routine));
}

} // namespace runtime
