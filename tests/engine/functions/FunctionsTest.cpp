// Functions, operators, formats and patterns of the dialect. Each row gives the values of its expressions.
#include "platform/runtime/Dates.h"
#include "tests/engine/EngineTest.h"

using Functions = test::EngineTest;

TEST_F(Functions, OfTexts) {
    Check(R"(
        LEFT('Иванов', 2), LEFT('Иванов', 20), LEFT('Иванов', 0), LEFT(NULL, 2), LEFT(12345, 2) -> Ив|Иванов||NULL|12
        INSTR('Иванов', 'ВАН'), INSTR('Иванов', 'х'), INSTR(3, 'Иванов', 'в'), INSTR(3, 'Иванов', ''), INSTR(9, 'Иванов', '') -> 2|0|6|3|0
        INSTR('', ''), INSTR(1, 'Иванов', 'В', 0), INSTR(1, 'Иванов', 'В', 1), INSTR(NULL, 'в'), INSTR('ёлка', 'е') -> 0|0|2|NULL|0
        INSTRREV('Иванов', 'в', 7), INSTRREV('Иванов', 'ов', 5) -> 0|0
        TRIM('  а б  '), LTRIM('  а ') & '.', '.' & RTRIM(' а  '), RTRIM('   '), LEN(TRIM(CHR(9) & ' ' & CHR(160))) -> а б|а .|. а||3
        UCASE('ёлка ß'), LCASE('ЁЛКА Їжак'), STRCONV('иван ПЕТРОВ', 3), STRREVERSE('Иван') -> ЁЛКА ß|ёлка їжак|Иван Петров|навИ
        STRCOMP('а', 'Б'), STRCOMP('а', 'А'), STRCOMP('а', 'А', 0) -> -1|0|1
        ASC('А'), ASC('ё'), CHR(192), LEN(CHR(0)), ASCW('А') -> 192|184|А|1|1040
        CHRW(1040), ASCW(CHRW(-3)), ASCW(CHRW(-257)), ASCW(CHRW(-2)) -> А|-3|-257|-2
        ISNUMERIC('1 234,5'), ISNUMERIC('1{202F}234,5'), ISNUMERIC('5.5') -> -1|-1|0
        ISDATE('05.12.2006'), ISDATE('30.02.2006'), ISDATE(38000), ISDATE(NULL), ISNULL(NULL), ISNULL('') -> -1|0|0|0|-1|0
        LEFT('а', -1) ; MID('а', 0, 1) ; MID('а', 1, -1) ; INSTR(0, 'а', 'а') ; INSTRREV('а', 'а', 0) ; STRCOMP('а', 'ж', 7) -> #5
        SPACE(-1) ; STRING(3, '') ; ASC('') ; CHR(256) ; CHRW(65536) -> #5
        SPACE(2000000000) -> #7
    )",
          "SELECT ");
}

TEST_F(Functions, OfNumbers) {
    Check(R"(
        VAL(' 12 34.5x'), VAL('x'), VAL('&HFF'), VAL('&HFFFFFFFF'), VAL(5.5) -> 1234,5|0|255|-1|5
        -5, STR(5), STR(-5.25), STR(0.5), STR(-0.5), STR(0) & '.' -> -5| 5|-5.25| .5|-.5| 0.
        CLNG('7'), CLNG(2147483647.4), CDBL('1,5'), CBOOL('True'), CBOOL('0'), CBOOL(-3) -> 7|2147483647|1,5|-1|0|-1
        CDBL(CSNG(0.1)), CSNG(0.1) = 0.1, FORMAT(CSNG(0.1), '0.000000000') -> 0,100000001490116|0|0,100000000
        INT(-1.5), INT(7), INT(NULL), FIX(-1.5), FIX('1,5'), ABS(-5), ABS('-2,5'), SGN(-0.1), SGN(NULL) -> -2|7|NULL|-1|1|5|2,5|-1|NULL
        ROUND(2.5), ROUND(2.125, 2), ROUND(-3.75, 1), ROUND(1E300, 20), ROUND(NULL, 1) -> 2|2,12|-3,8|1E+300|NULL
        RND() BETWEEN 0 AND 0.999999999, RND() = RND(), RND(-1) = RND(0) -> -1|0|-1
        CCUR(1.23455), CCUR('1 234,00005'), CCUR('-1,000150000001'), CCUR('1E2') -> 1,2346|1234|-1,0002|100
        CCUR('922337203685477,5807') * CCUR(1), CCUR('-3037000,4999') * CCUR('0,3037') -> 922337203685477,5807|-922337,0518
        VAL(NULL) ; STR(NULL) ; CSTR(NULL) ; CINT(NULL) ; CCUR(NULL) ; LOG(NULL) -> #94
        CINT('2.5') ; CINT('') ; CCUR('x') ; CBOOL('да') ; ABS('x') ; CLNG('abc') -> #13
        CINT(32768) ; CLNG(1E300) ; CBYTE(256) ; CBYTE(-1) ; CSNG(1E39) ; CCUR(1E15) ; CCUR('922337203685477,5808') ; EXP(1000) -> #6
        ROUND(1.5, -1) ; SQR(-1) ; LOG(0) -> #5
    )",
          "SELECT ");
}

TEST_F(Functions, OfDates) {
    const runtime::FixedToday today(QDate(2006, 12, 5));
    Check(R"(
        DATE(), DATE() = INT(NOW()), TIME() >= 0 AND TIME() < 1, CDBL(#12/5/2006#) -> 05.12.2006|-1|-1|39056
        CDATE('05.12.2006'), CDATE('05.12.2006 12:00'), CDATE('5.12') -> 05.12.2006|05.12.2006 12:00:00|05.12.2006
        YEAR('05.12.2006'), MONTH(39056), DAY('5 декабря 2006'), YEAR(NULL) -> 2006|12|5|NULL
        WEEKDAY('05.12.2006'), WEEKDAY('05.12.2006', 2), WEEKDAY(NULL) -> 3|2|NULL
        DATEADD('m', 1, '31.01.2004'), DATEADD('m', -1, '31.03.2005') -> 29.02.2004|28.02.2005
        DATEADD('ww', 1, '30.12.2006'), DATEADD('w', 1, '30.12.2006') -> 06.01.2007|31.12.2006
        DATEDIFF('d', '31.12.2005 23:59', '01.01.2006'), DATEDIFF('d', '05.12.2006', '01.12.2006') -> 1|-4
        DATEDIFF('q', '31.03.2006', '01.04.2006'), DATEDIFF('m', '31.01.2006', '01.02.2007') -> 1|13
        DATEDIFF('ww', '04.12.2006', '10.12.2006'), DATEDIFF('ww', '04.12.2006', '10.12.2006', 2), DATEDIFF('n', '29.12.1899 23:59', '30.12.1899'), DATEDIFF('d', NULL, '1.1.2006') -> 1|0|1|NULL
        DATEPART('q', '05.12.2006'), DATEPART('y', '31.12.2004'), DATEPART('w', '05.12.2006'), DATEPART('ww', '31.12.2005') -> 4|366|3|53
        DATEPART('ww', '29.12.2003', 2, 2), DATEPART('ww', '02.01.2005', 2, 3) -> 1|52
        DATESERIAL(2006, 14, 0), DATESERIAL(2006, 0, 31), DATESERIAL(6, 12, 5) -> 31.01.2007|31.12.2005|05.12.2006
        TIMESERIAL(10, 90, 0), DATEVALUE('05.12.2006 10:30'), TIMEVALUE('05.12.2006 12:00') -> 11:30:00|05.12.2006|12:00:00
        MONTHNAME(12), MONTHNAME(12, 1), WEEKDAYNAME(1), WEEKDAYNAME(1, -1, 1) -> декабрь|дек|понедельник|Вс
        CDATE('завтра') ; CDATE('38000') ; YEAR('x') -> #13
        CDATE(3E6) ; CDATE(-1E300) ; YEAR(1E9) -> #6
        DATEADD('d', 1E10, '1.1.2006') ; DATESERIAL(2006, 40000, 1) ; DATEDIFF('s', '1.1.100', '31.12.9999') -> #6
        DATEADD('x', 1, '1.1.2006') ; DATEPART('ww', '02.01.2005', 2, 4) ; DATESERIAL(10000, 1, 1) ; MONTHNAME(13) ; WEEKDAYNAME(8) -> #5
    )",
          "SELECT ");
}

TEST_F(Functions, Operators) {
    Check(R"(
        -2^2, 2^3^2, 2^-1, -(-5), - 5 + 3, +5, 5 - -5, -&HFFFFFFFF, -&H7FFFFFFF -> -4|64|0,5|5|-2|5|10|1|-2147483647
        7 / 2, '7' / 2, 7 / NULL, 10 / 4, 2 + 3 * 4, (2 + 3) * 4, 2 * 3 MOD 4, 10 \ 3 * 2, 1 + 2 & 3 + 4, 10 - 3 - 2, 12 / 3 / 2 -> 3,5|3,5|NULL|2,5|14|20|2|1|37|5|2
        7 \ 2, -7 \ 2, 7.5 \ 2.5, 2.5 \ 1, 3.5 \ 1 -> 3|-3|4|2|4
        7 MOD 3, -7 MOD 3, 7.5 MOD 3, 19 MOD 6.7, -2147483648 \ -1 -> 1|-1|2|5|2147483648
        1 & 2, 'a' & NULL, NULL & NULL, 1.5 & 'x', #12/5/2006# & '!', 0.5 & -1 -> 12|a||1,5x|05.12.2006!|0,5-1
        'a' + 'b', 'a' + NULL, 5 + '5', '5' + '5' -> ab|NULL|10|55
        #12/5/2006# + 1, #12/5/2006# - #12/1/2006#, #12/5/2006# - 1 -> 06.12.2006|4|04.12.2006
        1 = 1, 1 <> 1, 2 > 1, 2 < 1, 2 >= 2, 2 <= 1, NOT 1 = 1, 3 > 2 > 1, 1 = 1 = -1, 2 < 10, 2.5 > 2 -> -1|0|-1|0|-1|0|0|0|-1|-1|-1
        FALSE AND NULL, TRUE AND NULL, TRUE OR NULL, FALSE OR NULL, NOT NULL -> 0|NULL|-1|NULL|NULL
        NULL = NULL, 1 <> NULL, NULL IS NULL, 1 IS NULL, NULL IS NOT NULL -> NULL|NULL|-1|0|0
        5 BETWEEN 1 AND 9, 5 BETWEEN 9 AND 1, 5 NOT BETWEEN 6 AND 9, 5 BETWEEN NULL AND 9 -> -1|-1|-1|NULL
        2 IN (1, 2, 3), 4 IN (1, 2), 4 NOT IN (1, 2), NULL IN (1) -> -1|0|-1|NULL
        'Иванов' = 'иВАНОВ', 'е' = 'ё', 'a ' = 'a', 'ё' > 'е', 'ё' < 'ж', 'Б' < 'а', 'ß' = 'ss', 'a' = 'а' -> -1|0|0|-1|-1|0|0|0
        IIF(1 = 1, 'yes', 1 / 0), IIF(NULL, 1, 2), SWITCH(1 = 2, 'a', 1 = 1, 'b') -> yes|2|b
        -- Whole numbers beyond 32 bits are fractions.
        2147483647 * 2147483647, 2147483647 * 2147483647 & '' -> 4,61168601413242E+18|4,61168601413242E+18
        1 / 0 ; 7 \ 0 ; 1 \ 0.5 ; 7 MOD 0 -> #11
        3E9 \ 1 ; 10 ^ 400 ; 9E300 * 9E300 -> #6
        'x' / 2 ; 'x' + 2 ; '2' = 2 ; NOT 'x' -> #3464
    )",
          "SELECT ");
}

TEST_F(Functions, FormatOfNumbers) {
    Check(R"(
        FORMAT(1234.5, ''), FORMAT(1234.5, 'General Number') -> 1234,5|1234,5
        FORMAT(1234.567, 'fixed'), FORMAT(1234567.5, 'Standard') -> 1234,57|1{00A0}234{00A0}567,50
        FORMAT(-1234.5, 'Currency'), FORMAT(0.125, 'Percent'), FORMAT(12345.678, 'Scientific') -> -1{00A0}234,50{00A0}₽|12,50%|1,23E+04
        FORMAT(0, 'Yes/No'), FORMAT(-1, 'Yes/No'), FORMAT(2, 'True/False'), FORMAT(0, 'On/Off') -> Нет|Да|Истина|Выкл
        FORMAT(0, '0.00'), FORMAT(5.5, '#.##'), FORMAT(5, '#.##') -> 0,00|5,5|5,
        FORMAT(2.5, '0'), FORMAT(1.005, '0.00'), FORMAT(-2.5, '0') -> 3|1,01|-3
        FORMAT(1234567, '#,##0'), FORMAT(123, '#,##0'), FORMAT(12, '0,000') -> 1{00A0}234{00A0}567|123|0{00A0}012
        FORMAT(0.256, '0%'), FORMAT(0.256, '0.0%'), FORMAT(0.256, '\%0.0') -> 26%|25,6%|%0,3
        FORMAT(5, '0 "шт."'), FORMAT(5, '\№ 0'), FORMAT(5, '(0)'), FORMAT(5, '"да"') -> 5 шт.|№ 5|(5)|да
        FORMAT(5, '0;(0)'), FORMAT(-5, '0;(0)'), FORMAT(-5, '0;') -> 5|(5)|-5
        FORMAT(NULL, '0;-0;0;"нет"'), FORMAT(NULL, '0'), FORMAT(NULL, 'dd.mm.yyyy') -> нет||
        LEN(FORMAT(1E300, '0')), FORMAT(CCUR('-922337203685477,5808'), '#,##0.0000') -> 301|-922{00A0}337{00A0}203{00A0}685{00A0}477,5808
    )",
          "SELECT ");
}

TEST_F(Functions, FormatOfDatesAndTexts) {
    Check(R"(
        FORMAT('05.12.2006', 'dd.mm.yyyy'), FORMAT('05.12.2006', 'd/m/yy') -> 05.12.2006|5.12.06
        FORMAT('05.12.2006', 'Short Date'), FORMAT('05.12.2006', 'long date') -> 05.12.2006|5 декабря 2006 г.
        FORMAT('05.12.2006 14:05:09', 'General Date'), FORMAT('05.12.2006 14:05:09', 'Long Time') -> 05.12.2006 14:05:09|14:05:09
        FORMAT('14:05:09', 'Short Time'), FORMAT('14:05:09', 'h:m:s') -> 14:05|14:5:9
        FORMAT('05.12.2006 14:05:09', 'mm hh mm'), FORMAT('05.12.2006 14:05:09', 'hh nn dd mm'), FORMAT('00:05', 'h am/pm') -> 12 14 05|14 05 05 12|12 am
        FORMAT('05.12.2006', 'q y w ww'), FORMAT(#1/1/2006#, 'w', 2) -> 4 339 3 49|7
        FORMAT('05.12.2006', '\d" число" d'), FORMAT('05.12.0206', 'yyyy yy'), FORMAT('10:30', 'dd.mm.yyyy hh:nn') -> d число 5|0206 06|30.12.1899 10:30
        FORMAT('абвгд', '@@@.'), FORMAT('абвгд', '!@@@.'), FORMAT('4951234567', '(@@@) @@@-@@-@@') -> абвгд.|абвгд.|(495) 123-45-67
        FORMAT('1 234,5', '0.00'), FORMAT('слово', '0.00'), FORMAT('05.12.2006', '0'), FORMAT('слово', '') -> 1234,50|слово|39056|слово
    )",
          "SELECT ");
}

// Once as literals, which are read with the statement, and once as values of rows.
TEST_F(Functions, Like) {
    Run(QStringLiteral("CREATE TABLE l (t MEMO, p MEMO)"));
    AllowEmpty(QStringLiteral("l"), {QStringLiteral("t"), QStringLiteral("p")});
    for (const auto& [conditions, expected] : test::Lines(R"(
        '' '' ; 'Иванов' 'иВАНОВ' ; 'ЁЛКА' 'ёлка' ; '50%_' '50%_' ; 'a\b' 'a\b' ; '!' '!' ; ']' ']' -> -1
        'а' '' ; '' 'а' ; 'Иванов' 'Ивано' ; 'Иванов' 'Иванов ' ; 'Иванов ' 'Иванов' ; 'ёлка' 'елка' ; '50аб' '50%_' -> 0
        'Иванов' '*н*' ; 'абабв' '*абв' ; 'ааб' '*аб' ; 'аxбxв' 'а*б*в' ; 'аб' 'а*б*' -> -1
        'Иван' 'И?ан' ; '7' '#' ; '(495) 123-45-67' '(###) ###-##-##' ; '*100#' '?###?' ; '😀' '??' ; '😀' '*' -> -1
        'Ивван' 'И?ан' ; '' '?' ; 'x' '#' ; '٣' '#' -> 0
        'б' '[абв]' ; 'Б' '[абв]' ; 'г' '[!абв]' ; 'д' '[а-я]' ; 'Д' '[а-я]' ; 'ё' '[а-я]' -> -1
        'г' '[абв]' ; 'Б' '[!абв]' ; '' '[!абв]' ; 'ё' '[а-е]' ; 'ё' '[!а-я]' ; 'q' '[а-я]' ; '5' '[а-яa-z]' -> 0
        '-' '[-а]' ; '-' '[а-]' ; 'б' '[!-а]' ; 'в' '[а-бв]' ; '-' '[а-б-г]' ; '!' '[а!]' -> -1
        '[' '[[]' ; '[нет]' '[[]нет]' ; '' '[]' ; 'аб' 'а[]б' ; '*100#' '[*]100[#]' ; '*100#' '*[#]' ; 'а' '[а-а]' -> -1
        'а' '[' ; 'а' 'а[бв' ; '' 'x[' ; 'а' '[я-а]' ; 'а' '[9-0]' ; 'а' '[б-аа]' -> #93
        NULL '*' ; 'а' NULL -> NULL
    )")) {
        for (const QString& condition : conditions.split(QStringLiteral(" ; "))) {
            const qsizetype gap =
                condition.indexOf(u' ', condition.startsWith(u'\'') ? condition.indexOf(u'\'', 1) : 0);
            SCOPED_TRACE(condition.toStdString());
            const QString text = condition.left(gap);
            const QString pattern = condition.mid(gap + 1);
            Check(qUtf8Printable(QStringLiteral("SELECT %1 LIKE %2 -> %3").arg(text, pattern, expected)));
            Run(QStringLiteral("INSERT INTO l VALUES (%1, %2)").arg(text, pattern));
            Check(qUtf8Printable(QStringLiteral("SELECT t LIKE p FROM l -> ") + expected));
            Run(QStringLiteral("DELETE FROM l"));
        }
    }
}

TEST_F(Functions, OfGroups) {
    Check(R"(
        CREATE TABLE s (k COUNTER, x DOUBLE, t TEXT(5))
        INSERT INTO s (x, t) VALUES (2, NULL) ; INSERT INTO s (x, t) VALUES (4, 'а') ; INSERT INTO s (x, t) VALUES (NULL, 'б') -> 1
        INSERT INTO s (x) VALUES (4) ; INSERT INTO s (x) VALUES (4) ; INSERT INTO s (x) VALUES (5) -> 1
        INSERT INTO s (x) VALUES (5) ; INSERT INTO s (x) VALUES (7) ; INSERT INTO s (x) VALUES (9) -> 1
        SELECT VAR(x), VARP(x), STDEVP(x), COUNT(x), COUNT(*), SUM(x), AVG(x) FROM s -> 4,57142857142857|4|2|8|9|40|5
        SELECT STDEV(1E9 + k), FIRST(t), LAST(t), MIN(t), MAX(t) FROM s WHERE k < 4 -> 1|а|б|а|б
        SELECT VARP(x), FIRST(t), LAST(t), SUM(x), COUNT(*) FROM s WHERE k > 99 -> NULL|NULL|NULL|NULL|0
    )");
}
