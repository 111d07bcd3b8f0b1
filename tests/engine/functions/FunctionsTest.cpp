#include "platform/engine/EngineError.h"
#include "platform/engine/functions/Call.h"
#include "platform/runtime/Dates.h"
#include "tests/engine/functions/Scratch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <stdexcept>

namespace {

struct Row {
    const char* sql; ///< behind SELECT
    const char* answer;
};

template <std::size_t Count>
void ExpectAnswers(const Row (&rows)[Count]) {
    test::Scratch scratch;
    for (const Row& row : rows)
        EXPECT_EQ(scratch.Ask(QStringLiteral("SELECT ") + QString::fromUtf8(row.sql)),
                  QString::fromUtf8(row.answer))
            << row.sql;
}

} // namespace

TEST(Functions, Texts) {
    ExpectAnswers({
        {"zv_left('Иванов', 2)", "Ив"},
        {"zv_left('Иванов', 20)", "Иванов"},
        {"zv_left('Иванов', 0)", ""},
        {"zv_left('Иванов', -1)", "#5"},
        {"zv_left(NULL, 2)", "NULL"},
        {"zv_left('а', NULL)", "#94"},
        {"zv_left('а', 'x')", "#13"},
        {"zv_left(12345, 2)", "12"},
        {"zv_right('Иванов', 2)", "ов"},
        {"zv_right('Иванов', 1e10)", "#6"},
        {"zv_mid('Иванов', 2, 3)", "ван"},
        {"zv_mid('Иванов', 2)", "ванов"},
        {"zv_mid('Иванов', 9, 3)", ""},
        {"zv_mid('Иванов', 2, 99)", "ванов"},
        {"zv_mid('Иванов', 0, 1)", "#5"},
        {"zv_mid('Иванов', 1, -1)", "#5"},
        {"zv_mid(NULL, 1)", "NULL"},
        {"zv_len('Ёж')", "2"},
        {"zv_len('')", "0"},
        {"zv_len(NULL)", "NULL"},
        {"zv_instr('Иванов', 'ВАН')", "2"},
        {"zv_instr('Иванов', 'х')", "0"},
        {"zv_instr(3, 'Иванов', 'в')", "6"},
        {"zv_instr(3, 'Иванов', '')", "3"},
        {"zv_instr(9, 'Иванов', '')", "0"},
        {"zv_instr('', '')", "0"},
        {"zv_instr(1, 'Иванов', 'В', 0)", "0"},
        {"zv_instr(1, 'Иванов', 'В', 1)", "2"},
        {"zv_instr(0, 'Иванов', 'в')", "#5"},
        {"zv_instr(NULL, 'в')", "NULL"},
        {"zv_instr('ёлка', 'е')", "0"},
        {"zv_instrrev('Иванов', 'В')", "6"},
        {"zv_instrrev('Иванов', 'в', 5)", "2"},
        {"zv_instrrev('Иванов', '')", "6"},
        {"zv_instrrev('Иванов', 'в', 7)", "0"}, // beyond its start
        {"zv_instrrev('Иванов', 'ов', 1)", "0"},
        {"zv_instrrev('Иванов', 'в', 0)", "#5"},
        {"zv_trim('  а б  ')", "а б"},
        {"zv_ltrim('  а ')", "а "},
        {"zv_rtrim(' а  ')", " а"},
        {"zv_rtrim('   ')", ""},
        {"zv_len(zv_trim(char(9) || ' ' || char(160)))", "3"},
        {"zv_ucase('ёлка ß')", "ЁЛКА ß"},
        {"zv_lcase('ЁЛКА Їжак')", "ёлка їжак"},
        {"zv_strcomp('а', 'Б')", "-1"},
        {"zv_strcomp('а', 'А')", "0"},
        {"zv_strcomp('а', 'А', 0)", "1"},
        {"zv_strcomp('ё', 'е', 1)", "1"},
        {"zv_strcomp('ё', 'ж')", "-1"},
        {"zv_strcomp(NULL, 'ж')", "NULL"},
        {"zv_strcomp('а', 'ж', 7)", "#5"},
        {"zv_strconv('иван ПЕТРОВ', 3)", "Иван Петров"},
        {"zv_strreverse('Иван')", "навИ"},
        {"zv_space(3) || '|'", "   |"},
        {"zv_space(-1)", "#5"},
        {"zv_space(2000000000)", "#7"},
        {"zv_string(3, 'яблоко')", "яяя"},
        {"zv_string(3, 42)", "***"},
        {"zv_string(3, '')", "#5"},
        {"zv_string(3, NULL)", "NULL"},
        {"zv_asc('А')", "192"},
        {"zv_asc('ё')", "184"},
        {"zv_asc('')", "#5"},
        {"zv_asc(NULL)", "#94"},
        {"zv_chr(192)", "А"},
        {"zv_len(zv_chr(0))", "1"},
        {"zv_chr(256)", "#5"},
        {"zv_chr(NULL)", "#94"},
        {"zv_ascw('А')", "1040"},
        {"zv_ascw(char(65533))", "-3"},
        {"zv_chrw(1040)", "А"},
        {"zv_ascw(zv_chrw(-3))", "-3"},
        {"zv_ascw(zv_chrw(-257))", "-257"}, // marks of the byte order
        {"zv_ascw(zv_chrw(-2))", "-2"},
        {"zv_chrw(65536)", "#5"},
        {"zv_hex(255)", "FF"},
        {"zv_hex(-1)", "FFFFFFFF"},
        {"zv_hex(NULL)", "NULL"},
        {"zv_oct(8)", "10"},
        {"zv_isnumeric('1 234,5')", "1"},
        {"zv_isnumeric('1\u202F234,5')", "1"},
        {"zv_isnumeric('5.5')", "0"},
        {"zv_isnumeric(NULL)", "0"},
        {"zv_isdate('05.12.2006')", "1"},
        {"zv_isdate('30.02.2006')", "0"},
        {"zv_isdate(38000)", "0"},
        {"zv_isdate(NULL)", "0"},
    });
}

TEST(Functions, Numbers) {
    ExpectAnswers({
        {"zv_val(' 12 34.5x')", "1234.5"},
        {"zv_val('x')", "0.0"},
        {"zv_val('&HFF')", "255.0"},
        {"zv_val('&HFFFFFFFF')", "-1.0"},
        {"zv_val(5.5)", "5.0"},
        {"zv_val(NULL)", "#94"},
        {"zv_str(5)", " 5"},
        {"zv_str(-5.25)", "-5.25"},
        {"zv_str(0.5)", " .5"},
        {"zv_str(-0.5)", "-.5"},
        {"zv_str(NULL)", "#94"},
        {"zv_cstr(0.5)", "0,5"},
        {"zv_cstr(-7)", "-7"},
        {"zv_cstr(NULL)", "#94"},
        {"zv_cstr(x'00ff')", "#13"},
        {"zv_cint(0.5)", "0"},
        {"zv_cint(1.5)", "2"},
        {"zv_cint(2.5)", "2"},
        {"zv_cint('2,5')", "2"},
        {"zv_cint('2.5')", "#13"},
        {"zv_cint('')", "#13"},
        {"zv_cint(32767.4)", "32767"},
        {"zv_cint(32768)", "#6"},
        {"zv_cint(NULL)", "#94"},
        {"zv_clng(2147483647)", "2147483647"},
        {"zv_clng(9e999)", "#6"},
        {"zv_cbyte(256)", "#6"},
        {"zv_cbyte(-1)", "#6"},
        {"zv_csng(1e39)", "#6"},
        {"zv_csng(0.1) = 0.1", "0"},
        {"zv_cstr(zv_csng(0.1))", "0,1"},
        {"zv_cstr(zv_cdbl(zv_csng(0.1)))", "0,100000001490116"},
        {"zv_cdbl('1,5')", "1.5"},
        {"zv_cdbl(9e999)", "#6"},
        // Amounts of money come as ten-thousandths, marked for the function around them.
        {"zv_ccur(1.23455)", "12346"},
        {"zv_ccur('-922337203685477,5808')", "-9223372036854775808"},
        {"zv_ccur('922337203685477,5808')", "#6"},
        {"zv_ccur('1 234,00005')", "12340000"},
        {"zv_ccur('-1,000150000001')", "-10002"},
        {"zv_ccur('1E2')", "1000000"},
        {"zv_ccur('x')", "#13"},
        {"zv_ccur(NULL)", "#94"},
        {"zv_ccur(1e15)", "#6"},
        {"zv_cstr(zv_ccur('922337203685477,5807'))", "922337203685477,5807"},
        {"zv_cstr(zv_abs(zv_cur(-9223372036854775807)))", "922337203685477,5807"},
        {"zv_abs(zv_cur(-9223372036854775807 - 1))", "#6"},
        {"zv_int(zv_cur(-10001))", "-20000"},
        {"zv_fix(zv_cur(-10001))", "-10000"},
        {"zv_round(zv_cur(9223372036854770000), 1)", "9223372036854770000"},
        {"zv_round(zv_cur(12500), 1)", "12000"},
        {"zv_round(zv_cur(-13500), 1)", "-14000"},
        {"zv_round(zv_cur(9223372036854775807))", "#6"},
        {"zv_mmul(9223372036854775807, 10000)", "9223372036854775807"},
        {"zv_mmul(-30370004999760, 3037)", "-9223370518427"},
        {"zv_mmul(5000, 1)", "0"},
        {"zv_mmul(15000, 1)", "2"},
        {"zv_mmul(9223372036854775807, 10001)", "#6"},
        {"zv_msub(0, -9223372036854775807 - 1)", "#6"},
        {"zv_units(4.35)", "43500"},
        {"zv_units(1.00005)", "10000.5"},
        {"zv_units(NULL)", "NULL"},
        {"zv_keptmoney(922337203685477.5807)", "9223372036854775807"},
        {"zv_cbool('True')", "1"},
        {"zv_cbool('0')", "0"},
        {"zv_cbool(-3)", "1"},
        {"zv_cbool('да')", "#13"},
        {"zv_int(-1.5)", "-2.0"},
        {"zv_int(7)", "7"},
        {"zv_int(NULL)", "NULL"},
        {"zv_fix(-1.5)", "-1.0"},
        {"zv_fix('1,5')", "1.0"},
        {"zv_round(2.5)", "2.0"},
        {"zv_round(2.125, 2)", "2.12"},
        {"zv_round(-3.75, 1)", "-3.8"},
        {"zv_round(1e300, 20)", "1e+300"},
        {"zv_round(1.5, -1)", "#5"},
        {"zv_round(NULL, 1)", "NULL"},
        {"zv_abs(-5)", "5"},
        {"zv_abs(-9223372036854775807 - 1)", "9.22337203685e+18"},
        {"zv_abs('-2,5')", "2.5"},
        {"zv_abs('x')", "#13"},
        {"zv_sgn(-0.1)", "-1"},
        {"zv_sgn(NULL)", "NULL"},
        {"zv_sqr(9)", "3.0"},
        {"zv_sqr(-1)", "#5"},
        {"zv_log(0)", "#5"},
        {"zv_log(NULL)", "#94"},
        {"zv_exp(1000)", "#6"},
        {"zv_sin(9e999)", "#5"},
        {"round(zv_atn(1) * 4, 6)", "3.141593"},
        {"zv_rnd() BETWEEN 0 AND 0.999999999", "1"},
        {"count(DISTINCT zv_rnd()) FROM (VALUES (1), (2), (3))", "3"},
        {"zv_rnd(-1) = zv_rnd(0)", "1"},
    });
}

TEST(Functions, Dates) {
    const runtime::FixedToday today(QDate(2006, 12, 5));
    // Date numbers: 39056 is 5.12.2006.
    ExpectAnswers({
        {"zv_date()", "39056.0"},
        {"zv_date() = CAST(zv_now() AS INTEGER)", "1"},
        {"zv_time() >= 0 AND zv_time() < 1", "1"},
        {"zv_cdate('05.12.2006')", "39056.0"},
        {"zv_cdate('05.12.2006 12:00')", "39056.5"},
        {"zv_cdate('5.12')", "39056.0"},
        {"zv_cdate('завтра')", "#13"},
        {"zv_cdate('38000')", "#13"},
        {"zv_cdate(NULL)", "#94"},
        {"zv_cdate(3e6)", "#6"},
        {"zv_cdate(-1e300)", "#6"},
        {"zv_cdate(2958465.9999)", "2958465.9999"},
        {"zv_year('05.12.2006')", "2006"},
        {"zv_month(39056)", "12"},
        {"zv_day('5 декабря 2006')", "5"},
        {"zv_year(NULL)", "NULL"},
        {"zv_year('x')", "#13"},
        {"zv_year(1e9)", "#6"},
        {"zv_hour(39056.5)", "12"},
        {"zv_minute('10:30')", "30"},
        {"zv_second('10:30:15')", "15"},
        {"zv_weekday('05.12.2006')", "3"},
        {"zv_weekday('05.12.2006', 2)", "2"},
        {"zv_weekday('05.12.2006', 8)", "#5"},
        {"zv_weekday(NULL)", "NULL"},
        {"zv_datetext(zv_dateadd('m', 1, '31.01.2004'))", "29.02.2004"},
        {"zv_datetext(zv_dateadd('m', -1, '31.03.2005'))", "28.02.2005"},
        {"zv_datetext(zv_dateadd('yyyy', 1, '29.02.2004'))", "28.02.2005"},
        {"zv_datetext(zv_dateadd('q', 1, '30.11.2005'))", "28.02.2006"},
        {"zv_datetext(zv_dateadd('ww', 1, '30.12.2006'))", "06.01.2007"},
        {"zv_datetext(zv_dateadd('w', 1, '30.12.2006'))", "31.12.2006"},
        {"zv_datetext(zv_dateadd('n', 90, '31.12.2006 23:00'))", "01.01.2007 0:30:00"},
        {"zv_dateadd('yyyy', 9000, '1.1.2006')", "#5"},
        {"zv_dateadd('yyyy', 2147483647, '1.1.2006')", "#5"},
        {"zv_dateadd('ww', 2147483647, '1.1.2006')", "#5"},
        {"zv_dateadd('d', 1e10, '1.1.2006')", "#6"},
        {"zv_dateadd('x', 1, '1.1.2006')", "#5"},
        {"zv_dateadd('d', 1, NULL)", "NULL"},
        {"zv_datediff('d', '31.12.2005 23:59', '01.01.2006')", "1"},
        {"zv_datediff('d', '05.12.2006', '01.12.2006')", "-4"},
        {"zv_datediff('yyyy', '31.12.2005', '01.01.2006')", "1"},
        {"zv_datediff('q', '31.03.2006', '01.04.2006')", "1"},
        {"zv_datediff('m', '31.01.2006', '01.02.2007')", "13"},
        {"zv_datediff('w', '01.12.2006', '14.12.2006')", "1"},
        {"zv_datediff('ww', '02.12.2006', '03.12.2006')", "1"},
        {"zv_datediff('ww', '03.12.2006', '04.12.2006', 2)", "1"},
        {"zv_datediff('h', '10:59', '11:00')", "1"},
        {"zv_datediff('n', '29.12.1899 23:59', '30.12.1899')", "1"},
        {"zv_datediff('s', '1.1.100', '31.12.9999')", "#6"},
        {"zv_datediff('d', NULL, '1.1.2006')", "NULL"},
        {"zv_datepart('q', '05.12.2006')", "4"},
        {"zv_datepart('y', '31.12.2004')", "366"},
        {"zv_datepart('w', '05.12.2006')", "3"},
        {"zv_datepart('ww', '31.12.2005')", "53"},
        {"zv_datepart('ww', '02.01.2005', 2)", "1"},
        {"zv_datepart('ww', '02.01.2005', 2, 2)", "53"},
        {"zv_datepart('ww', '29.12.2003', 2, 2)", "1"},
        {"zv_datepart('ww', '02.01.2005', 2, 3)", "52"},
        {"zv_datepart('ww', '02.01.2005', 2, 4)", "#5"},
        {"zv_datetext(zv_dateserial(2006, 14, 0))", "31.01.2007"},
        {"zv_datetext(zv_dateserial(2006, 0, 31))", "31.12.2005"},
        {"zv_datetext(zv_dateserial(6, 12, 5))", "05.12.2006"},
        {"zv_datetext(zv_dateserial(30, 1, 1))", "01.01.1930"},
        {"zv_dateserial(10000, 1, 1)", "#5"},
        {"zv_dateserial(2006, 40000, 1)", "#6"},
        {"zv_dateserial(2006, NULL, 1)", "#94"},
        {"zv_datetext(zv_timeserial(10, 90, 0))", "11:30:00"},
        {"zv_datevalue('05.12.2006 10:30')", "39056.0"},
        {"zv_timevalue('05.12.2006 12:00')", "0.5"},
        {"zv_monthname(12)", "декабрь"},
        {"zv_monthname(12, 1)", "дек"},
        {"zv_monthname(13)", "#5"},
        {"zv_weekdayname(1)", "понедельник"},
        {"zv_weekdayname(1, -1, 1)", "Вс"},
        {"zv_weekdayname(8)", "#5"},
        {"zv_datetext(NULL)", "NULL"},
    });
}

TEST(Functions, Operators) {
    ExpectAnswers({
        {"zv_div(7, 2)", "3.5"},
        {"zv_div('7', 2)", "3.5"},
        {"zv_div(7, 0)", "#11"},
        {"zv_div(7, NULL)", "NULL"},
        {"zv_div('x', 2)", "#3464"},
        {"zv_intdiv(7.5, 2.5)", "4"},
        {"zv_intdiv(-7, 2)", "-3"},
        {"zv_intdiv(1, 0.5)", "#11"},
        {"zv_intdiv(3e9, 1)", "#6"},
        {"zv_intdiv(-2147483648, -1)", "2147483648.0"},
        {"zv_mod(-7, 3)", "-1"},
        {"zv_mod(7.5, 3)", "2"},
        {"zv_mod(7, 0)", "#11"},
        {"zv_pow(2, 10)", "1024.0"},
        {"zv_pow(-8, 0.5)", "#5"},
        {"zv_pow(0, -1)", "#5"},
        {"zv_pow(10, 400)", "#6"},
        {"zv_add('а', 'б')", "аб"},
        {"zv_add('5', 2)", "7.0"},
        {"zv_add(5, 2)", "7"},
        {"zv_add('x', 2)", "#3464"},
        {"zv_add('x', NULL)", "NULL"},
        {"zv_add(9223372036854775807, 1)", "9.22337203685e+18"},
        {"zv_concat('а', NULL)", "а"},
        {"zv_concat(0.5, -1)", "0,5-1"},
        {"zv_concat(NULL, NULL)", ""},
        {"zv_compare('ИВАН', 'иван')", "0"},
        {"zv_compare('ё', 'ж')", "-1"},
        {"zv_compare('ё', 'е')", "1"},
        {"zv_compare(2, 10)", "-1"},
        {"zv_compare(2.5, 2)", "1"},
        {"zv_compare('2', 2)", "#3464"},
        {"zv_compare(NULL, 2)", "NULL"},
        {"zv_required('a02.a02cval', 'x')", "x"},
        {"zv_required('a02.a02cval', NULL)", "#3314"},
        {"typeof(zv_required('a02.a02cval', x''))", "blob"},
        {"zv_required(NULL, NULL)", "#3058"},
    });
}

TEST(Functions, Aggregates) {
    ExpectAnswers({
        {"zv_first(column1) || zv_last(column1) FROM (VALUES (NULL), ('а'), ('б'), (NULL))", "аб"},
        {"zv_first(column1) FROM (VALUES (1)) WHERE 0", "NULL"},
        {"zv_last(column1) FROM (VALUES (NULL))", "NULL"},
        {"zv_var(column1) FROM (VALUES (2), (4), (NULL), (4), (4), (5), (5), (7), (9))", "4.57142857143"},
        {"zv_varp(column1) FROM (VALUES (2), (4), (NULL), (4), (4), (5), (5), (7), (9))", "4.0"},
        {"zv_stdevp(column1) FROM (VALUES (2), (4), (4), (4), (5), (5), (7), (9))", "2.0"},
        {"zv_stdev(column1) FROM (VALUES (1e9 + 1), (1e9 + 2), (1e9 + 3))", "1.0"},
        {"zv_stdev(column1) FROM (VALUES (5))", "NULL"},
        {"zv_stdevp(column1) FROM (VALUES (5))", "0.0"},
        {"zv_varp(column1) FROM (VALUES (5)) WHERE 0", "NULL"},
        {"zv_var(column1) FROM (VALUES (5), ('x'))", "#3464"},
        {"zv_sum(column1) FROM (VALUES (9223372036854775806), (NULL), (1))", "9223372036854775807"},
        {"zv_sum(column1) FROM (VALUES (9223372036854775806), (2))", "#6"},
        {"zv_sum(column1) FROM (VALUES (NULL))", "NULL"},
        {"zv_single(column1) FROM (VALUES ('а'))", "а"},
        {"zv_single(column1) FROM (VALUES (NULL))", "NULL"},
        {"zv_single(column1) FROM (VALUES ('а')) WHERE 0", "NULL"},
        {"zv_single(column1) FROM (VALUES (NULL), (NULL))", "#3354"},
    });
}

TEST(Functions, TheDialectKnowsThemByName) {
    using engine::functions::FindFunction;
    ASSERT_NE(FindFunction(u"left"), nullptr);
    EXPECT_STREQ(FindFunction(u"Left")->name, "LEFT");
    EXPECT_EQ(FindFunction(u"DateAdd")->result, engine::DataType::Date);
    for (const char16_t* unknown :
         {u"NZ", u"REPLACE", u"DLOOKUP", u"LIKE", u"TO", u"IIF", u"COUNT", u"", u"$"})
        EXPECT_EQ(FindFunction(unknown), nullptr) << test::Text(unknown).toStdString();
}

// What a function or a collation throws, ours or not, goes on behind the step, never through SQLite.
TEST(Functions, ExceptionsGoRoundSQLite) {
    test::Scratch scratch;
    sqlite3_create_function(
        scratch.Handle(), "odd", 0, SQLITE_UTF16, nullptr,
        [](sqlite3_context* context, int, sqlite3_value**) {
            try {
                throw std::logic_error("odd");
            } catch (...) {
                engine::functions::SetFailure(context);
            }
        },
        nullptr, nullptr);
    EXPECT_THROW(scratch.Ask("SELECT odd()"), std::logic_error);
    EXPECT_EQ(scratch.Ask("SELECT 1"), QStringLiteral("1"));
    EXPECT_EQ(
        sqlite3_exec(scratch.Handle(), "SELECT zv_required('t01.t01cval', NULL)", nullptr, nullptr, nullptr),
        SQLITE_ERROR);
    try {
        engine::functions::RethrowFailure();
        ADD_FAILURE();
    } catch (const runtime::Failure& failure) {
        EXPECT_EQ(failure.number(), engine::NullNotAllowed);
        EXPECT_EQ(failure.description(),
                  engine::EngineText(engine::NullNotAllowed, QStringLiteral("t01.t01cval")));
    }
}

// Whatever stands in a file reaches every function: none may end the process, and every answer is a value or
// a failure of ours.
TEST(Functions, NoValueIsTooStrange) {
    const char* values[] = {
        "NULL",
        "0",
        "-1",
        "9223372036854775807",
        "-9223372036854775807 - 1",
        "1e308",
        "-1e308",
        "9e999",
        "-9e999",
        "1e-320",
        "''",
        "'x'",
        "'31.12.9999'",
        "'1,5'",
        "x''",
        "x'00d8ff'",
        "zeroblob(3)",
        "char(55296)",
        "2958466.5",
        "-657435.5",
    };
    const char* functions[] = {
        "left(A, B)",
        "right(A, B)",
        "mid(A, B, C)",
        "len(A)",
        "instr(A, B)",
        "instr(A, B, C)",
        "instr(A, B, C, A)",
        "instrrev(A, B, C)",
        "trim(A)",
        "ltrim(A)",
        "rtrim(A)",
        "ucase(A)",
        "strcomp(A, B, C)",
        "strconv(A, B)",
        "strreverse(A)",
        "val(A)",
        "str(A)",
        "cstr(A)",
        "asc(A)",
        "ascw(A)",
        "chr(A)",
        "chrw(A)",
        "hex(A)",
        "oct(A)",
        "format(A, B)",
        "isnumeric(A)",
        "isdate(A)",
        "cbyte(A)",
        "cint(A)",
        "clng(A)",
        "csng(A)",
        "cdbl(A)",
        "ccur(A)",
        "cbool(A)",
        "int(A)",
        "fix(A)",
        "round(A, B)",
        "abs(A)",
        "tomoney(A)",
        "keptmoney(A)",
        "units(A)",
        "mmul(A, B)",
        "format(zv_cur(A), B)",
        "round(zv_cur(A), B)",
        "int(zv_cur(A))",
        "sgn(A)",
        "sqr(A)",
        "exp(A)",
        "log(A)",
        "sin(A)",
        "tan(A)",
        "atn(A)",
        "rnd(A)",
        "year(A)",
        "hour(A)",
        "weekday(A, B)",
        "dateadd('m', A, B)",
        "dateadd('s', A, B)",
        "datediff('s', A, B)",
        "datediff('ww', A, B, C)",
        "datepart('ww', A, B, C)",
        "dateserial(A, B, C)",
        "datevalue(A)",
        "timeserial(A, B, C)",
        "timevalue(A)",
        "cdate(A)",
        "monthname(A, B)",
        "weekdayname(A, B, C)",
        "like(A, B)",
        "div(A, B)",
        "intdiv(A, B)",
        "mod(A, B)",
        "pow(A, B)",
        "add(A, B)",
        "concat(A, B)",
        "compare(A, B)",
        "datetext(A)",
        "var(A)",
        "single(A)",
        "to(1, 0, 'c', A)",
        "to(5, 0, 'c', A)",
        "to(6, 0, 'c', A)",
        "to(8, 0, 'c', A)",
        "to(9, 0, 'c', A)",
        "to(10, 2, 'c', A)",
        "to(12, 2, 'c', A)",
        "to(A, B, C, A)",
        "space(A)",
        "string(A, B)",
    };
    test::Scratch scratch;
    const auto count = std::size(values);
    int asked = 0;
    for (const char* function : functions) {
        for (std::size_t i = 0; i < count * count; ++i) {
            QString call = QString::fromUtf8(function);
            call.replace(u'A', QString::fromUtf8(values[i % count]));
            call.replace(u'B', QString::fromUtf8(values[i / count]));
            call.replace(u'C', QString::fromUtf8(values[(i * 7 + i / count) % count]));
            const QString sql = QStringLiteral("SELECT zv_") + call;
            const QString answer = scratch.Ask(sql);
            ASSERT_FALSE(answer.startsWith(u'!')) << sql.toStdString() << " " << answer.toStdString();
            ++asked;
            if (!std::strchr(function, 'B') && i >= count - 1)
                break;
        }
    }
    EXPECT_GT(asked, 10000);
}
