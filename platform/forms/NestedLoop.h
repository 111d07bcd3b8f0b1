#pragma once

#include "platform/forms/EventDelivery.h"

#include <exception>
#include <functional>

namespace forms {

/// A stay in an event loop inside a handler: a modal window, a message box, a popup menu. An exception that
/// is no Failure must not travel through the dispatcher; it is taken out at the loop's edge: the loop is
/// stopped, and the exception goes on from where the loop was entered.
class NestedLoop {
public:
    /// `stop` makes the loop's exec return.
    explicit NestedLoop(std::function<void()> stop);
    ~NestedLoop();
    NestedLoop(const NestedLoop&) = delete;
    NestedLoop& operator=(const NestedLoop&) = delete;

    /// Throws what was carried out of the loop, if anything; call behind exec.
    void Rethrow();

    /// Whether a handler's loop is running.
    static bool IsRunning();
    /// Takes the exception out of the innermost loop and stops it.
    static void CarryOut(std::exception_ptr exception);

private:
    EventDelivery::Pause m_pause;
    std::function<void()> m_stop;
    std::exception_ptr m_carried;
    NestedLoop* m_outer;
};

} // namespace forms
