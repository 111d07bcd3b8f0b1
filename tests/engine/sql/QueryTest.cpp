// Queries of the dialect. The results are worked out by hand from the rows of the book.
#include "tests/engine/EngineTest.h"

using Query = test::BookTest;

TEST_F(Query, LiteralsAndNames) {
    Check(R"(
        SELECT 'a', "b", 'it''s', "say ""yes""", "it's", 'two{000D}{000A}lines' -> a|b|it's|say "yes"|it's|two{000D}{000A}lines
        SELECT 1.5, .5, 2., 1E3, 1.5e-1, 12345678901, &H1F, &hff, 2147483647 -> 1,5|0,5|2|1000|0,15|12345678901|31|255|2147483647
        SELECT #12/5/2006#, #2006-12-05 10:30:00#, #1/2/29#, #1/2/30# -> 05.12.2006|05.12.2006 10:30:00|02.01.2029|02.01.1930
        SELECT #10:30#, #12/5/2006 3:05 PM#, TRUE, FALSE, YES, NO, ON, OFF, NULL -> 10:30:00|05.12.2006 15:05:00|-1|0|-1|0|-1|0|NULL
        SELECT [n 01].[txt], `n 01`!id FROM `n 01` WHERE [n 01]!id = 2 -> 9|2
        select A01LAST from A01 where A01CLID = 1; -> Иванов
        SELECT a01clid FROM a01 WHERE a01clid=1OR a01clid=5AND a01last='ИВАНОВ' ORDER BY a01clid -> 1 / 5
        [n 01]; -> 1|1,5|31.01.2020|-1|10 / 2|2,5|31.12.2019 18:30:00|0|9 / 3|NULL|NULL|0|NULL / 4|-2,5|29.02.2020|-1|-
        PARAMETERS p TEXT; SELECT v00vrid FROM v00 -> 3
        SELECT a01clid * 2 AS twice, twice + 1 AS more FROM a01 WHERE a01clid = 5 -> 10|11
        names SELECT A01CLID, a01LAST AS Номер, a01frst AS [Last name] FROM a01 -> a01clid|Номер|Last name
        names SELECT 1, a01clid + 1, a01clid, COUNT(*) FROM a01 GROUP BY a01clid -> Expr1000|Expr1001|a01clid|Expr1002
        names SELECT x.a01clid, y.a01clid, x.a01last FROM a01 AS x, a01 AS y -> x.a01clid|y.a01clid|a01last
        types SELECT a01clid, a01last, MAX(a01clid) + 1, COUNT(*), AVG(a01clid), a01clid / 2 FROM a01 GROUP BY a01clid, a01last -> 4|10|4|4|7|7
        types SELECT a01last & 1, DATE(), a01clid = 1, DATEADD('d', 1, DATE()), t01type, day, bit FROM a01, t01, [n 01] -> 10|9|3|9|2|9|1
    )");
}

TEST_F(Query, Conditions) {
    Check(R"(
        a01last = 'ИВАНОВ' ; a01last LIKE 'иванов' ; a01clid IN (5, 1, 77) ; LEFT(a01last, 1) = 'и' -> 1 / 5
        a01midl LIKE '' ; a01clid = (SELECT MAX(a02clid) FROM a02) ; EXISTS (SELECT * FROM a02 WHERE a02clid = a01clid AND a02code = 3) -> 4
        a01midl LIKE '*' -> 1 / 2 / 4
        a01clid BETWEEN 4 AND 2 -> 2 / 3 / 4
        a01bith LIKE '??.##.1980' ; IIF(a01bith IS NULL, 0, YEAR(CDATE(a01bith))) = 1980 -> 1 / 4
        a01clid IN (SELECT a02clid FROM a02 WHERE a02code = 1) ; a01clid = SOME (SELECT a02clid FROM a02 WHERE a02code = 1) -> 1 / 2
        a01clid NOT IN (SELECT a02clid FROM a02) ; a01clid <> ALL (SELECT a02clid FROM a02) ; NOT EXISTS (SELECT a02rcid FROM a02 WHERE a02clid = a01.a01clid) -> 3 / 5
        a01midl IS NULL ; ISNULL(a01midl) AND ISDATE(a01bith & '1.1.2000') -> 3 / 5
    )",
          "SELECT a01clid FROM a01 WHERE ");
    Check(R"(
        SELECT id FROM [n 01] WHERE bit ; SELECT id FROM [n 01] WHERE bit = TRUE -> 1 / 4
        SELECT t03cval FROM t03 WHERE t03numb LIKE '4*' ORDER BY t03cval -> МОСКВА / ХИМКИ
        -- Texts that differ in a sign that is not seen: not equal, and in one order everywhere.
        SELECT 'а{00AD}б' = 'аб', 'а{00AD}б' <> 'аб', 'а{00AD}б' > 'аб', 'а{00AD}б' <= 'аб' -> 0|-1|0|-1
    )");
}

TEST_F(Query, Order) {
    Check(R"(
        SELECT a01clid FROM a01 ORDER BY a01last, a01frst, a01midl -> 4 / 5 / 1 / 2 / 3
        SELECT a01clid, a01midl FROM a01 ORDER BY a01midl, a01clid -> 3|NULL / 5|NULL / 4| / 1|Иванович / 2|Петрович
        SELECT a01clid FROM a01 ORDER BY a01midl DESC, a01clid -> 2 / 1 / 4 / 3 / 5
        -- Two share the last place.
        SELECT TOP 2 t03cval FROM t03 ORDER BY t03numb -> БАРНАУЛ / МОСКВА / ХИМКИ
        -- 2.5 rounds up.
        SELECT TOP 50 PERCENT a01clid FROM a01 ORDER BY a01clid -> 1 / 2 / 3
        SELECT COUNT(*) FROM (SELECT TOP 3 * FROM a01) AS q ; SELECT COUNT(*) FROM (SELECT TOP 41 PERCENT * FROM a01) AS q -> 3
        SELECT DISTINCT TOP 2 t03numb FROM t03 ORDER BY t03numb DESC -> 814 / 495
    )");
}

TEST_F(Query, Joins) {
    Check(R"(
        a01clid, a02cval FROM a01, a02 WHERE a01clid = a02clid ORDER BY a02rcid -> 1|4951234567 / 1|79161112233 / 2|8121234 / 2|8125678 / 4|555
        a01clid, t01code FROM a01, a02, t01 WHERE a01clid = a02clid AND t01type = 0 AND t01code = a02code AND a01last LIKE 'И*' -> 1|1 / 1|2
        a01clid, a02rcid FROM a01 LEFT JOIN a02 ON a01clid = a02clid ORDER BY a01clid, a02rcid -> 1|1 / 1|2 / 2|3 / 2|4 / 3|NULL / 4|5 / 5|NULL
        t01code, a02cval FROM a02 RIGHT JOIN t01 ON a02code = t01code WHERE t01code > 1 ORDER BY t01code -> 2|79161112233 / 3|555 / 4|NULL
        a01clid, t01code FROM (a01 INNER JOIN a02 ON a01clid = a02clid) INNER JOIN t01 ON a02code = t01code WHERE a01clid = 1 -> 1|1 / 1|2
        x.a01clid, y.a01clid FROM a01 AS x, a01 y WHERE x.a01last = y.a01last AND x.a01clid < y.a01clid -> 1|5
        DISTINCTROW a01clid FROM a01 INNER JOIN a02 ON a01clid = a02clid ; DISTINCT a01clid FROM a01 INNER JOIN a02 ON a01clid = a02clid -> 1 / 2 / 4
    )",
          "SELECT ");
}

TEST_F(Query, Groups) {
    Check(R"(
        COUNT(*), COUNT(a01midl), MIN(a01clid), MAX(a01last), SUM(a01clid), AVG(a01clid) FROM a01 -> 5|3|1|Сидорова|15|3
        COUNT(*), SUM(a01clid), MIN(a01last), MAX(a01clid) + 1 FROM a01 WHERE a01clid > 100 -> 0|NULL|NULL|NULL
        a02code, COUNT(*) FROM a02 GROUP BY a02code HAVING COUNT(*) > 1 -> 1|3
        COUNT(*) FROM a01 GROUP BY a01last ORDER BY COUNT(*) DESC ; COUNT(*) FROM a01 GROUP BY a01last & '' ORDER BY COUNT(*) DESC -> 2 / 1 / 1 / 1
        t02cval, COUNT(*), MIN(t03numb) FROM t02 INNER JOIN t03 ON t02rcid = t03code GROUP BY t02cval ORDER BY COUNT(*) DESC, t02cval -> МОСКОВСКАЯ ОБЛАСТЬ|2|495 / АЛТАЙ|1|385 / КАРЕЛИЯ|1|814
        DISTINCT a01last FROM a01 WHERE a01last = 'иванов' -> Иванов
    )",
          "SELECT ");
}

TEST_F(Query, UnionsAndSubqueries) {
    Check(R"(
        SELECT 1 UNION SELECT 2 UNION SELECT 1 ; (SELECT 2) UNION (SELECT 1) ORDER BY 1 -> 1 / 2
        SELECT 1 UNION ALL SELECT 1 -> 1 / 1
        SELECT LCASE(x) FROM (SELECT a01last AS x FROM a01 WHERE a01clid = 1 UNION SELECT a01last FROM a01 WHERE a01clid = 5) AS q -> иванов
        SELECT a01last AS x FROM a01 WHERE a01clid > 2 UNION SELECT t02cval FROM t02 ORDER BY x DESC -> Сидорова / МОСКОВСКАЯ ОБЛАСТЬ / КАРЕЛИЯ / иванов / Ёлкин / АЛТАЙ
        SELECT a01clid, (SELECT COUNT(*) FROM a02 WHERE a02clid = a01clid) FROM a01 -> 1|2 / 2|2 / 3|0 / 4|1 / 5|0
        SELECT (SELECT a01last FROM a01 WHERE a01clid = 99), ((SELECT MAX(a01clid) FROM a01) + 1), ((SELECT 1)), 1 IN ((SELECT 1), 2) -> NULL|6|1|-1
        SELECT 1 > ALL (SELECT id FROM [n 01] WHERE id > 9), 1 > ANY (SELECT id FROM [n 01] WHERE id > 9) -> -1|0
    )");
}

TEST_F(Query, Transform) {
    Check(R"(
        TRANSFORM COUNT(*) SELECT a02clid FROM a02 GROUP BY a02clid PIVOT a02code -> 1|1|1|NULL / 2|2|NULL|NULL / 4|NULL|NULL|1
        names TRANSFORM COUNT(*) SELECT a02clid FROM a02 GROUP BY a02clid PIVOT a02code -> a02clid|1|2|3
        TRANSFORM MAX(a02cval) & '' AS [a name] SELECT a02clid FROM a02 WHERE a02clid < 3 GROUP BY a02clid PIVOT a02code IN (2, 9) -> 1|79161112233|NULL / 2|NULL|NULL
        names TRANSFORM COUNT(*) SELECT a01clid FROM a01 GROUP BY a01clid PIVOT a01bith -> a01clid|<>|05_12_1980|29_02_1980|31_01_1975
        TRANSFORM a02cval SELECT a02clid FROM a02 GROUP BY a02clid PIVOT a02code -> #3122
        TRANSFORM COUNT(*) SELECT a02clid FROM a02 PIVOT a02code ; TRANSFORM COUNT(*) SELECT a02clid FROM a02 GROUP BY a02clid -> #3143
        UPDATE a02 SET a02code = 7 WHERE a02code = 3
        names TRANSFORM COUNT(*) SELECT a02clid FROM a02 GROUP BY a02clid PIVOT a02code -> a02clid|1|2|7
    )");
    // The same value has the same name, told by the rows or listed.
    Check(R"(
        bit IN (TRUE, -1, FALSE, 0, NULL) -> 1|2|2|2|2|NULL
        dbl IN (1 + 1) -> #3143
    )",
          "TRANSFORM COUNT(*) SELECT 1 FROM [n 01] GROUP BY 1 PIVOT ");
    Check(R"(
        IIF(id = 1, 'a!b[c].d', STRING(70, 'x')) -> Expr1000|a_b_c__d|xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx
    )",
          "names TRANSFORM COUNT(*) SELECT 1 FROM [n 01] GROUP BY 1 PIVOT ");
}

// CURRENCY is exact to four decimals over its whole range, however it goes through a statement.
TEST_F(Query, Money) {
    Check(R"(
        CREATE TABLE m (k LONG, c CURRENCY)
        INSERT INTO m VALUES (1, '922337203685477,5807') ; INSERT INTO m VALUES (2, 922337203685477.5806) -> 1
        INSERT INTO m (k, c) SELECT 3, CCUR('-922337203685477,5808') ; INSERT INTO m VALUES (4, 1.00004) ; INSERT INTO m VALUES (5, NULL) -> 1
        UPDATE m SET c = c * 2 WHERE k = 4 ; UPDATE m SET c = c - 1.25 WHERE k = 4 -> 1
        SELECT c FROM m ORDER BY c DESC -> 922337203685477,5807 / 922337203685477,5806 / 0,75 / -922337203685477,5808 / NULL
        SELECT SUM(c), MIN(c), MAX(c), FIRST(c) FROM m WHERE k > 1 AND k < 5 -> 0,7498|-922337203685477,5808|922337203685477,5806|922337203685477,5806
        SELECT c + 0.0001, c - 1, -c, c * 2, c / 3, c * 0.5, c \ 1, c ^ 2, c & '!' FROM m WHERE k = 4 -> 0,7501|-0,25|-0,75|1,5|0,25|0,375|1|0,5625|0,75!
        SELECT SUM(c) FROM m WHERE k < 3 ; SELECT c + 1 FROM m WHERE k = 1 -> #6
    )");
    Check(R"(
        c = 922337203685477.5807 ; c > CCUR('922337203685477,5806') ; c IN (SELECT MAX(c) FROM m) ; c >= ALL (SELECT c FROM m WHERE k < 4) -> 1
    )",
          "SELECT k FROM m WHERE ");
}

// The place that is found, or the failure and its text.
TEST_F(Query, FindFirst) {
    engine::Recordset set = database->OpenRecordset(QStringLiteral("SELECT * FROM a01"));
    for (const auto& [criteria, expected] : test::Lines(R"(
        a01clid = 3 ; a01clid = 3.0 ; a01clid * 2 = 6 ; a01.a01clid = 3 ; a01.a01frst = 'анна' ; a01memo = '' -> 3
        a01clid= 1AND a01last = 'ИВАНОВ' ; a01last = 'ИВАНОВ' ; a01last LIKE 'иванов' ; a01clid IN (4, 1) ; a01clid BETWEEN 3 AND 1 ; TRUE -> 1
        [a01last] LIKE "ё*" OR a01clid = 77 ; a01midl = '' -> 4
        a01clid = 77 ; a01clid = 3.5 ; a01last = 'ивано' ; a01last = 'иванов ' ; a01clid = 1 AND a01last = 'Петров' -> none
        {0020} -> #3077 Ошибка синтаксиса (пропущен оператор) в выражении.
        a01clid = -> #3077 Ошибка синтаксиса (пропущен оператор) в выражении.
        a01last = 'x -> #3077 Ошибка синтаксиса в строке в выражении.
        a01clid = 1; DELETE FROM a01 -> #3077
        a01clid IN (SELECT 1) -> #3077
        q = 1 -> #3070 Не удается распознать 'q'
        a01clid = '1' -> #3464
    )")) {
        for (const QString& one : criteria.split(QStringLiteral(" ; "))) {
            SCOPED_TRACE(one.toStdString());
            set.MoveFirst();
            set.MoveNext();
            const int failure = test::FailureOf([&] { set.FindFirst(one); }, expected.section(u' ', 1));
            const QString found = set.NoMatch() ? QStringLiteral("none") : set.Fields(0).Text();
            EXPECT_EQ(failure != 0 ? QStringLiteral("#%1").arg(failure) : found,
                      expected.section(u' ', 0, 0));
            if (failure != 0 || set.NoMatch()) {
                EXPECT_EQ(set.Fields(0).Text(), QStringLiteral("2"));
            }
        }
    }
}

// Statements of one shape share a plan: none is taken for another that differs in a literal alone.
TEST_F(Query, NoStatementIsTakenForAnother) {
    Check(R"(
        SELECT a01clid FROM a01 WHERE a01clid > 2 ORDER BY 1, a01last -> 3 / 4 / 5
        SELECT a01clid, a01last FROM a01 WHERE a01clid > 2 ORDER BY 1 -> 3|Сидорова / 4|Ёлкин / 5|иванов
        SELECT a01clid, a01last FROM a01 WHERE a01clid > 2 ORDER BY 2 -> 4|Ёлкин / 5|иванов / 3|Сидорова
        SELECT TOP 1 a01clid FROM a01 -> 1
        SELECT TOP 2 a01clid FROM a01 -> 1 / 2
        SELECT a01clid FROM a01 WHERE a01last LIKE 'иванов' -> 1 / 5
        SELECT a01clid FROM a01 WHERE a01last LIKE '[' -> #93
        SELECT FORMAT(a01clid, '00') FROM a01 WHERE a01clid IN (1, 7) -> 01
        SELECT FORMAT(a01clid, 'yyyy') FROM a01 WHERE a01clid IN (2, 7) -> 1900
        types SELECT 1, '1', 1.5 -> 4|10|7
        names TRANSFORM COUNT(*) SELECT 1 FROM a01 GROUP BY 1 PIVOT a01clid IN (1, 7) -> Expr1000|1|7
        names TRANSFORM COUNT(*) SELECT 1 FROM a01 GROUP BY 1 PIVOT a01clid IN (2, 7) -> Expr1000|2|7
        SELECT a01clid FROM a01 WHERE a01clid = 1 -> 1
        SELECT a01clid FROM a01 WHERE a01clid = '1' -> #3464
    )");
}
