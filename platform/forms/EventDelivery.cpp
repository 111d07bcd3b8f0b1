#include "platform/forms/EventDelivery.h"

#include "platform/forms/NestedLoop.h"

#include <exception>
#include <utility>

namespace forms {

namespace {

int running = 0;         ///< deliveries of the innermost loop
std::exception_ptr kept; ///< on its way out of them

} // namespace

EventDelivery::EventDelivery() {
    ++running;
}

EventDelivery::~EventDelivery() {
    --running;
}

bool EventDelivery::Keep() {
    if (running == 0)
        return false;
    if (!kept)
        kept = std::current_exception();
    return true;
}

void EventDelivery::Finish() {
    if (running > 1 || !kept)
        return;
    const std::exception_ptr leaving = std::exchange(kept, nullptr);
    if (NestedLoop::IsRunning())
        NestedLoop::CarryOut(leaving);
    else
        std::rethrow_exception(leaving);
}

EventDelivery::Pause::Pause()
    : m_before(std::exchange(running, 0)) {
}

EventDelivery::Pause::~Pause() {
    running = m_before;
}

} // namespace forms
