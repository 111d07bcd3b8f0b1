// Queries of the dialect. The results are worked out by hand from the rows of the fixture.
#include "tests/engine/sql/DialectFixture.h"

namespace {

using DialectTest = DialectFixture;

TEST_F(DialectTest, LiteralsAndNames) {
    static const DialectCase cases[] = {
        {u"SELECT 1", u"1"},
        {u"SELECT 'a', \"b\", 'it''s', \"say \"\"yes\"\"\", \"it's\"", u"a|b|it's|say \"yes\"|it's"},
        {u"SELECT 'two\r\nlines'", u"two\r\nlines"},
        {u"SELECT 1.5, .5, 2., 1E3, 1.5e-1, 12345678901", u"1,5|0,5|2|1000|0,15|12345678901"},
        {u"SELECT &H1F, &hff, 2147483647", u"31|255|2147483647"},
        {u"SELECT #12/5/2006#, #2006-12-05 10:30:00#, #1/2/29#, #1/2/30#",
         u"05.12.2006|05.12.2006 10:30:00|02.01.2029|02.01.1930"},
        {u"SELECT #10:30#, #12/5/2006 3:05 PM#", u"10:30:00|05.12.2006 15:05:00"},
        {u"SELECT TRUE, FALSE, YES, NO, ON, OFF, NULL", u"-1|0|-1|0|-1|0|NULL"},
        {u"SELECT txt FROM [n 01] WHERE id = 1", u"10"},
        {u"SELECT [n 01].[txt], `n 01`!id FROM `n 01` WHERE [n 01]!id = 2", u"9|2"},
        {u"select A01LAST from A01 where A01CLID = 1;", u"Иванов"},
        {u"SELECT a01clid FROM a01 WHERE a01clid=1OR a01clid=5AND a01last='ИВАНОВ' ORDER BY a01clid",
         u"1 / 5"},
        {u"SELECT\ta01clid\r\nFROM a01\nWHERE a01clid = 2", u"2"},
        {u"SELECT COUNT(*) AS количество FROM a01", u"5"},
        {u"v00", u"3"},
        {u"[n 01];", u"1|1,5|31.01.2020|-1|10 / 2|2,5|31.12.2019 18:30:00|0|9 / 3|NULL|NULL|0|NULL / "
                     u"4|-2,5|29.02.2020|-1|-"},
    };
    CheckOpen(cases);
}

TEST_F(DialectTest, Operators) {
    static const DialectCase cases[] = {
        {u"SELECT -2^2, 2^3^2, 2^-1", u"-4|64|0,5"},
        {u"SELECT 7\\2, -7\\2, 7 MOD 3, -7 MOD 3, 2.5\\1, 3.5\\1, 19 MOD 6.7", u"3|-3|1|-1|2|4|5"},
        {u"SELECT 10/4, 2+3*4, (2+3)*4, 2*3 MOD 4, 10\\3*2, 1+2&3+4", u"2,5|14|20|2|1|37"},
        {u"SELECT 1 & 2, 'a' & NULL, NULL & NULL, 1.5 & 'x', #12/5/2006# & '!'", u"12|a||1,5x|05.12.2006!"},
        {u"SELECT 'a' + 'b', 'a' + NULL, 5 + '5', '5' + '5', #12/5/2006# + 1", u"ab|NULL|10|55|06.12.2006"},
        {u"SELECT #12/5/2006# - #12/1/2006#, #12/5/2006# - 1", u"4|04.12.2006"},
        {u"SELECT 1=1, 1<>1, 2>1, 2<1, 2>=2, 2<=1, NOT 1=1", u"-1|0|-1|0|-1|0|0"},
        {u"SELECT 3 > 2 > 1, 1 = 1 = -1", u"0|-1"},
        {u"SELECT NOT 1 = 2 AND 1 = 1, 1 = 1 OR 1 = 1 AND 1 = 2", u"-1|-1"},
        {u"SELECT TRUE XOR TRUE, TRUE XOR FALSE, TRUE EQV FALSE, FALSE EQV FALSE, TRUE IMP FALSE, FALSE IMP "
         u"TRUE",
         u"0|-1|0|-1|0|-1"},
        {u"SELECT FALSE AND NULL, TRUE AND NULL, TRUE OR NULL, FALSE OR NULL, NOT NULL",
         u"0|NULL|-1|NULL|NULL"},
        {u"SELECT NULL XOR TRUE, NULL EQV FALSE, FALSE IMP NULL, NULL IMP TRUE, TRUE IMP NULL",
         u"NULL|NULL|-1|-1|NULL"},
        {u"SELECT NULL = NULL, 1 <> NULL, NULL IS NULL, 1 IS NULL, NULL IS NOT NULL", u"NULL|NULL|-1|0|0"},
        {u"SELECT 5 AND 3, 5 OR 0, NOT 5, 0 XOR 2", u"-1|-1|0|-1"},
        {u"SELECT 5 BETWEEN 1 AND 9, 5 BETWEEN 9 AND 1, 5 NOT BETWEEN 6 AND 9, 5 BETWEEN NULL AND 9",
         u"-1|-1|-1|NULL"},
        {u"SELECT 'б' BETWEEN 'в' AND 'а', 'Б' BETWEEN 'а' AND 'в', 'г' BETWEEN 'а' AND 'в'", u"-1|-1|0"},
        {u"SELECT 2 IN (1, 2, 3), 4 IN (1, 2), 4 NOT IN (1, 2), NULL IN (1), 1 IN (2, NULL)",
         u"-1|0|-1|NULL|NULL"},
        {u"SELECT 'Х' IN ('х'), 'ж' IN ('х', 'ж')", u"-1|-1"},
        {u"SELECT 'Иванов' = 'иВАНОВ', 'е' = 'ё', 'a ' = 'a', 'ё' > 'е', 'ё' < 'ж', 'Б' < 'а'",
         u"-1|0|0|-1|-1|0"},
        {u"SELECT 'abc' LIKE 'A*', 'abc' LIKE 'a?c', 'a1' LIKE 'a#', 'b' LIKE '[a-c]', 'd' LIKE '[!a-c]', '' "
         u"LIKE ''",
         u"-1|-1|-1|-1|-1|-1"},
        {u"SELECT 'abc' NOT LIKE 'a*', NULL LIKE '*', 15 LIKE '1?', 'a%c' LIKE 'a%c', 'abc' LIKE 'a%c'",
         u"0|NULL|-1|-1|0"},
        {u"SELECT -(-5), - 5 + 3, +5, 5 - -5", u"5|-2|5|10"},
        {u"SELECT TRUE + 1, (1=1) * 5, (1=2) & 'x'", u"0|-5|0x"},
    };
    CheckOpen(cases);
}

TEST_F(DialectTest, Conditions) {
    static const DialectCase cases[] = {
        {u"SELECT a01clid FROM a01 WHERE a01last = 'ИВАНОВ' ORDER BY a01clid", u"1 / 5"},
        {u"SELECT a01clid FROM a01 WHERE a01last LIKE 'иванов' ORDER BY a01clid", u"1 / 5"},
        {u"SELECT a01clid FROM a01 WHERE a01last LIKE 'ив*' AND a01midl LIKE '*ович'", u"1"},
        {u"SELECT a01clid FROM a01 WHERE a01midl LIKE '' ", u"4"},
        {u"SELECT a01clid FROM a01 WHERE a01midl LIKE '*' ORDER BY a01clid", u"1 / 2 / 4"},
        {u"SELECT a01clid FROM a01 WHERE a01midl IS NULL ORDER BY a01clid", u"3 / 5"},
        {u"SELECT a01clid FROM a01 WHERE NOT a01midl LIKE 'И*' ORDER BY a01clid", u"2 / 4"},
        {u"SELECT a01clid FROM a01 WHERE a01clid BETWEEN 4 AND 2 ORDER BY a01clid", u"2 / 3 / 4"},
        {u"SELECT a01clid FROM a01 WHERE a01clid IN (5, 1, 77) ORDER BY a01clid", u"1 / 5"},
        {u"SELECT a01clid FROM a01 WHERE a01last IN ('иванов', 'петров') ORDER BY a01clid", u"1 / 2 / 5"},
        {u"SELECT a01clid FROM a01 WHERE a01clid - 1", u"2 / 3 / 4 / 5"},
        {u"SELECT id FROM [n 01] WHERE bit ORDER BY id", u"1 / 4"},
        {u"SELECT id FROM [n 01] WHERE bit = TRUE ORDER BY id", u"1 / 4"},
        {u"SELECT id FROM [n 01] WHERE bit = -1 AND NOT (dbl < 0)", u"1"},
        {u"SELECT id FROM [n 01] WHERE day > #12/31/2019# ORDER BY day", u"2 / 1 / 4"},
        {u"SELECT id FROM [n 01] WHERE day = #1/31/2020#", u"1"},
        {u"SELECT t03cval FROM t03 WHERE t03numb LIKE '4*' ORDER BY t03cval", u"МОСКВА / ХИМКИ"},
        {u"SELECT t03cval FROM t03 WHERE t03numb LIKE '385'", u"БАРНАУЛ"},
        {u"SELECT a02rcid FROM a02 WHERE a02clid= 1AND a02code = 2", u"2"},
        {u"SELECT a02rcid FROM a02 WHERE 2 = a02clid AND '8125678' = a02cval", u"4"},
        {u"SELECT a02rcid FROM a02 WHERE a02clid = 1 AND a02clid = 2", u""},
        {u"SELECT a02rcid FROM a02 WHERE a02clid = 1 OR a02code = 3 ORDER BY 1", u"1 / 2 / 5"},
        {u"SELECT a01clid FROM a01 WHERE a01last > 'п' ORDER BY a01clid", u"2 / 3"},
        {u"SELECT a01clid FROM a01 WHERE a01bith IS NOT NULL AND a01bith LIKE '??.##.1980' ORDER BY a01clid",
         u"1 / 4"},
    };
    CheckOpen(cases);
}

TEST_F(DialectTest, Order) {
    static const DialectCase cases[] = {
        {u"SELECT a01clid FROM a01 ORDER BY a01last, a01frst, a01midl", u"4 / 5 / 1 / 2 / 3"},
        {u"SELECT a01clid FROM a01 ORDER BY a01last DESC, a01frst DESC", u"3 / 2 / 1 / 5 / 4"},
        {u"SELECT a01clid, a01midl FROM a01 ORDER BY a01midl, a01clid",
         u"3|NULL / 5|NULL / 4| / 1|Иванович / 2|Петрович"},
        {u"SELECT a01clid FROM a01 ORDER BY a01midl DESC, a01clid", u"2 / 1 / 4 / 3 / 5"},
        {u"SELECT a01frst, a01clid FROM a01 ORDER BY 2 DESC", u"Борис|5 / Олег|4 / Анна|3 / Пётр|2 / Иван|1"},
        {u"SELECT a01frst FROM a01 ORDER BY LEN(a01frst), a01frst", u"Анна / Иван / Олег / Пётр / Борис"},
        {u"SELECT t01cval FROM t01 ORDER BY t01code DESC",
         u"Основной телефон / Рабочий телефон / Мобильный телефон / "
         u"Домашний телефон"},
        {u"SELECT dbl FROM [n 01] ORDER BY dbl", u"NULL / -2,5 / 1,5 / 2,5"},
        {u"SELECT TOP 2 a01clid FROM a01 ORDER BY a01clid", u"1 / 2"},
        {u"SELECT TOP 1 a01last FROM a01 ORDER BY a01last DESC", u"Сидорова"},
        {u"SELECT TOP 2 t03cval FROM t03 ORDER BY t03numb",
         u"БАРНАУЛ / МОСКВА / ХИМКИ"}, // two share the last place
        {u"SELECT TOP 50 PERCENT a01clid FROM a01 ORDER BY a01clid", u"1 / 2 / 3"}, // 2.5 rounds up
        {u"SELECT TOP 20 PERCENT a02code FROM a02 ORDER BY a02code", u"1 / 1 / 1"},
        {u"SELECT COUNT(*) FROM (SELECT TOP 3 * FROM a01) AS q", u"3"},
        {u"SELECT COUNT(*) FROM (SELECT TOP 41 PERCENT * FROM a01) AS q", u"3"},
        {u"SELECT TOP 1 a01clid FROM a01 ORDER BY a01clid * 0, TRUE, 'x', a01clid DESC", u"5"},
        {u"SELECT DISTINCT TOP 2 a01last & '!' FROM a01 ORDER BY a01last & '!'", u"Ёлкин! / Иванов!"},
        {u"SELECT DISTINCT TOP 2 t03numb FROM t03 ORDER BY t03numb DESC", u"814 / 495"},
    };
    CheckOpen(cases);
}

TEST_F(DialectTest, Joins) {
    static const DialectCase cases[] = {
        {u"SELECT a01clid, a02cval FROM a01, a02 WHERE a01clid = a02clid ORDER BY a02rcid",
         u"1|4951234567 / 1|79161112233 / 2|8121234 / 2|8125678 / 4|555"},
        {u"SELECT a01clid, t01cval FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = "
         u"a02code AND "
         u"a01last LIKE 'И*' ORDER BY t01code",
         u"1|Домашний телефон / 1|Мобильный телефон"},
        {u"SELECT a01clid, a02cval FROM a01 INNER JOIN a02 ON a01.a01clid = a02.a02clid WHERE a02code = 3",
         u"4|555"},
        {u"SELECT a01clid, a02cval FROM a01 LEFT JOIN a02 ON a01clid = a02clid ORDER BY a01clid, a02rcid",
         u"1|4951234567 / 1|79161112233 / 2|8121234 / 2|8125678 / 3|NULL / 4|555 / 5|NULL"},
        {u"SELECT t01code, a02cval FROM a02 RIGHT JOIN t01 ON a02code = t01code WHERE t01code > 1 ORDER BY "
         u"t01code",
         u"2|79161112233 / 3|555 / 4|NULL"},
        {u"SELECT t01code, a02cval FROM t01 LEFT OUTER JOIN a02 ON a02code = t01code WHERE a02cval IS NULL",
         u"4|NULL"},
        {u"SELECT a01clid, t01code FROM (a01 INNER JOIN a02 ON a01clid = a02clid) INNER JOIN t01 ON a02code "
         u"= t01code "
         u"WHERE a01clid = 1 ORDER BY t01code",
         u"1|1 / 1|2"},
        {u"SELECT a01clid, t01cval FROM a01 LEFT JOIN (a02 INNER JOIN t01 ON a02code = t01code) ON a01clid = "
         u"a02clid "
         u"WHERE a01clid >= 3 ORDER BY a01clid",
         u"3|NULL / 4|Рабочий телефон / 5|NULL"},
        {u"SELECT x.a01clid, y.a01clid FROM a01 AS x, a01 y WHERE x.a01last = y.a01last AND x.a01clid < "
         u"y.a01clid",
         u"1|5"},
        {u"SELECT x.a01clid, y.a01clid FROM a01 AS x INNER JOIN a01 AS y ON x.a01clid > y.a01clid AND "
         u"y.a01clid > 3",
         u"5|4"},
        {u"SELECT COUNT(*) FROM a01, t01", u"20"},
        {u"SELECT COUNT(*) FROM a01, a02 INNER JOIN t01 ON a02code = t01code", u"25"},
        {u"SELECT t02cval, t03cval FROM t02, t03 WHERE t02rcid = t03code AND t03numb LIKE '495' AND t02cval "
         u"= 'московская "
         u"область' ORDER BY t02cval, t03cval",
         u"МОСКОВСКАЯ ОБЛАСТЬ|МОСКВА / МОСКОВСКАЯ ОБЛАСТЬ|ХИМКИ"},
        {u"SELECT DISTINCTROW a01clid FROM a01 INNER JOIN a02 ON a01clid = a02clid ORDER BY a01clid",
         u"1 / 2 / 4"},
        {u"SELECT DISTINCT a01clid FROM a01 INNER JOIN a02 ON a01clid = a02clid ORDER BY a01clid",
         u"1 / 2 / 4"},
        {u"SELECT a02.* FROM a01 INNER JOIN a02 ON a01clid = a02clid WHERE a01clid = 4", u"5|4|3|555"},
    };
    CheckOpen(cases);
}

TEST_F(DialectTest, Groups) {
    static const DialectCase cases[] = {
        {u"SELECT COUNT(*), COUNT(a01midl), MIN(a01clid), MAX(a01clid), SUM(a01clid), AVG(a01clid) FROM a01",
         u"5|3|1|5|15|3"},
        {u"SELECT COUNT(*), SUM(a01clid), MIN(a01last), MAX(a01clid) + 1 FROM a01 WHERE a01clid > 100",
         u"0|NULL|NULL|NULL"},
        {u"SELECT max(a01clid) + 1 FROM a01", u"6"},
        {u"SELECT MIN(a01last), MAX(a01last) FROM a01", u"Ёлкин|Сидорова"},
        {u"SELECT a02code, COUNT(*) FROM a02 GROUP BY a02code ORDER BY a02code", u"1|3 / 2|1 / 3|1"},
        {u"SELECT a02code, COUNT(*) FROM a02 GROUP BY a02code HAVING COUNT(*) > 1", u"1|3"},
        {u"SELECT COUNT(*) FROM a01 GROUP BY a01last ORDER BY COUNT(*) DESC", u"2 / 1 / 1 / 1"},
        {u"SELECT COUNT(*) FROM a01 GROUP BY a01last & '' ORDER BY COUNT(*) DESC", u"2 / 1 / 1 / 1"},
        {u"SELECT a01midl, COUNT(*) FROM a01 GROUP BY a01midl ORDER BY a01midl",
         u"NULL|2 / |1 / Иванович|1 / Петрович|1"},
        {u"SELECT LEN(a01frst), COUNT(*) FROM a01 GROUP BY LEN(a01frst) ORDER BY LEN(a01frst)", u"4|4 / 5|1"},
        {u"SELECT LEN(a01frst) * 10 + COUNT(*) FROM a01 GROUP BY LEN(a01frst) ORDER BY 1", u"44 / 51"},
        {u"SELECT COUNT(*) FROM a01 HAVING COUNT(*) > 10", u""},
        {u"SELECT 1 FROM a01 HAVING 1 = 1", u"1"},
        {u"SELECT t02cval, COUNT(*), MIN(t03cval) FROM t02 INNER JOIN t03 ON t02rcid = t03code GROUP BY "
         u"t02cval ORDER BY "
         u"COUNT(*) DESC, t02cval",
         u"МОСКОВСКАЯ ОБЛАСТЬ|2|МОСКВА / АЛТАЙ|1|БАРНАУЛ / КАРЕЛИЯ|1|ПЕТРОЗАВОДСК"},
        {u"SELECT STDEV(t03numb), VARP(a02code) FROM t03, a02 WHERE t03rcid = 1 AND a02rcid < 3", u"0|0,25"},
        {u"SELECT VAR(id), STDEVP(id) FROM [n 01] WHERE id < 3", u"0,5|0,5"},
        {u"SELECT VAR(id) FROM [n 01] WHERE id = 1", u"NULL"},
        {u"SELECT COUNT(*) FROM a01 GROUP BY 'x', NULL, TRUE, 1, -1", u"5"}, // constants are no positions
        {u"SELECT FIRST(a01last), LAST(a01last) FROM a01", u"Иванов|иванов"},
        {u"SELECT SUM(a01clid = 1), SUM(dbl) FROM a01, [n 01] WHERE a01clid = id", u"-1|1,5"},
        {u"SELECT DISTINCT a01last FROM a01 WHERE a01last = 'иванов'", u"Иванов"},
        {u"SELECT COUNT(*) FROM (SELECT DISTINCT a01midl FROM a01) AS q", u"4"},
        {u"SELECT a.a01last FROM a01 AS a GROUP BY a01last HAVING a01last LIKE 'П*'", u"Петров"},
    };
    CheckOpen(cases);
}

TEST_F(DialectTest, UnionsAndSubqueries) {
    static const DialectCase cases[] = {
        {u"SELECT 1 UNION SELECT 2 UNION SELECT 1", u"1 / 2"},
        {u"SELECT 1 UNION ALL SELECT 1", u"1 / 1"},
        {u"SELECT LCASE(x) FROM (SELECT a01last AS x FROM a01 WHERE a01clid = 1 UNION SELECT a01last FROM "
         u"a01 WHERE a01clid = 5) AS q",
         u"иванов"},
        {u"SELECT LCASE(x) FROM (SELECT a01last & '' AS x FROM a01 WHERE a01clid = 1 UNION SELECT 'ИВАНОВ') "
         u"AS q",
         u"иванов"},
        {u"SELECT a01last AS x FROM a01 WHERE a01clid > 1 UNION SELECT t02cval FROM t02 ORDER BY x DESC",
         u"Сидорова / Петров / МОСКОВСКАЯ ОБЛАСТЬ / КАРЕЛИЯ / иванов / Ёлкин / АЛТАЙ"},
        {u"SELECT a01clid, 'Б' FROM a01 WHERE a01clid < 3 UNION ALL SELECT t02rcid, t02cval FROM t02 ORDER "
         u"BY 1, 2 DESC",
         u"1|МОСКОВСКАЯ ОБЛАСТЬ / 1|Б / 2|КАРЕЛИЯ / 2|Б / 3|АЛТАЙ"},
        {u"(SELECT 2) UNION (SELECT 1) ORDER BY 1", u"1 / 2"},
        {u"SELECT q.n FROM (SELECT a01clid AS n FROM a01) AS q WHERE q.n > 4", u"5"},
        {u"SELECT n FROM [SELECT a01clid AS n FROM a01 WHERE a01last = 'Петров']. AS q", u"2"},
        {u"SELECT a01clid FROM a01 WHERE a01clid IN (SELECT a02clid FROM a02 WHERE a02code = 1) ORDER BY "
         u"a01clid",
         u"1 / 2"},
        {u"SELECT a01clid FROM a01 WHERE a01clid NOT IN (SELECT a02clid FROM a02) ORDER BY a01clid",
         u"3 / 5"},
        {u"SELECT a01clid FROM a01 WHERE EXISTS (SELECT * FROM a02 WHERE a02clid = a01clid AND a02code = 3)",
         u"4"},
        {u"SELECT a01clid FROM a01 WHERE NOT EXISTS (SELECT a02rcid FROM a02 WHERE a02clid = a01.a01clid)",
         u"3 / 5"},
        {u"SELECT a01clid, (SELECT COUNT(*) FROM a02 WHERE a02clid = a01clid) FROM a01 ORDER BY a01clid",
         u"1|2 / 2|2 / 3|0 / 4|1 / 5|0"},
        {u"SELECT a01clid FROM a01 WHERE a01clid = (SELECT MAX(a02clid) FROM a02)", u"4"},
        {u"SELECT (SELECT a01last FROM a01 WHERE a01clid = 99)", u"NULL"},
        {u"SELECT a01clid, (SELECT COUNT(a01clid) FROM t02) FROM a01 WHERE a01clid < 3 ORDER BY 1",
         u"1|3 / 2|3"},
        {u"SELECT ((SELECT MAX(a01clid) FROM a01) + 1), ((SELECT 1)), 1 IN ((SELECT 1), 2)", u"6|1|-1"},
        {u"SELECT x, y FROM ((SELECT 1 AS x) AS q INNER JOIN (SELECT 1 AS y) AS r ON q.x = r.y)", u"1|1"},
        {u"SELECT a01clid FROM a01 WHERE a01clid > ALL (SELECT a02clid FROM a02)", u"5"},
        {u"SELECT a01clid FROM a01 WHERE a01clid >= ANY (SELECT a02clid FROM a02 WHERE a02clid > 1) ORDER BY "
         u"a01clid",
         u"2 / 3 / 4 / 5"},
        {u"SELECT a01clid FROM a01 WHERE a01clid = SOME (SELECT a02clid FROM a02 WHERE a02code = 1) ORDER BY "
         u"1",
         u"1 / 2"},
        {u"SELECT a01clid FROM a01 WHERE a01clid <> ALL (SELECT a02clid FROM a02) ORDER BY 1", u"3 / 5"},
        {u"SELECT 1 > ALL (SELECT id FROM [n 01] WHERE id > 9), 1 > ANY (SELECT id FROM [n 01] WHERE id > 9)",
         u"-1|0"},
        {u"SELECT 5 > ALL (SELECT dbl FROM [n 01]), 2 > ANY (SELECT dbl FROM [n 01]), 9 < ANY (SELECT dbl "
         u"FROM [n 01])",
         u"NULL|-1|NULL"},
        {u"SELECT a02code FROM a02 GROUP BY a02code HAVING COUNT(*) >= ALL (SELECT COUNT(*) FROM a02 GROUP "
         u"BY a02code)",
         u"1"},
        {u"SELECT a01last FROM a01 WHERE a01last IN (SELECT 'ПЕТРОВ' FROM v00)", u"Петров"},
        {u"SELECT COUNT(*) FROM (SELECT a01last FROM a01 UNION SELECT a01last FROM a01) AS q", u"4"},
        {u"PARAMETERS p TEXT; SELECT v00vrid FROM v00", u"3"},
        {u"SELECT a01clid * 2 AS twice, twice + 1 AS more FROM a01 WHERE a01clid = 5", u"10|11"},
    };
    CheckOpen(cases);
}

// Texts that differ in a sign that is not seen: not equal, and in one order everywhere.
TEST_F(DialectTest, UnseenSignsCountAlike) {
    static const DialectCase cases[] = {
        {u"SELECT 'а\u00ADб' = 'аб', 'а\u00ADб' <> 'аб', 'а\u00ADб' > 'аб', 'а\u00ADб' <= 'аб'",
         u"0|-1|0|-1"},
        {u"SELECT 'а\u00ADб' BETWEEN 'аб' AND 'аб', STRCOMP('а\u00ADб', 'аб'), 'а\u00ADб' IN ('аб')",
         u"0|-1|0"},
        {u"SELECT COUNT(*) FROM (SELECT 'аб' AS q FROM v00 UNION SELECT 'а\u00ADб' FROM v00) AS u", u"2"},
        {u"SELECT LEN(q) FROM (SELECT 'а\u00ADб' AS q FROM v00 UNION ALL SELECT 'аб' FROM v00 UNION ALL "
         u"SELECT 'абв' FROM v00) AS u ORDER BY q",
         u"3 / 2 / 3"},
        {u"SELECT MAX(q) = 'аб' FROM (SELECT 'а\u00ADб' AS q FROM v00 UNION SELECT 'аб' FROM v00) AS u",
         u"-1"},
    };
    CheckOpen(cases);
}

TEST_F(DialectTest, Transform) {
    static const DialectCase cases[] = {
        {u"TRANSFORM COUNT(*) SELECT a02clid FROM a02 GROUP BY a02clid PIVOT a02code",
         u"1|1|1|NULL / 2|2|NULL|NULL / 4|NULL|NULL|1"},
        {u"TRANSFORM MAX(a02cval) & '' AS [a name] SELECT a02clid FROM a02 WHERE a02clid < 3 GROUP BY "
         u"a02clid PIVOT "
         u"a02code IN (2, 9)",
         u"1|79161112233|NULL / 2|NULL|NULL"},
        {u"TRANSFORM FIRST(a01frst) SELECT a01last FROM a01 WHERE a01last LIKE 'и*' GROUP BY a01last PIVOT "
         u"a01midl",
         u"Иванов|Борис|Иван"},
        {u"TRANSFORM SUM(id) SELECT bit FROM [n 01] GROUP BY bit ORDER BY bit DESC PIVOT YEAR(day) - 2000",
         u"0|3|2|NULL / -1|NULL|NULL|5"},
        {u"TRANSFORM COUNT(*) SELECT 1 FROM [n 01] GROUP BY 1 PIVOT bit IN (TRUE, -1, FALSE, 0, NULL)",
         u"1|2|2|2|2|NULL"},
        {u"TRANSFORM COUNT(*) SELECT 1 FROM [n 01] GROUP BY 1 PIVOT dbl IN (-2.5, NULL)", u"1|1|1"},
        {u"TRANSFORM COUNT(*) SELECT 1 FROM [n 01] GROUP BY 1 PIVOT dbl IN (1 + 1)", u"#3143 "},
        {u"TRANSFORM a02cval SELECT a02clid FROM a02 GROUP BY a02clid PIVOT a02code", u"#3122 "},
        {u"TRANSFORM COUNT(*) SELECT a02clid FROM a02 PIVOT a02code", u"#3143 "},
        {u"TRANSFORM COUNT(*) SELECT a02clid FROM a02 GROUP BY a02clid PIVOT q", u"#3061 "},
        {u"TRANSFORM COUNT(*) SELECT a02clid FROM a02 GROUP BY a02clid", u"#3143 "},
    };
    CheckOpen(cases);
    EXPECT_EQ(
        Names(QStringLiteral("TRANSFORM COUNT(*) SELECT a01clid FROM a01 GROUP BY a01clid PIVOT a01bith")),
        QStringLiteral("a01clid|<>|05_12_1980|29_02_1980|31_01_1975"));
    // The same value has the same name, told by the rows or listed.
    const QString days = QStringLiteral("TRANSFORM COUNT(*) SELECT 1 FROM [n 01] GROUP BY 1 PIVOT ");
    EXPECT_EQ(Names(days + QStringLiteral("day")),
              QStringLiteral("Expr1000|<>|31_12_2019 18:30:00|31_01_2020|29_02_2020"));
    EXPECT_EQ(Names(days + QStringLiteral("day IN (NULL, #12/31/2019 18:30#, #1/31/2020#)")),
              QStringLiteral("Expr1000|<>|31_12_2019 18:30:00|31_01_2020"));
    EXPECT_EQ(Names(days + QStringLiteral("dbl")), QStringLiteral("Expr1000|<>|-2,5|1,5|2,5"));
    EXPECT_EQ(Names(days + QStringLiteral("bit IN (FALSE, TRUE, -7)")), QStringLiteral("Expr1000|0|-1|-7"));
    EXPECT_EQ(Names(days + QStringLiteral("IIF(id = 1, 'a!b[c].d', STRING(70, 'x'))")),
              QStringLiteral("Expr1000|a_b_c__d|") + QString(64, u'x'));
    m_database->Execute(QStringLiteral("UPDATE a02 SET a02code = 7 WHERE a02code = 3"),
                        engine::dbFailOnError);
    EXPECT_EQ(
        Names(QStringLiteral("TRANSFORM COUNT(*) SELECT a02clid FROM a02 GROUP BY a02clid PIVOT a02code")),
        QStringLiteral("a02clid|1|2|7"));
}

TEST_F(DialectTest, Functions) {
    static const DialectCase cases[] = {
        {u"SELECT LEFT(a01last, 2), RIGHT(a01last, 2), MID(a01last, 2, 3), LEN(a01last) FROM a01 WHERE "
         u"a01clid = 1",
         u"Ив|ов|ван|6"},
        {u"SELECT UCASE('ёж'), LCASE('ЁЖ'), TRIM('  a '), INSTR('телефон', 'Ф')", u"ЁЖ|ёж|a|5"},
        {u"SELECT IIF(1 = 1, 'yes', 1/0), IIF(NULL, 1, 2)", u"yes|2"},
        {u"SELECT IIF(a01clid = 1, 'a', IIF(a01clid = 2, 'b', 'c')) FROM a01 ORDER BY a01clid",
         u"a / b / c / c / c"},
        {u"SELECT SWITCH(1 = 2, 'a', 1 = 1, 'b'), SWITCH(1 = 2, 'a'), CHOOSE(2, 'x', 'y'), CHOOSE(3, 'x', "
         u"'y')",
         u"b|NULL|y|NULL"},
        {u"SELECT ISNULL(a01midl), ISNULL(a01frst) FROM a01 WHERE a01clid = 3", u"-1|0"},
        {u"SELECT a01clid FROM a01 WHERE ISNULL(a01midl) AND ISDATE(a01bith & '1.1.2000')", u"3 / 5"},
        {u"SELECT YEAR(day), MONTH(day), FORMAT(day, 'dd mmmm yyyy') FROM [n 01] WHERE id = 4",
         u"2020|2|29 февраль 2020"},
        {u"SELECT LEN(day), day & '' FROM [n 01] WHERE id = 1", u"10|31.01.2020"},
        {u"SELECT a01clid FROM a01 WHERE IIF(a01bith IS NULL, 0, YEAR(CDATE(a01bith))) = 1980 ORDER BY "
         u"a01clid",
         u"1 / 4"},
        {u"SELECT ROUND(2.5), INT(-1.5), FIX(-1.5), ABS(-3), SGN(-3)", u"2|-2|-1|3|-1"},
        {u"SELECT ASC('Я'), FORMAT(#1/1/2006#, 'w', 2), FORMAT(#1/1/2006#, 'ww', 2, 2), CVDATE(NULL)",
         u"223|7|52|NULL"},
        {u"SELECT CSTR(1.5), CLNG('7'), VAL('12abc'), CBOOL(5), HEX(255)", u"1,5|7|12|-1|FF"},
        {u"SELECT DATESERIAL(2006, 12, 5) + 1, DATEDIFF('d', #1/1/2020#, #3/1/2020#)", u"06.12.2006|60"},
        {u"SELECT COUNT(*) FROM a01 WHERE LEFT(a01last, 1) = 'и'", u"2"},
        {u"SELECT STRREVERSE(a01frst) & '-' & a01clid FROM a01 WHERE a01clid = 2", u"ртёП-2"},
    };
    CheckOpen(cases);
}

// Whole numbers beyond 32 bits are fractions; SINGLE is shown to 7 digits, and calculated with as it is.
TEST_F(DialectTest, WholeNumbersAndSingles) {
    static const DialectCase cases[] = {
        {u"SELECT 2147483647 * 2147483647, 2147483647 * 2147483647 & '', CSTR(2147483647 * 2147483647)",
         u"4,61168601413242E+18|4,61168601413242E+18|4,61168601413242E+18"},
        {u"SELECT 2147483647 + 1 & '', -2147483647 - 2, -a01clid & '' FROM a01 WHERE a01clid = 2",
         u"2147483648|-2147483649|-2"},
        {u"SELECT 2147483647 * 2147483647 = 2147483647 * 2147483647 + 1", u"-1"},
        {u"SELECT x & '' FROM (SELECT 2147483647 * 2147483647 AS x) AS q", u"4,61168601413242E+18"},
        {u"SELECT IIF(TRUE, 2147483647 * 2147483647, 1) & '', SUM(a01clid * 2147483647) & '' FROM a01",
         u"4,61168601413242E+18|32212254705"},
        {u"SELECT CSNG(0.1), CSNG(0.1) & '', CSNG(1) / 3, CDBL(CSNG(0.1)), FORMAT(CSNG(0.1), '0.000000000')",
         u"0,1|0,1|0,333333333333333|0,100000001490116|0,100000000"},
        {u"SELECT CSNG(0.5) + 16777217, CHOOSE(2, CCUR(1), 1.00001)", u"16777217,5|1,00001"},
    };
    CheckOpen(cases);
}

// CURRENCY is exact to four decimals over its whole range, however it goes through a statement.
TEST_F(DialectTest, Money) {
    static const DialectCase made[] = {
        {u"CREATE TABLE m (k LONG, c CURRENCY)", u"rows=0"},
        {u"INSERT INTO m VALUES (1, '922337203685477,5807')", u"rows=1"},
        {u"INSERT INTO m VALUES (2, 922337203685477.5806)", u"rows=1"},
        {u"INSERT INTO m (k, c) SELECT 3, CCUR('-922337203685477,5808')", u"rows=1"},
        {u"INSERT INTO m VALUES (4, 1.00004)", u"rows=1"},
        {u"INSERT INTO m VALUES (5, NULL)", u"rows=1"},
        {u"INSERT INTO m VALUES (6, 1E15)", u"#3349 "},
        {u"INSERT INTO m VALUES (6, 'x')", u"#3464 "},
        {u"SELECT * INTO m2 FROM m", u"#3219 "},
        {u"UPDATE m SET c = c * 2 WHERE k = 4", u"rows=1"},
        {u"UPDATE m SET c = c - 1.25 WHERE k = 4", u"rows=1"},
    };
    CheckExecute(made);
    EXPECT_EQ(Execute(QStringLiteral("SELECT * INTO m2 FROM m")), QStringLiteral("rows=5"));
    EXPECT_EQ(Execute(QStringLiteral("ALTER TABLE m2 ALTER COLUMN c TEXT(30)")), QStringLiteral("rows=0"));
    static const DialectCase cases[] = {
        {u"SELECT c FROM m ORDER BY c DESC",
         u"922337203685477,5807 / 922337203685477,5806 / 0,75 / -922337203685477,5808 / NULL"},
        {u"SELECT c FROM m2 WHERE k < 4",
         u"922337203685477,5807 / 922337203685477,5806 / -922337203685477,5808"},
        {u"SELECT k FROM m WHERE c = 922337203685477.5807", u"1"},
        {u"SELECT k FROM m WHERE c > CCUR('922337203685477,5806')", u"1"},
        {u"SELECT k FROM m WHERE c BETWEEN 922337203685477.5806 AND 0.75 ORDER BY k", u"2 / 4"},
        {u"SELECT k FROM m WHERE c IN (0.75, 922337203685477.5806) ORDER BY k", u"2 / 4"},
        {u"SELECT k FROM m WHERE c IN (SELECT MAX(c) FROM m)", u"1"},
        {u"SELECT k FROM m WHERE 3 IN (SELECT c * 4 FROM m WHERE k = 4) AND k = 5", u"5"},
        {u"SELECT k FROM m WHERE c >= ALL (SELECT c FROM m WHERE k < 4)", u"1"},
        {u"SELECT COUNT(*) FROM m GROUP BY c ORDER BY c", u"1 / 1 / 1 / 1 / 1"},
        {u"SELECT DISTINCT c FROM m WHERE k < 3 ORDER BY c", u"922337203685477,5806 / 922337203685477,5807"},
        {u"SELECT DISTINCT * FROM m WHERE k < 3 ORDER BY c",
         u"2|922337203685477,5806 / 1|922337203685477,5807"},
        {u"SELECT TOP 1 c FROM m ORDER BY c DESC", u"922337203685477,5807"},
        {u"SELECT SUM(c), MIN(c), MAX(c), FIRST(c) FROM m WHERE k > 1 AND k < 5",
         u"0,7498|-922337203685477,5808|922337203685477,5806|922337203685477,5806"},
        {u"SELECT SUM(c) FROM m WHERE k < 3", u"#6 "},
        {u"SELECT AVG(c), STDEV(c) FROM m WHERE k > 3", u"0,75|NULL"},
        {u"SELECT c + 0.0001, c - 1, -c, c * 2 FROM m WHERE k = 4", u"0,7501|-0,25|-0,75|1,5"},
        {u"SELECT c + 0.0001, c - 1 FROM m WHERE k = 2", u"922337203685477,5807|922337203685476,5806"},
        {u"SELECT c / 3, c * 0.5, c \\ 1, c ^ 2, c & '!' FROM m WHERE k = 4", u"0,25|0,375|1|0,5625|0,75!"},
        {u"SELECT c + 1 FROM m WHERE k = 1", u"#6 "},
        {u"SELECT c & '', CSTR(c), FORMAT(c, '#,##0.000'), LEN(c), ABS(c), ROUND(c, 2), INT(c) FROM m WHERE "
         u"k = 2",
         u"922337203685477,5806|922337203685477,5806|922\u00A0337\u00A0203\u00A0685\u00A0477,581|20|"
         u"922337203685477,5806|922337203685477,58|922337203685477"},
        {u"SELECT IIF(k = 1, c, 0), IIF(k = 1, NULL, c), SWITCH(k = 2, c), CHOOSE(k, 5, c) FROM m WHERE k < "
         u"3",
         u"922337203685477,5807|NULL|NULL|5 / "
         u"0|922337203685477,5806|922337203685477,5806|922337203685477,5806"},
        {u"SELECT c FROM m WHERE k = 1 UNION SELECT 5 UNION SELECT NULL", u"NULL / 5 / 922337203685477,5807"},
        {u"SELECT c FROM m WHERE k = 4 UNION ALL SELECT 0.5", u"0,75 / 0,5"},
        {u"SELECT c FROM (SELECT c FROM m WHERE k = 1) AS q", u"922337203685477,5807"},
        {u"SELECT (SELECT c FROM m WHERE k = 1) - 1", u"922337203685476,5807"},
        {u"TRANSFORM SUM(c) SELECT k FROM m WHERE k = 2 GROUP BY k PIVOT c", u"2|922337203685477,5806"},
        {u"SELECT c FROM m WHERE c LIKE '*5807'", u"922337203685477,5807"},
        {u"SELECT c FROM m WHERE c = 'x'", u"#3464 "},
    };
    CheckOpen(cases);
    EXPECT_EQ(Names(QStringLiteral("TRANSFORM SUM(c) SELECT k FROM m WHERE k = 2 GROUP BY k PIVOT c")),
              QStringLiteral("k|922337203685477,5806"));
    engine::Recordset set = m_database->OpenRecordset(QStringLiteral("SELECT * FROM m ORDER BY k"));
    set.FindFirst(QStringLiteral("c < 922337203685477.5807 AND c > 0"));
    EXPECT_EQ(set.Fields(0).Text(), QStringLiteral("2"));
}

TEST_F(DialectTest, NamesOfColumns) {
    static const DialectCase cases[] = {
        {u"SELECT A01CLID, a01LAST FROM a01", u"a01clid|a01last"},
        {u"SELECT a01clid AS Номер, a01last AS [Last name] FROM a01", u"Номер|Last name"},
        {u"SELECT 1, a01clid + 1, a01clid, COUNT(*) FROM a01 GROUP BY a01clid",
         u"Expr1000|Expr1001|a01clid|Expr1002"},
        {u"SELECT x.a01clid, y.a01clid, x.a01last FROM a01 AS x, a01 AS y", u"x.a01clid|y.a01clid|a01last"},
        {u"SELECT * FROM v00, v00 AS w", u"v00.v00vrid|w.v00vrid"},
        {u"SELECT a01clid, a01clid FROM a01", u"a01clid|Expr1000"},
        {u"SELECT a02.*, t01cval FROM a02, t01", u"a02rcid|a02clid|a02code|a02cval|t01cval"},
        {u"SELECT v00vrid AS a FROM v00 UNION SELECT a01clid AS b FROM a01", u"a"},
        {u"v00", u"v00vrid"},
        {u"SELECT q.* FROM (SELECT a01clid, 5, a01last AS z FROM a01) AS q", u"a01clid|Expr1000|z"},
    };
    for (const DialectCase& one : cases)
        EXPECT_EQ(Names(QString::fromUtf16(one.statement)), QString::fromUtf16(one.result))
            << QString::fromUtf16(one.statement).toStdString();
}

TEST_F(DialectTest, TypesOfColumns) {
    using engine::DataType;
    engine::Recordset set = m_database->OpenRecordset(
        QStringLiteral("SELECT a01clid, a01last, MAX(a01clid) + 1, COUNT(*), AVG(a01clid), a01clid / 2, "
                       "a01last & 1, DATE(), a01clid = 1 "
                       "FROM a01 GROUP BY a01clid, a01last"));
    const DataType expected[] = {DataType::Long, DataType::Text,   DataType::Long,
                                 DataType::Long, DataType::Double, DataType::Double,
                                 DataType::Text, DataType::Date,   DataType::Short};
    for (int i = 0; i < set.FieldsCount(); ++i)
        EXPECT_EQ(set.Fields(i).Type(), expected[i]) << "column " << i;
}

TEST_F(DialectTest, FindFirstCriteria) {
    struct Case {
        const char16_t* criteria;
        const char16_t* found; ///< a02rcid, empty for none
    };
    static const Case cases[] = {
        {u"a02clid= 1AND a02code = 2", u"2"},
        {u"a02clid = 2 AND a02cval LIKE '*5678'", u"4"},
        {u"a02cval = '555'", u"5"},
        {u"[a02cval] LIKE \"79*\" OR a02clid = 77", u"2"},
        {u"a02.a02code = 3", u"5"},
        {u"a02clid = 3", u""},
        {u"a02clid BETWEEN 5 AND 4 AND NOT a02code = 1", u"5"},
        {u"LEN(a02cval) = 7", u"3"},
        {u"a02clid IN (4, 2)", u"3"},
        {u"a02clid * 2 = 8", u"5"},
    };
    engine::Recordset set = m_database->OpenRecordset(QStringLiteral("SELECT * FROM a02 ORDER BY a02rcid"));
    for (const Case& one : cases) {
        set.MoveFirst();
        set.FindFirst(QString::fromUtf16(one.criteria));
        const QString expected = QString::fromUtf16(one.found);
        EXPECT_EQ(set.NoMatch(), expected.isEmpty()) << QString::fromUtf16(one.criteria).toStdString();
        EXPECT_EQ(set.Fields(0).Text(), expected.isEmpty() ? QStringLiteral("1") : expected)
            << QString::fromUtf16(one.criteria).toStdString();
    }
}

} // namespace
