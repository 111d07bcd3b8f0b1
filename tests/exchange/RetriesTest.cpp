#include "exchange/Retries.h"

#include "exchange/RowLoop.h"
#include "tests/support/Expect.h"

namespace {

/// A statement that fails so often before it goes through.
struct Failing {
    const engine::EngineError& error;
    int times;
    int calls = 0;

    int operator()() {
        ++calls;
        if (calls <= times)
            engine::RaiseEngine(error, QStringLiteral("book.mdb"));
        return 7;
    }
};

TEST(Retries, OnlyADatabaseThatCannotBeOpenedIsTriedAgain) {
    int failures = 0;
    exchange::Retries retries([&] { ++failures; });

    Failing passing{engine::CannotOpenDatabase, 3};
    EXPECT_EQ(retries.Run([&] { return passing(); }), 7);
    EXPECT_EQ(passing.calls, 4);
    EXPECT_EQ(failures, 3);

    Failing other{engine::DuplicateKey, 1};
    EXPECT_THROW(retries.Run([&] { return other(); }), runtime::Failure);
    EXPECT_EQ(other.calls, 1);
    EXPECT_EQ(failures, 4);
}

TEST(Retries, FiftyInAWholeRun) {
    exchange::Retries retries([] {});
    Failing first{engine::CannotOpenDatabase, 30};
    EXPECT_EQ(retries.Run([&] { return first(); }), 7);
    Failing second{engine::CannotOpenDatabase, 1000};
    EXPECT_THROW(retries.Run([&] { return second(); }), runtime::Failure);
    EXPECT_EQ(second.calls, 21) << "20 retries were left";
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
        const int failure = test::FailureOf(
            [&] { exchange::ForEachRow(c.count, [&](int row) { EXPECT_EQ(row, ++calls); }); });
        EXPECT_EQ(calls, c.calls);
        EXPECT_EQ(failure, c.failure);
    }
}

} // namespace
