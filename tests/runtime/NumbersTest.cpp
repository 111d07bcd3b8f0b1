#include "platform/runtime/Numbers.h"

#include "tests/support/Expect.h"

#include <gtest/gtest.h>

using runtime::Overflow;
using runtime::TypeMismatch;

TEST(Numbers, TextToNumberFollowsRussianSettings) {
    const struct {
        const char* text;
        double value;
        int failure = 0;
    } rows[] = {
        {"0", 0},
        {" -12 ", -12},
        {"+7", 7},
        {"5,5", 5.5},
        {",5", 0.5},
        {"5,", 5},
        {"1 234 567,5", 1234567.5},
        {"1\u00A0234", 1234},
        {"1\u202F234", 1234},
        {"1E3", 1000},
        {"1,5e-1", 0.15},
        {"&HFF", 255},
        {"&o17", 15},
        {"5.5", 0, TypeMismatch},
        {"", 0, TypeMismatch},
        {"   ", 0, TypeMismatch},
        {"-", 0, TypeMismatch},
        {",", 0, TypeMismatch},
        {"12a", 0, TypeMismatch},
        {"1E", 0, TypeMismatch},
        {"- 5", 0, TypeMismatch},
        {"1,2,3", 0, TypeMismatch},
        {"1  2", 0, TypeMismatch},
        {"&H", 0, TypeMismatch},
        {"&HFG", 0, TypeMismatch},
        {"один", 0, TypeMismatch},
        {"\t5", 0, TypeMismatch},
        {"1E999", 0, Overflow},
        {"-1E999", 0, Overflow},
        {"1E-999", 0},
        {"1E99999999999", 0, Overflow},
        {"inf", 0, TypeMismatch},
        {"nan", 0, TypeMismatch},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        double value = 0;
        EXPECT_EQ(test::FailureOf([&] { value = runtime::TextToNumber(QString::fromUtf8(row.text)); }),
                  row.failure);
        EXPECT_DOUBLE_EQ(value, row.value);
    }
}

TEST(Numbers, WholeNumbersRoundHalvesToEvenAndKeepTheirRange) {
    const struct {
        const char* text;
        int value;
        int failure = 0;
    } rows[] = {
        {"0,5", 0},
        {"1,5", 2},
        {"2,5", 2},
        {"-0,5", 0},
        {"-1,5", -2},
        {"32767,4", 32767},
        {"-32768,5", -32768},
        {"32767,5", 32768},
        {"2147483647", 2147483647},
        {"2147483647,5", 0, Overflow},
        {"-2147483649", 0, Overflow},
        {"x", 0, TypeMismatch},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const QString text = QString::fromLatin1(row.text);
        int value = 0;
        EXPECT_EQ(test::FailureOf([&] { value = runtime::TextToLong(text); }), row.failure);
        EXPECT_EQ(value, row.value);
    }
}

TEST(Numbers, ValReadsWhatItCan) {
    const struct {
        const char* text;
        double value;
    } rows[] = {
        {"", 0},
        {"abc", 0},
        {"12abc", 12},
        {" 1 2 . 5 x", 12.5},
        {"5,5", 5},
        {"-3", -3},
        {".5", 0.5},
        {"1e2", 100},
        {"1e", 1},
        {"1D2", 100},
        {"&HFF", 255},
        {"&HFFFF", -1},
        {"&H10000", 65536},
        {"&H7FFFFFFF", 2147483647},
        {"&HFFFFFFFF", -1},
        {"&O17", 15},
        {"&H", 0},
        {"+ 4", 4},
        {"2006.12.05", 2006.12},
    };
    for (const auto& row : rows)
        EXPECT_DOUBLE_EQ(runtime::Val(QString::fromLatin1(row.text)), row.value) << row.text;
}

TEST(Numbers, NumberToTextWritesADecimalComma) {
    const struct {
        double value;
        const char* text;
    } rows[] = {
        {0, "0"},           {-0.0, "0"},
        {5.5, "5,5"},       {-1234567, "-1234567"},
        {0.1 + 0.2, "0,3"}, {1.0 / 3, "0,333333333333333"},
        {1e15, "1E+15"},    {123456789012345, "123456789012345"},
        {1e-5, "1E-05"},    {1e300, "1E+300"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(runtime::NumberToText(row.value), QString::fromLatin1(row.text));
}

TEST(Numbers, TrimTakesOffBlanksOnly) {
    EXPECT_EQ(runtime::Trim(QStringLiteral("  а б  ")), QStringLiteral("а б"));
    EXPECT_EQ(runtime::Trim(QStringLiteral("\t\u00A0x\n")), QStringLiteral("\t\u00A0x\n"));
    EXPECT_EQ(runtime::Trim(QStringLiteral("   ")), QString());
}

TEST(Numbers, SixteenBitCounterOverflowsAtItsLimits) {
    runtime::Int16 counter(32766);
    ++counter;
    EXPECT_EQ(counter, 32767);
    EXPECT_EQ(test::FailureOf([&] { ++counter; }), Overflow);
    EXPECT_EQ(counter, 32767);
    EXPECT_EQ(test::FailureOf([] { runtime::Int16 tooLarge(32768); }), Overflow);
    EXPECT_EQ(test::FailureOf([] { runtime::Int16(-32768) += -1; }), Overflow);
}
