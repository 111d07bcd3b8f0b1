#include "tests/engine/functions/Scratch.h"

#include <gtest/gtest.h>

#include <limits>

using engine::Value;
using engine::functions::Format;

TEST(Format, Numbers) {
    const struct {
        double number;
        const char* picture;
        const char* text;
    } rows[] = {
        {1234.5, "", "1234,5"},
        {1234.5, "General Number", "1234,5"},
        {1234.567, "fixed", "1234,57"},
        {1234567.5, "Standard", "1\u00A0234\u00A0567,50"},
        {-1234.5, "Currency", "-1\u00A0234,50\u00A0₽"},
        {0.125, "Percent", "12,50%"},
        {12345.678, "Scientific", "1,23E+04"},
        {0, "Yes/No", "Нет"},
        {-1, "Yes/No", "Да"},
        {2, "True/False", "Истина"},
        {0, "On/Off", "Выкл"},
        {5, "0", "5"},
        {5, "000", "005"},
        {5, "###", "5"},
        {0, "###", ""},
        {0, "0.00", "0,00"},
        {5.5, "#.##", "5,5"},
        {5, "#.##", "5,"},
        {0.5, "#.##", ",5"},
        {0.5, ".00", ",50"},
        {12.5, ".00", "12,50"},
        {2.5, "0", "3"},
        {1.005, "0.00", "1,01"},
        {-2.5, "0", "-3"},
        {-0.001, "0.00", "0,00"},
        {999.995, "0.00", "1000,00"},
        {9.5, "#", "10"},
        {0.4, "0", "0"},
        {0.05, "0.0", "0,1"},
        {0.04, "0.0", "0,0"},
        {1234567, "#,##0", "1\u00A0234\u00A0567"},
        {123, "#,##0", "123"},
        {12, "0,000", "0\u00A0012"},
        {1234567, "#,##0,", "1\u00A0235"},
        {1234567, "0.00,", "1234567,00"},
        {1234567890, "0,,.0", "1234,6"},
        {1234567, "000-00-00", "123-45-67"},
        {84951234567, "+# (###) ###-##-##", "+8 (495) 123-45-67"},
        {0.256, "0%", "26%"},
        {0.256, "0.0%", "25,6%"},
        {0.256, "\\%0.0", "%0,3"},
        {1234, "0.0E+00", "1,2E+03"},
        {0.00012, "0.0E+00", "1,2E-04"},
        {0.00012, "0.0E-00", "1,2E-04"},
        {1234, "0.0e-0", "1,2e3"},
        {99999, "0.0E+0", "1,0E+5"},
        {123456, "000.0E+0", "123,5E+3"},
        {0, "0.0E+0", "0,0E+0"},
        {5, "0 \"шт.\"", "5 шт."},
        {5, "\\№ 0", "№ 5"},
        {5, "(0)", "(5)"},
        {5, "0;(0)", "5"},
        {-5, "0;(0)", "(5)"},
        {-5, "0;", "-5"},
        {-5, "0;;\\н", "-5"},
        {0, "0;-0;\"нет\"", "нет"},
        {0, "0;-0", "0"},
        {5, "\"да\"", "да"},
        {1e-300, "0.00", "0,00"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Format(Value(row.number), QString::fromUtf8(row.picture)), QString::fromUtf8(row.text))
            << row.number << " by " << row.picture;
    EXPECT_EQ(Format(Value(1e300), QStringLiteral("0")).size(), 301);
    EXPECT_EQ(Format(Value(engine::Money{-9223372036854775807 - 1}), QStringLiteral("#,##0.0000")),
              QString::fromUtf8("-922\u00A0337\u00A0203\u00A0685\u00A0477,5808"));
    EXPECT_EQ(Format(Value(engine::Money{5}), QStringLiteral("0.000")), QStringLiteral("0,001"));
    EXPECT_EQ(Format(Value(0.1F), QStringLiteral("0.000000000")), QStringLiteral("0,100000000"));
    EXPECT_FALSE(Format(Value(std::numeric_limits<double>::infinity()), QStringLiteral("0")).isEmpty());
    EXPECT_EQ(Format(Value(std::numeric_limits<std::int64_t>::min()), QStringLiteral("0")),
              QStringLiteral("-9223372036854780000"));
}

TEST(Format, Dates) {
    const struct {
        const char* date;
        const char* picture;
        const char* text;
    } rows[] = {
        {"05.12.2006", "dd.mm.yyyy", "05.12.2006"},
        {"05.12.2006", "d/m/yy", "5.12.06"},
        {"05.12.2006", "yyyy-mm-dd", "2006-12-05"},
        {"05.12.2006", "ddd d mmm", "Вт 5 дек"},
        {"05.12.2006", "dddd, d mmmm", "вторник, 5 декабрь"},
        {"05.12.2006", "Short Date", "05.12.2006"},
        {"05.12.2006", "long date", "5 декабря 2006 г."},
        {"05.12.2006", "Medium Date", "05-дек-06"},
        {"05.12.2006 14:05:09", "General Date", "05.12.2006 14:05:09"},
        {"05.12.2006 14:05:09", "Long Time", "14:05:09"},
        {"05.12.2006 04:05:09", "Long Time", "4:05:09"},
        {"05.12.2006 04:05:09", "d tttt", "5 tttt"},
        {"05.12.2006 14:05:09", "Medium Time", "02:05 PM"},
        {"05.12.2006 14:05:09", "Short Time", "14:05"},
        {"05.12.2006 14:05:09", "hh:mm", "14:05"},
        {"05.12.2006 14:05:09", "h:m:s", "14:5:9"},
        {"05.12.2006 14:05:09", "mm hh mm", "12 14 05"},
        {"05.12.2006 14:05:09", "hh nn dd mm", "14 05 05 12"},
        {"05.12.2006 00:05", "h am/pm", "12 am"},
        {"05.12.2006 12:05", "h A/P", "12 P"},
        {"05.12.2006 13:05", "hAMPM", "1"},
        {"05.12.2006", "q y w ww", "4 339 3 49"},
        {"05.12.2006", "c", "05.12.2006"},
        {"05.12.2006", "\\d\" число\" d", "d число 5"},
        {"05.12.0206", "yyyy yy", "0206 06"},
        {"10:30", "dd.mm.yyyy hh:nn", "30.12.1899 10:30"},
        {"нет", "dd.mm.yyyy", "нет"},
        {"39056", "dd.mm.yyyy", "05.12.2006"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Format(Value(QString::fromUtf8(row.date)), QString::fromUtf8(row.picture)),
                  QString::fromUtf8(row.text))
            << row.date << " by " << row.picture;
}

TEST(Format, Texts) {
    const struct {
        const char* text;
        const char* picture;
        const char* result;
    } rows[] = {
        {"Иван", ">", "ИВАН"},          {"Иван", "<", "иван"},
        {"аб", "@@@@|", "  аб|"},       {"аб", "&&&&|", "аб|"},
        {"аб", "!@@@@|", "аб  |"},      {"абвгд", "@@@|", "абвгд|"},
        {"абвгд", "!@@@|", "абвгд|"},   {"4951234567", "(@@@) @@@-@@-@@", "(495) 123-45-67"},
        {"", "@;\"пусто\"", "пусто"},   {"а", "@;\"пусто\"", "а"},
        {"1 234,5", "0.00", "1234,50"}, {"слово", "0.00", "слово"},
        {"05.12.2006", "0", "39056"},   {"слово", "", "слово"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Format(Value(QString::fromUtf8(row.text)), QString::fromUtf8(row.picture)),
                  QString::fromUtf8(row.result))
            << row.text << " by " << row.picture;
}

TEST(Format, NullHasASectionOfItsOwn) {
    EXPECT_EQ(Format(Value(), QStringLiteral("0;-0;0;\"нет\"")), QStringLiteral("нет"));
    EXPECT_EQ(Format(Value(), QStringLiteral("0")), QString());
    EXPECT_EQ(Format(Value(), QStringLiteral("dd.mm.yyyy")), QString());
    EXPECT_EQ(Format(Value(), QStringLiteral("@;\"пусто\"")), QStringLiteral("пусто"));
    EXPECT_EQ(Format(Value(), QString()), QString());
}
