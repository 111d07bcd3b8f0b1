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
        {" -12 |-12", -12},
        {"+7", 7},
        {",5", 0.5},
        {"5,", 5},
        {"1 234 567,5", 1234567.5},
        {"1\u00A0234|1\u202F234", 1234},
        {"1,5e-1", 0.15},
        {"&HFF", 255},
        {"5.5||-|,|12a|1E|- 5|1,2,3|&HFG|inf|nan", 0, TypeMismatch},
        {"1E999|-1E999", 0, Overflow},
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
    EXPECT_EQ(runtime::TextToLong(QStringLiteral("1,5")), 2);
    EXPECT_EQ(runtime::TextToLong(QStringLiteral("-2,5")), -2);
    EXPECT_EQ(runtime::TextToLong(QStringLiteral("2147483647,4")), 2147483647);
    EXPECT_EQ(test::FailureOf([] { runtime::TextToLong(QStringLiteral("2147483647,5")); }), Overflow);
}

TEST(Numbers, ValReadsWhatItCan) {
    const std::pair<const char*, double> rows[] = {
        {"|abc|&H", 0}, {" 1 2 . 5 x", 12.5},      {"5,5", 5},         {"-3", -3},   {"1e2|1D2", 100},
        {"1e", 1},      {"&HFFFF|&HFFFFFFFF", -1}, {"&H10000", 65536}, {"&O17", 15},
    };
    for (const auto& [texts, value] : rows)
        for (const QString& text : QString::fromLatin1(texts).split(u'|'))
            EXPECT_DOUBLE_EQ(runtime::Val(text), value) << text.toStdString();
}

TEST(Numbers, TextsOfNumbersAndTrimmedOnes) {
    const std::pair<double, const char*> rows[] = {
        {-0.0, "0"},        {-1234567, "-1234567"},
        {0.1 + 0.2, "0,3"}, {1.0 / 3, "0,333333333333333"},
        {1e15, "1E+15"},    {123456789012345, "123456789012345"},
        {1e-5, "1E-05"},
    };
    for (const auto& [value, text] : rows)
        EXPECT_EQ(runtime::NumberToText(value), QString::fromLatin1(text));
    // Blanks only are taken off.
    EXPECT_EQ(runtime::Trim(QStringLiteral(" \t\u00A0x\n")), QStringLiteral("\t\u00A0x\n"));
}

TEST(Numbers, SixteenBitCounterOverflowsAtItsLimits) {
    runtime::Int16 counter(32766);
    ++counter;
    EXPECT_EQ(test::FailureOf([&] { ++counter; }), Overflow);
    EXPECT_EQ(counter, 32767);
}
