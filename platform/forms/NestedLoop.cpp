#include "platform/forms/NestedLoop.h"

#include <utility>

namespace forms {

namespace {
NestedLoop* innermost = nullptr;
}

NestedLoop::NestedLoop(std::function<void()> stop)
    : m_stop(std::move(stop))
    , m_outer(innermost) {
    innermost = this;
}

NestedLoop::~NestedLoop() {
    innermost = m_outer;
}

void NestedLoop::Rethrow() {
    if (m_carried)
        std::rethrow_exception(std::exchange(m_carried, nullptr));
}

bool NestedLoop::IsRunning() {
    return innermost != nullptr;
}

void NestedLoop::CarryOut(std::exception_ptr exception) {
    innermost->m_carried = std::move(exception);
    innermost->m_stop();
}

} // namespace forms
