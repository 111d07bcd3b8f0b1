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
        const auto run = [&] {
            if (++calls <= statement.times)
                engine::RaiseEngine(statement.error, "book.mdb");
            return 7;
        };
        EXPECT_EQ(test::FailureOf([&] { EXPECT_EQ(retries.Run(run), 7); }), statement.raised);
        EXPECT_EQ(calls, statement.calls);
        EXPECT_EQ(failures, calls - (statement.raised == 0 ? 1 : 0));
    }
}

TEST(RowLoop, SixteenBits) {
    const std::tuple<int, int, int> cases[] = {
        {0, 0, 0}, {32766, 32766, 0}, {32767, 32767, 6}, {32768, 0, 6}};
    for (const auto& [count, expected, failure] : cases) {
        int calls = 0;
        const auto each = [&](int row) { EXPECT_EQ(row, ++calls); };
        EXPECT_EQ(test::FailureOf([&, rows = count] { exchange::ForEachRow(rows, each); }), failure) << count;
        EXPECT_EQ(calls, expected) << count;
    }
}

} // namespace
