#include "platform/runtime/Dates.h"

#include "tests/support/Expect.h"

#include <gtest/gtest.h>

namespace {

/// Texts, parted by "|", and what they are read as: d.M.yyyy, with a time behind it if there is one; empty:
/// no date.
const struct {
    const char* texts;
    const char* expected;
    int todaysYear = 2026;
} DateCases[] = {
    // Signs, blanks and leading zeros.
    {"05.12.2006|5.12.06|5/12/2006|5-12-2006|5 12 2006|5,12,2006|5.12/2006| 05.12.2006 ", "5.12.2006"},
    {"5.12.2006.|5..12.2006|5\\12\\2006|-5.12.2006|5.12.2006,|5\t12\t2006", ""},
    // Two numbers: day and month of this year, or month and a year of three or four digits.
    {"05.12", "5.12.2026"},
    {"12.31|31.12", "31.12.2026"},
    {"12,5", "12.5.2026"},
    {"29.02", "29.2.2024", 2024},
    {"29.02", "", 2026},
    {"31.11|30.02|13.13|5.0|13.2006|5.45|2006.2007", ""},
    {"12.2006", "1.12.2006"},
    {"2006.5", "1.5.2006"},
    {"1980.05", "1.5.1980"},
    // Three numbers: day, month, year; the year first only with three or four digits.
    {"29.02.2004", "29.2.2004"},
    {"29.02.2005|30.02.2006|29.02.01|31.04.06|13.13.2006|00.01.2006|2006.02.30|0.5.14|"
     "45.12.06",
     ""},
    {"05.25.06", "25.5.2006"},
    {"02.13.1970", "13.2.1970"},
    {"12.25.2010", "25.12.2010"},
    {"2006-12-05", "5.12.2006"},
    {"2020-01-11", "11.1.2020"},
    {"2006.13.05", "13.5.2006"},
    // Years.
    {"01.01.29", "1.1.2029"},
    {"01.01.30", "1.1.1930"},
    {"01.01.99|01.01.0099", "1.1.1999"},
    {"01.01.00", "1.1.2000"},
    {"1.1.100", "1.1.100"},
    {"1.1.10000", ""},
    {"31.12.9999", "31.12.9999"},
    // Month names.
    {"5 декабря 2006|5 декабрь 2006|5 дек 2006|5 ДЕК. 2006|декабрь 5, 2006|2006 5 декабря|"
     "2006 декабря 5|5дек2006|5 декабря 2006 г.|5 декабря 2006г|05.12.2006 г.",
     "5.12.2006"},
    {"5 декабря", "5.12.2026"},
    {"мая 9", "9.5.2026"},
    {"январь 1980|1980 январь", "1.1.1980"},
    {"январь 45|30 февраля|30 февраля 2006|45 декабря 06|5 Dec 2006|5 дека 2006|"
     "5 декабря г.|5.12 г.|вт 5 декабря 2006|5.XII.2006|май июнь",
     ""},
    // Times of day.
    {"5.12.2006 10:30|10:30 5.12.2006", "5.12.2006 10:30:00"},
    {"5 декабря 2006 г. 9:05:07", "5.12.2006 9:05:07"},
    {"10:30", "30.12.1899 10:30:00"},
    {"23:59:59", "30.12.1899 23:59:59"},
    {"24:00|10:60|10:|:30|5.12.2006 25:00|5.12 10:30 2006|13 pm|5.12.2006 10.30|10:30 11:30", ""},
    {"5.12.2006 3 pm", "5.12.2006 15:00:00"},
    {"5.12.2006 12 am", "5.12.2006"},
    {"3:15 p", "30.12.1899 15:15:00"},
    // No dates at all.
    {"12|38000|20061205|декабрь||   |.|сегодня|5.12.200б|1.2.3.4|1 2 3 4|"
     "999999999999999999999|5.12.2006\n|٥.١٢.٢٠٠٦",
     ""},
};

QString Shown(const QDateTime& value) {
    const QString date = value.date().toString(QStringLiteral("d.M.")) + QString::number(value.date().year());
    const QString time = value.time().toString(QStringLiteral("H:mm:ss"));
    return value.time() == QTime(0, 0) ? date : date + u' ' + time;
}

} // namespace

TEST(Dates, ReadsTextsByRussianSettings) {
    for (const auto& row : DateCases)
        for (const QString& text : QString::fromUtf8(row.texts).split(u'|')) {
            SCOPED_TRACE(text.toStdString());
            const runtime::FixedToday today(QDate(row.todaysYear, 7, 14));
            const std::optional<QDateTime> value = runtime::TryTextToDate(text);
            EXPECT_EQ(value ? Shown(*value) : QString(), QString::fromUtf8(row.expected));
            EXPECT_EQ(runtime::IsDate(text), value.has_value());
            EXPECT_EQ(test::FailureOf([&] { runtime::TextToDate(text); }), value ? 0 : runtime::TypeMismatch);
        }
}

TEST(Dates, WritesTextsThatReadBack) {
    const struct {
        QDateTime value;
        const char* text;
    } rows[] = {
        {{QDate(2006, 12, 5), QTime(0, 0), Qt::UTC}, "05.12.2006"},
        {{QDate(2006, 12, 5), QTime(9, 5, 7), Qt::UTC}, "05.12.2006 9:05:07"},
        {{QDate(206, 1, 1), QTime(0, 0), Qt::UTC}, "01.01.0206"},
        {{QDate(1899, 12, 30), QTime(0, 0), Qt::UTC}, "0:00:00"},
        {{QDate(1899, 12, 30), QTime(17, 3), Qt::UTC}, "17:03:00"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(runtime::DateToText(row.value), QString::fromLatin1(row.text));
        EXPECT_EQ(runtime::TextToDate(runtime::DateToText(row.value)), row.value);
    }
    for (QDate day(1996, 1, 1); day < QDate(2001, 1, 1); day = day.addDays(1))
        ASSERT_EQ(runtime::TextToDate(runtime::DateToText(day)).date(), day);
}

TEST(Dates, NumbersCountFromDayZero) {
    const struct {
        double number;
        QDateTime value;
    } rows[] = {
        {0, {QDate(1899, 12, 30), QTime(0, 0), Qt::UTC}},
        {39056.4375, {QDate(2006, 12, 5), QTime(10, 30), Qt::UTC}},
        {-1.25, {QDate(1899, 12, 29), QTime(6, 0), Qt::UTC}},
        {2958465, {QDate(9999, 12, 31), QTime(0, 0), Qt::UTC}},
        {-657434, {QDate(100, 1, 1), QTime(0, 0), Qt::UTC}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(runtime::DateFromNumber(row.number), row.value) << row.number;
        EXPECT_DOUBLE_EQ(runtime::NumberFromDate(row.value), row.number);
    }
    // Parts of a second are rounded, but not beyond the last day.
    EXPECT_EQ(runtime::DateToText(runtime::DateFromNumber(0.9999999)), QStringLiteral("31.12.1899"));
    EXPECT_EQ(runtime::DateToText(runtime::DateFromNumber(39056.437499)),
              QStringLiteral("05.12.2006 10:30:00"));
    EXPECT_EQ(runtime::DateToText(runtime::DateFromNumber(2958465.9999999)),
              QStringLiteral("31.12.9999 23:59:59"));
    for (const double outside : {2958466.0, -657435.0, 1e300, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(test::FailureOf([&] { runtime::DateFromNumber(outside); }), runtime::Overflow) << outside;
}

TEST(Dates, TodayComesFromTheOneService) {
    EXPECT_EQ(runtime::Today(), QDate::currentDate());
    {
        const runtime::FixedToday outer(QDate(2004, 2, 29));
        {
            const runtime::FixedToday inner(QDate(1999, 12, 31));
            EXPECT_EQ(runtime::Now().date(), QDate(1999, 12, 31));
        }
        EXPECT_EQ(runtime::Today(), QDate(2004, 2, 29));
    }
    EXPECT_EQ(runtime::Today(), QDate::currentDate());
}
