#pragma once

#include "platform/runtime/Failure.h"

#include <gtest/gtest.h>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* stream) {
    *stream << '"' << text.toStdString() << '"';
}

namespace test {

/// The number of the failure that the action ends in; 0 if it ends well.
template <class Action>
int NumberOf(Action action) {
    try {
        action();
    } catch (const runtime::Failure& failure) {
        EXPECT_EQ(failure.description(), runtime::RuntimeText(failure.number()));
        return failure.number();
    }
    return 0;
}

} // namespace test
