#include "platform/runtime/Dates.h"

#include "tests/support/Expect.h"

#include <gtest/gtest.h>

namespace {

/// Texts, parted by "|", and what is written of the date that they are read as; empty: no date.
const struct {
    const char* texts;
    const char* expected;
    int todaysYear = 2026;
} DateCases[] = {
    // Signs, blanks and leading zeros.
    {"05.12.2006|5.12.06|5/12/2006|5-12-2006|5 12 2006|5,12,2006|5.12/2006| 05.12.2006 ", "05.12.2006"},
    {"5.12.2006.|5..12.2006|-5.12.2006|5\t12\t2006", ""},
    // Two numbers: day and month of this year, or month and a year of three or four digits.
    {"05.12", "05.12.2026"},
    {"12.31|31.12", "31.12.2026"},
    {"29.02", "29.02.2024", 2024},
    {"29.02", "", 2026},
    {"31.11|30.02|13.13|5.0|13.2006|5.45|2006.2007", ""},
    {"12.2006", "01.12.2006"},
    // Three numbers: day, month, year; the year first only with three or four digits.
    {"29.02.2005|31.04.06|13.13.2006|00.01.2006|45.12.06", ""},
    {"05.25.06", "25.05.2006"},
    {"2006-12-05", "05.12.2006"},
    {"2006.13.05", "13.05.2006"},
    // Years.
    {"01.01.29", "01.01.2029"},
    {"01.01.30", "01.01.1930"},
    {"01.01.99|01.01.0099", "01.01.1999"},
    {"1.1.100", "01.01.0100"},
    {"1.1.10000", ""},
    {"31.12.9999", "31.12.9999"},
    // Month names.
    {"5 декабря 2006|5 декабрь 2006|5 ДЕК. 2006|декабрь 5, 2006|2006 5 декабря|5дек2006|5 декабря 2006 г.",
     "05.12.2006"},
    {"5 декабря", "05.12.2026"},
    {"январь 1980|1980 январь", "01.01.1980"},
    {"30 февраля|45 декабря 06|5 Dec 2006|5 дека 2006|5 декабря г.|май июнь", ""},
    // Times of day.
    {"5.12.2006 10:30|10:30 5.12.2006", "05.12.2006 10:30:00"},
    {"5.12.2006 9:05:07", "05.12.2006 9:05:07"},
    {"10:30", "10:30:00"},
    {"0:00|30.12.1899", "0:00:00"},
    {"24:00|10:60|10:|5.12.2006 25:00|13 pm|10:30 11:30", ""},
    {"5.12.2006 3 pm", "05.12.2006 15:00:00"},
    {"5.12.2006 12 am", "05.12.2006"},
    // No dates at all.
    {"12|38000|20061205|декабрь|||.|5.12.200б|1.2.3.4|999999999999999999999", ""},
};

} // namespace

TEST(Dates, ReadsAndWritesTextsByRussianSettings) {
    for (const auto& row : DateCases)
        for (const QString& text : QString::fromUtf8(row.texts).split(u'|')) {
            SCOPED_TRACE(text.toStdString());
            const runtime::FixedToday today(QDate(row.todaysYear, 7, 14));
            const std::optional<QDateTime> value = runtime::TryTextToDate(text);
            EXPECT_EQ(value ? runtime::DateToText(*value) : QString(), QString::fromUtf8(row.expected));
            EXPECT_EQ(runtime::IsDate(text), value.has_value());
            EXPECT_EQ(test::FailureOf([&] { runtime::TextToDate(text); }), value ? 0 : runtime::TypeMismatch);
        }
}

TEST(Dates, NumbersCountFromDayZero) {
    const struct {
        double number;
        QDateTime value;
    } rows[] = {
        {0, {QDate(1899, 12, 30), QTime(0, 0), Qt::UTC}},
        {39056.4375, {QDate(2006, 12, 5), QTime(10, 30), Qt::UTC}},
        {-1.25, {QDate(1899, 12, 29), QTime(6, 0), Qt::UTC}},
        {-657434, {QDate(100, 1, 1), QTime(0, 0), Qt::UTC}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(runtime::DateFromNumber(row.number), row.value) << row.number;
        EXPECT_DOUBLE_EQ(runtime::NumberFromDate(row.value), row.number);
    }
    // Parts of a second are rounded, but not beyond the last day.
    EXPECT_EQ(runtime::DateToText(runtime::DateFromNumber(0.9999999)), QStringLiteral("31.12.1899"));
    EXPECT_EQ(runtime::DateToText(runtime::DateFromNumber(2958465.9999999)),
              QStringLiteral("31.12.9999 23:59:59"));
    for (const double outside : {2958466.0, -657435.0, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(test::FailureOf([&] { runtime::DateFromNumber(outside); }), runtime::Overflow) << outside;
}
