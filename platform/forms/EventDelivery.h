#pragma once

namespace forms {

/// The delivery of one event by Application::notify. An exception that is no Failure must not travel through
/// the frames of the toolkit, which are not made for it: it is kept where a handler ends, and goes on from
/// the outermost delivery of the loop, to the caller who sent the event or out of the nested loop.
class EventDelivery {
public:
    EventDelivery();
    ~EventDelivery();
    EventDelivery(const EventDelivery&) = delete;
    EventDelivery& operator=(const EventDelivery&) = delete;

    /// Keeps the current exception, to be thrown later; false if no event is being delivered.
    static bool Keep();
    /// Behind the event: throws what was kept, if this is the outermost delivery.
    void Finish();

    /// While alive, deliveries are counted anew: those of a nested loop.
    class Pause {
    public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        int m_before;
    };
};

} // namespace forms
