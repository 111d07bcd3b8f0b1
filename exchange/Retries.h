#pragma once

#include "platform/engine/EngineError.h"
#include "platform/runtime/Failure.h"

#include <QThread>

#include <functional>

namespace exchange {

/// Runs statements again that fail because a database cannot be opened at the moment (3049): other failures
/// pass at once, and so does this one when the retries of the whole run are spent.
class Retries {
public:
    static constexpr int AtMost = 50;
    /// Between two tries, so that whatever stands in the way has time to go.
    static inline unsigned long pauseMs = 20; ///< tests shorten it

    /// `onFailure` runs at every failure, before it is decided whether to try again.
    explicit Retries(std::function<void()> onFailure)
        : m_onFailure(std::move(onFailure)) {}

    template <class Statement>
    auto Run(Statement statement) {
        for (;;) {
            try {
                return statement();
            } catch (const runtime::Failure& failure) {
                m_onFailure();
                if (failure.number() != engine::CannotOpenDatabase || m_spent >= AtMost)
                    throw;
                ++m_spent;
            }
            QThread::msleep(pauseMs);
        }
    }

private:
    std::function<void()> m_onFailure;
    int m_spent = 0;
};

} // namespace exchange
