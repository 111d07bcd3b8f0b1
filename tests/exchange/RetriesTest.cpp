#include "exchange/Retries.h"

#include "exchange/RowLoop.h"
#include "tests/support/Expect.h"

namespace {

// 50 tries again in a whole run, of statements that cannot open a database alone.
TEST(Retries, OnlyADatabaseThatCannotBeOpenedIsTriedAgain) {
    exchange::Retries::pauseMs = 0;
    int failures = 0;
    exchange::Retries retries([&] { ++failures; });
    const struct {
        const engine::EngineError& error;
        int times; ///< that the statement fails
        int calls;
        int raised;
    } statements[] = {
        {engine::DuplicateKey, 1, 1, engine::DuplicateKey},
        {engine::CannotOpenDatabase, 47, 48, 0},
        {engine::CannotOpenDatabase, 1000, 4, engine::CannotOpenDatabase},
    };
    for (const auto& statement : statements) {
        int calls = 0;
        failures = 0;
        const int raised = test::FailureOf([&] {
            EXPECT_EQ(retries.Run([&] {
                if (++calls <= statement.times)
                    engine::RaiseEngine(statement.error, QStringLiteral("book.mdb"));
                return 7;
            }),
                      7);
        });
        EXPECT_EQ(raised, statement.raised);
        EXPECT_EQ(calls, statement.calls);
        EXPECT_EQ(failures, calls - (raised == 0 ? 1 : 0));
    }
}

TEST(RowLoop, SixteenBits) {
    const struct {
        std::int64_t count;
        int calls;
        int failure;
    } cases[] = {{0, 0, 0}, {1, 1, 0}, {32766, 32766, 0}, {32767, 32767, 6}, {32768, 0, 6}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.count);
        int calls = 0;
        EXPECT_EQ(test::FailureOf(
                      [&] { exchange::ForEachRow(c.count, [&](int row) { EXPECT_EQ(row, ++calls); }); }),
                  c.failure);
        EXPECT_EQ(calls, c.calls);
    }
}

} // namespace
