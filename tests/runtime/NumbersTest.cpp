#include "platform/runtime/Numbers.h"

#include "tests/support/Expect.h"

#include <gtest/gtest.h>

using runtime::Overflow;
using runtime::TypeMismatch;

// Each row: what its texts, parted by "|", become.
TEST(Numbers, TextToNumberFollowsRussianSettings) {
    const struct {
        const char* texts;
        double value;
        int failure = 0;
    } rows[] = {
        {"0|1E-999", 0},
        {" -12 |-12", -12},
        {"+7", 7},
        {"5,5", 5.5},
        {",5", 0.5},
        {"5,", 5},
        {"1 234 567,5", 1234567.5},
        {"1\u00A0234|1\u202F234", 1234},
        {"1E3", 1000},
        {"1,5e-1", 0.15},
        {"&HFF", 255},
        {"&o17", 15},
        {"5.5||   |-|,|12a|1E|- 5|1,2,3|1  2|&H|&HFG|один|\t5|inf|nan", 0, TypeMismatch},
        {"1E999|-1E999|1E99999999999", 0, Overflow},
    };
    for (const auto& row : rows)
        for (const QString& text : QString::fromUtf8(row.texts).split(u'|')) {
            SCOPED_TRACE(text.toStdString());
            double value = 0;
            EXPECT_EQ(test::FailureOf([&] { value = runtime::TextToNumber(text); }), row.failure);
            EXPECT_DOUBLE_EQ(value, row.value);
        }
}

TEST(Numbers, WholeNumbersRoundHalvesToEvenAndKeepTheirRange) {
    const struct {
        const char* texts;
        int value;
        int failure = 0;
    } rows[] = {
        {"0,5|-0,5", 0},
        {"1,5|2,5", 2},
        {"-1,5", -2},
        {"32767,4", 32767},
        {"-32768,5", -32768},
        {"32767,5", 32768},
        {"2147483647", 2147483647},
        {"2147483647,5|-2147483649", 0, Overflow},
        {"x", 0, TypeMismatch},
    };
    for (const auto& row : rows)
        for (const QString& text : QString::fromUtf8(row.texts).split(u'|')) {
            SCOPED_TRACE(text.toStdString());
            int value = 0;
            EXPECT_EQ(test::FailureOf([&] { value = runtime::TextToLong(text); }), row.failure);
            EXPECT_EQ(value, row.value);
        }
}

TEST(Numbers, ValReadsWhatItCan) {
    const std::pair<const char*, double> rows[] = {
        {"|abc|&H", 0},
        {"12abc", 12},
        {" 1 2 . 5 x", 12.5},
        {"5,5", 5},
        {"-3", -3},
        {".5", 0.5},
        {"1e2|1D2", 100},
        {"1e", 1},
        {"&HFF", 255},
        {"&HFFFF|&HFFFFFFFF", -1},
        {"&H10000", 65536},
        {"&H7FFFFFFF", 2147483647},
        {"&O17", 15},
        {"+ 4", 4},
        {"2006.12.05", 2006.12},
    };
    for (const auto& [texts, value] : rows)
        for (const QString& text : QString::fromLatin1(texts).split(u'|'))
            EXPECT_DOUBLE_EQ(runtime::Val(text), value) << text.toStdString();
}

TEST(Numbers, TextsOfNumbersAndTrimmedOnes) {
    const std::pair<double, const char*> rows[] = {
        {0, "0"},           {-0.0, "0"},
        {5.5, "5,5"},       {-1234567, "-1234567"},
        {0.1 + 0.2, "0,3"}, {1.0 / 3, "0,333333333333333"},
        {1e15, "1E+15"},    {123456789012345, "123456789012345"},
        {1e-5, "1E-05"},    {1e300, "1E+300"},
    };
    for (const auto& [value, text] : rows)
        EXPECT_EQ(runtime::NumberToText(value), QString::fromLatin1(text));
    // Blanks only are taken off.
    EXPECT_EQ(runtime::Trim(QStringLiteral("  а б  ")), QStringLiteral("а б"));
    EXPECT_EQ(runtime::Trim(QStringLiteral(" \t\u00A0x\n")), QStringLiteral("\t\u00A0x\n"));
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
