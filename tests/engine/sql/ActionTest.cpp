// Statements that change rows.
#include "tests/engine/EngineTest.h"

using Action = test::BookTest;

TEST_F(Action, Inserts) {
    Check(R"(
        INSERT INTO a01 (a01clid, a01last) VALUES (6, 'O^Neil') -> 1
        INSERT INTO a02 (a02clid, a02code, a02cval) VALUES ('6', ' 2 ', 12345) ; INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (3 + 4, 10 / 4, 'a' & 1.5); -> 1
        SELECT * FROM a02 WHERE a02rcid > 5 -> 6|6|2|12345 / 7|7|2|a1,5
        INSERT INTO a01 (a01clid, a01last, a01memo) SELECT a01clid + 10, a01last, 'copy' FROM a01 WHERE a01clid < 3 -> 2
        SELECT a01clid, a01last, a01memo FROM a01 WHERE a01clid > 10 ORDER BY 1 -> 11|Иванов|copy / 12|Петров|copy
        -- The rows of a query fill the columns in their order, whatever the query calls them; fewer of them go by name.
        CREATE TABLE p (x SHORT, y SHORT)
        INSERT INTO p SELECT 1 AS y, 2 AS x ; INSERT INTO p SELECT y AS q, x FROM p ; INSERT INTO p (y, x) SELECT 5 AS x, 6 AS y -> 1
        INSERT INTO p SELECT 7 AS y -> 1
        SELECT x, y FROM p -> 1|2 / 2|1 / 6|5 / NULL|7
        INSERT INTO p SELECT 7 AS q ; INSERT INTO p SELECT 1, 2, 3 -> #3346
    )");
}

TEST_F(Action, UpdatesAndDeletes) {
    Check(R"(
        UPDATE a01 SET a01last = a01frst, a01frst = a01last WHERE a01clid = 1 -> 1
        SELECT a01last, a01frst FROM a01 WHERE a01clid = 1 -> Иван|Иванов
        UPDATE a02 SET a02code = a02code + 1 -> 5
        UPDATE a02 SET a02cval = 77 WHERE a02cval = '555' -> 1
        UPDATE a01 INNER JOIN a02 ON a01clid = a02clid SET a01memo = a02cval & '!' WHERE a02code = 4 -> 1
        SELECT a01memo FROM a01 WHERE a01clid = 4 -> 77!
        UPDATE a02 SET a02rcid = 9 ; UPDATE a01, a02 SET a01memo = '1', a02cval = '2' ; DELETE FROM a01, a02 -> #3073
        -- All rows or none.
        UPDATE a02 SET a02code = a02code * 10000 ; UPDATE v00, a02 SET a02code = a02code * 10000 -> #3349
        SELECT SUM(a02code) FROM a02 -> 13
        DELETE FROM a02 WHERE a02clid = 1 AND a02code = 2 -> 1
        DELETE * FROM a02 WHERE a02cval LIKE '812*' -> 2
        DELETE a02.* FROM a01 INNER JOIN a02 ON a01clid = a02clid WHERE a01last = 'Ёлкин' ; DELETE a01clid FROM a01 WHERE a01clid = 3 -> 1
        DELETE FROM a02 -> 1
        -- Numbers are not given again.
        INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, 'x') -> 1
        SELECT a02rcid FROM a02 -> 6
    )");
}

// What a column of each type makes of a value, by an INSERT and by an UPDATE.
TEST_F(Action, ColumnsTakeWhatTheirTypesSay) {
    Check(R"(
        CREATE TABLE c (b BYTE, s SHORT, l LONG, f SINGLE, d DOUBLE, c CURRENCY, w DATETIME, y YESNO, x TEXT(5), m MEMO, o BINARY(4), lo LONGBINARY, g GUID)
        CREATE TABLE r (k LONG NOT NULL, s SHORT NOT NULL, x TEXT(5) NOT NULL, y YESNO NOT NULL, u TEXT(9) UNIQUE)
        INSERT INTO r VALUES (1, 1, 'a', TRUE, 'Дом')
    )");
    for (const auto& [values, expected] : test::Lines(R"(
        b = 255 ; s = 255 -> 255
        b = 256 ; b = -1 ; s = 32767 + 1 ; l = 2147483648 ; l = '1E300' ; f = 1E39 ; c = 1E15 ; w = 2958466 -> #3349
        s = -32768 ; l = '-32768' -> -32768
        s = 2.5 ; l = '2,5' ; l = ' 2 ' -> 2
        l = '2.5' ; l = '' ; c = 'x' ; w = '30.02.2006' -> #3464
        l = TRUE ; x = TRUE ; y = -7 -> -1
        y = NULL -> 0
        f = 0.1 ; d = 0.1 ; x = 0.1 -> 0,1
        c = 1.23456 -> 1,2346
        w = '05.12.2006' ; w = 39056 -> 05.12.2006
        x = 'абвгд' -> абвгд
        x = 'абвгде' ; x = 'абв' & 'где' ; o = 'abc' ; g = '{12345678-1234-1234-1234-1234567890AB} ' -> #3163
        m = 'абвгде' -> абвгде
        x = '' ; m = '' -> #3315
        x = NULL ; l = NULL ; w = NULL ; o = NULL -> NULL
        g = '{12345678-1234-1234-1234-1234567890AB}' -> {12345678-1234-1234-1234-1234567890AB}
    )"))
        for (const QString& value : values.split(QStringLiteral(" ; ")))
            for (const char* way : {"INSERT INTO c (%1) VALUES (%2)", "UPDATE c SET %1 = %2"}) {
                const QStringList parts = value.split(QStringLiteral(" = "));
                const QString statement = QString::fromLatin1(way).arg(parts[0], parts[1]);
                Run(QStringLiteral("DELETE FROM c"));
                if (*way == 'U')
                    Run(QStringLiteral("INSERT INTO c (b) VALUES (7)"));
                const QString done = Result(statement);
                const QString kept = Result(QStringLiteral("SELECT %1 FROM c").arg(parts[0]));
                EXPECT_EQ(done == u"1" ? kept : done.section(u' ', 0, 0), expected)
                    << statement.toStdString();
            }
    Check(R"(
        INSERT INTO r (s, x) VALUES (1, 'a') ; INSERT INTO r (k, s, x) VALUES (NULL, 1, 'a') ; INSERT INTO r (k, s, x) SELECT NULL, 1, 'a' FROM v00 -> #3314 Поле 'r.k'
        INSERT INTO r (k, x) VALUES (1, 'a') ; UPDATE r SET s = NULL -> #3314 Поле 'r.s'
        INSERT INTO r (k, s, x) VALUES (1, 1, '') ; UPDATE r SET x = MID(x, 1, 0) -> #3315 Поле 'r.x'
        INSERT INTO r (k, s, x, u) VALUES (1, 1, 'a', 'дОМ') -> #3022
        loose INSERT INTO r (k, s, x) VALUES ('x', 1, 'a') ; loose UPDATE r SET s = 70000 ; loose UPDATE r SET x = NULL -> 0
        -- A value that no row takes is no failure.
        UPDATE r SET x = 'слишком длинно' WHERE k = 99 ; UPDATE r SET s = 70000 WHERE k = 99 ; UPDATE r SET s = 'x' WHERE k = 99 -> 0
        SELECT * FROM r -> 1|1|a|-1|Дом
    )");
}

// One row of several fails: all of them with dbFailOnError, that one alone without.
TEST_F(Action, ManyRowsAreUndoneOrPassedOver) {
    Check(R"(
        INSERT INTO v00 SELECT a01clid FROM a01 ; UPDATE a01 SET a01clid = 2 WHERE a01clid < 3 -> #3022
        SELECT * FROM v00 -> 3
        loose INSERT INTO v00 SELECT a01clid FROM a01 -> 4
        SELECT v00vrid FROM v00 ORDER BY 1 -> 1 / 2 / 3 / 4 / 5
        loose INSERT INTO a01 (a01clid, a01last) SELECT id + 3, 'neu' FROM [n 01] -> 2
        SELECT a01clid FROM a01 WHERE a01last = 'neu' ORDER BY 1 -> 6 / 7
        loose UPDATE [n 01] SET id = IIF(id = 2, NULL, id + 10 / (id - 4)) WHERE id < 4 -> 2
        SELECT id, dbl FROM [n 01] ORDER BY 1 -> -7|NULL / -2|1,5 / 2|2,5 / 4|-2,5
    )");
}

// NULL stands in no key, and no number is made up for it.
TEST_F(Action, KeysRefuseNull) {
    Check(R"(
        CREATE TABLE b (k BYTE NOT NULL PRIMARY KEY, t TEXT(5))
        INSERT INTO b VALUES (NULL, 'a') ; INSERT INTO b (t) VALUES ('a') ; INSERT INTO b SELECT NULL, 'a' -> #3314 Поле 'b.k'
        CREATE TABLE s (k SHORT PRIMARY KEY, t TEXT(5))
        CREATE TABLE t (k TEXT(5) PRIMARY KEY, t TEXT(5))
        CREATE TABLE c (n COUNTER, a SHORT, b SHORT, CONSTRAINT k PRIMARY KEY (a, b))
        INSERT INTO s (t) VALUES ('a') ; INSERT INTO t (t) VALUES ('a') ; INSERT INTO c (a) VALUES (1) -> #3058
        CREATE TABLE i (a SHORT, b SHORT)
        INSERT INTO i (a) VALUES (1)
        CREATE INDEX w ON i (a, b) WITH DISALLOW NULL ; CREATE INDEX w ON i (b) WITH PRIMARY -> #3058
        CREATE INDEX w ON i (a) WITH DISALLOW NULL
        INSERT INTO i (b) VALUES (1) -> #3314
        loose INSERT INTO c (a, b) SELECT a, b FROM i ; loose INSERT INTO s (t) VALUES ('a') -> 0
    )");
}

// A number that an insert has used up does not come again, whatever became of the row or of the table before.
TEST_F(Action, CountersNeverGoBack) {
    Check(R"(
        CREATE TABLE t (n COUNTER PRIMARY KEY, s SHORT, x TEXT(5))
        INSERT INTO t (s) VALUES (2) -> 1
        INSERT INTO t (s, x) VALUES (3, '') -> #3315
        INSERT INTO t (s) VALUES (4) -> 1
    )");
    workspace->BeginTrans();
    Check("INSERT INTO t (s) VALUES (5) ; INSERT INTO t (s) VALUES (6) -> 1");
    workspace->Rollback();
    Check(R"(
        INSERT INTO t (s) VALUES (7) -> 1
        SELECT n, s FROM t -> 1|2 / 3|4 / 6|7
        DELETE FROM t -> 3
        INSERT INTO t (n, s) VALUES (100, 9) -> 1
    )");
    Reopen();
    Check(R"(
        INSERT INTO t (s) VALUES (10) -> 1
        SELECT n, s FROM t -> 100|9 / 101|10
        INSERT INTO t (n, s) VALUES (2147483647, 9) -> 1
        INSERT INTO t (s) VALUES (11) -> #3349
        DROP TABLE t
    )");
    // A new table counts anew, also where the one before has gone with its transaction.
    for (const bool undone : {true, false}) {
        workspace->BeginTrans();
        Check(R"(
            CREATE TABLE t (n COUNTER, s SHORT)
            INSERT INTO t (s) VALUES (1) -> 1
            SELECT n FROM t -> 1
        )");
        undone ? workspace->Rollback() : workspace->CommitTrans();
    }
}
