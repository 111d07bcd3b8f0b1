#include "platform/runtime/Process.h"

#include "tests/support/Expect.h"

#include <gtest/gtest.h>

#include <cstdio>

TEST(ProcessDeathTest, EndRunsTheLastRoutinesAndNoDestructor) {
    const auto end = [] {
        struct Scoped {
            ~Scoped() { std::fputs("destructor", stderr); }
        };
        const Scoped scoped;
        runtime::AtEnd([] {
            std::fputs("[first]", stderr);
            runtime::Raise(runtime::DiskFull);
        });
        runtime::AtEnd([] { std::fputs("[second]", stderr); });
        runtime::End();
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(0), "^\\[first\\]\\[second\\]$");
}
