// Statements that change rows or tables.
#include "tests/engine/sql/DialectFixture.h"

namespace {

using DialectActionTest = DialectFixture;

TEST_F(DialectActionTest, Inserts) {
    static const DialectCase cases[] = {
        {u"INSERT INTO a01 (a01clid, a01last) VALUES (6, 'O^Neil')", u"rows=1"},
        {u"SELECT a01last, a01frst FROM a01 WHERE a01clid = 6", u"O^Neil|NULL"},
        {u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES ('6', ' 2 ', 12345)", u"rows=1"},
        {u"SELECT a02rcid, a02clid, a02code, a02cval FROM a02 WHERE a02clid = 6", u"6|6|2|12345"},
        {u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (3 + 4, 10 / 4, 'a' & 1.5);", u"rows=1"},
        {u"SELECT a02clid, a02code, a02cval FROM a02 WHERE a02rcid = 7", u"7|2|a1,5"},
        {u"INSERT INTO a02 (a02rcid, a02clid, a02code, a02cval) VALUES (100, 1, 1, 'x')", u"rows=1"},
        {u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, 'y')", u"rows=1"},
        {u"SELECT MAX(a02rcid) FROM a02", u"101"},
        {u"INSERT INTO a01 (a01clid, a01last, a01memo) SELECT a01clid + 10, a01last, 'copy' FROM a01 WHERE "
         u"a01clid < 3",
         u"rows=2"},
        {u"SELECT a01clid, a01last, a01memo FROM a01 WHERE a01clid > 10 ORDER BY 1",
         u"11|Иванов|copy / 12|Петров|copy"},
        {u"INSERT INTO t02 SELECT 'ТУВА' AS t02cval", u"rows=1"},
        {u"SELECT t02rcid FROM t02 WHERE t02cval = 'тува'", u"4"},
        {u"INSERT INTO t02 (t02cval) SELECT t03cval FROM t03 WHERE t03code = 1 UNION SELECT t03cval FROM t03",
         u"rows=4"},
        {u"INSERT INTO [n 01] VALUES (5, '1,5', '05.12.2006', 1, 7)", u"rows=1"},
        {u"SELECT dbl, day, bit, txt FROM [n 01] WHERE id = 5", u"1,5|05.12.2006|-1|7"},
        {u"INSERT INTO v00 (v00vrid) VALUES (&HFF)", u"rows=1"},
    };
    CheckExecute(cases);
}

TEST_F(DialectActionTest, InsertsThatFail) {
    static const DialectCase cases[] = {
        {u"INSERT INTO a01 (a01clid) VALUES (1)", u"#3022 "},
        {u"INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 9, 'ДОМАШНИЙ телефон')", u"#3022 "},
        {u"INSERT INTO a01 (a01last) VALUES ('x')", u"#3314 Поле 'a01.a01clid' "},
        {u"INSERT INTO a01 (a01clid, a01last) VALUES (NULL, 'x')", u"#3314 Поле 'a01.a01clid' "},
        {u"INSERT INTO [n 01] (txt) VALUES ('x')", u"#3058 "},
        {u"INSERT INTO [n 01] (id) SELECT NULL FROM v00", u"#3058 "},
        {u"INSERT INTO a02 (a02clid, a02code) VALUES (1, 1)", u"#3314 Поле 'a02.a02cval' "},
        {u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, '')", u"#3315 Поле 'a02.a02cval' "},
        {u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 'abc', 'x')", u"#3464 "},
        {u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 32768, 'x')", u"#3349 "},
        {u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 32767 + 1, 'x')", u"#3349 "},
        {u"INSERT INTO v00 (v00vrid) VALUES (256)", u"#3349 "},
        {u"INSERT INTO v00 (v00vrid) SELECT a01clid - 3 FROM a01", u"#3349 "},
        {u"INSERT INTO [n 01] (id, txt) VALUES (9, '12345678901')", u"#3163 "},
        {u"INSERT INTO [n 01] (id, txt) SELECT 9, a02cval FROM a02", u"#3163 "},
        {u"SELECT COUNT(*) FROM a02", u"5"},
        {u"SELECT COUNT(*) FROM [n 01]", u"4"},
        {u"SELECT COUNT(*) FROM v00", u"1"},
    };
    CheckExecute(cases);
}

/// Without the option failing rows are left out and what cannot be converted becomes NULL, without a word.
TEST_F(DialectActionTest, WithoutTheOptionFailingRowsAreLeftOut) {
    static const DialectCase cases[] = {
        {u"INSERT INTO a01 (a01clid, a01last) SELECT id, txt FROM [n 01]", u"rows=0"},
        {u"INSERT INTO a01 (a01clid, a01last) SELECT id + 3, 'neu' FROM [n 01]", u"rows=2"},
        {u"INSERT INTO [n 01] (txt) VALUES ('x')", u"rows=0"},
        {u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, '')", u"rows=0"},
        {u"INSERT INTO [n 01] (id, dbl) VALUES (9, 'abc')", u"rows=1"},
        {u"UPDATE a01 SET a01clid = 1 WHERE a01clid = 2", u"rows=0"},
        {u"UPDATE [n 01] SET id = IIF(id = 2, NULL, id + 10 / (id - 4)) WHERE id < 3 OR id = 3", u"rows=2"},
        {u"UPDATE [n 01], v00 SET id = IIF(id = 9, NULL, id + 100) WHERE id > 3", u"rows=1"},
    };
    for (const DialectCase& one : cases) {
        EXPECT_EQ(Execute(QString::fromUtf16(one.statement), 0), QString::fromUtf16(one.result))
            << QString::fromUtf16(one.statement).toStdString();
    }
    EXPECT_EQ(Open(QStringLiteral("SELECT a01clid FROM a01 WHERE a01last = 'neu' ORDER BY 1")),
              QStringLiteral("6 / 7"));
    EXPECT_EQ(Open(QStringLiteral("SELECT id, dbl FROM [n 01] ORDER BY 1")),
              QStringLiteral("-7|NULL / -2|1,5 / 2|2,5 / 9|NULL / 104|-2,5"));
    EXPECT_TRUE(
        Execute(QStringLiteral("INSERT INTO a01 (q) VALUES (1)"), 0).startsWith(QStringLiteral("#3127 ")));
    EXPECT_TRUE(
        Execute(QStringLiteral("UPDATE a01 SET a01last = q"), 0).startsWith(QStringLiteral("#3061 ")));
}

TEST_F(DialectActionTest, Updates) {
    static const DialectCase cases[] = {
        {u"UPDATE a01 SET a01last = 'Смирнов', a01frst = '' WHERE a01clid = 2", u"rows=1"},
        {u"SELECT a01last, a01frst FROM a01 WHERE a01clid = 2", u"Смирнов|"},
        {u"UPDATE a01 SET a01last = a01frst, a01frst = a01last WHERE a01clid = 1", u"rows=1"},
        {u"SELECT a01last, a01frst FROM a01 WHERE a01clid = 1", u"Иван|Иванов"},
        {u"UPDATE a02 SET a02code = a02code + 1", u"rows=5"},
        {u"SELECT SUM(a02code) FROM a02", u"13"},
        {u"UPDATE a02 SET a02cval = '1' WHERE a02clid = 1 AND a02code = 2", u"rows=1"},
        {u"UPDATE a02 SET a02cval = 77 WHERE a02cval = '555'", u"rows=1"},
        {u"SELECT a02cval FROM a02 WHERE a02clid = 4", u"77"},
        {u"UPDATE a01 SET a01memo = 'q' WHERE a01clid = 99", u"rows=0"},
        {u"UPDATE v00 SET v00vrid = 2", u"rows=1"},
        {u"UPDATE a01 INNER JOIN a02 ON a01clid = a02clid SET a01memo = a02cval & '!' WHERE a02code = 4",
         u"rows=1"},
        {u"SELECT a01memo FROM a01 WHERE a01clid = 4", u"77!"},
        {u"UPDATE a01, t01 SET t01.t01cval = a01last WHERE t01code = a01clid AND a01clid = 4", u"rows=1"},
        {u"SELECT t01cval FROM t01 WHERE t01code = 4", u"Ёлкин"},
        {u"UPDATE a01 AS x SET x.a01memo = NULL WHERE x.a01clid IN (SELECT a02clid FROM a02)", u"rows=3"},
        {u"UPDATE a02 SET a02code = 70000", u"#3349 "},
        {u"UPDATE a02 SET a02code = a02code * 10000", u"#3349 "},
        {u"UPDATE a02 SET a02cval = ''", u"#3315 Поле 'a02.a02cval' "},
        {u"UPDATE a02 SET a02cval = NULL WHERE a02rcid = 1", u"#3314 Поле 'a02.a02cval' "},
        {u"UPDATE a01 SET a01clid = NULL WHERE a01clid = 1", u"#3314 Поле 'a01.a01clid' "},
        {u"UPDATE a01 SET a01clid = 2 WHERE a01clid = 1", u"#3022 "},
        {u"UPDATE a02 SET a02rcid = 9", u"#3073 "},
        {u"UPDATE a01, a02 SET a01memo = '1', a02cval = '2'", u"#3073 "},
        {u"SELECT SUM(a02code) FROM a02", u"13"},
    };
    CheckExecute(cases);
}

TEST_F(DialectActionTest, Deletes) {
    static const DialectCase cases[] = {
        {u"DELETE FROM a02 WHERE a02clid = 1 AND a02code = 1", u"rows=1"},
        {u"DELETE * FROM a02 WHERE a02cval LIKE '812*'", u"rows=2"},
        {u"SELECT a02rcid FROM a02 ORDER BY 1", u"2 / 5"},
        {u"DELETE a02.* FROM a01 INNER JOIN a02 ON a01clid = a02clid WHERE a01last = 'Ёлкин'", u"rows=1"},
        {u"DELETE a01clid FROM a01 WHERE a01clid = 3", u"rows=1"},
        {u"DELETE FROM a01 WHERE a01clid = 3", u"rows=0"},
        {u"DELETE FROM a01, a02", u"#3073 "},
        {u"DELETE FROM a02", u"rows=1"},
        {u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, 'x')", u"rows=1"},
        {u"SELECT a02rcid FROM a02", u"6"}, // numbers are not given again
    };
    CheckExecute(cases);
}

TEST_F(DialectActionTest, SelectInto) {
    static const DialectCase cases[] = {
        {u"SELECT * INTO copy FROM a01", u"#3219 "}, // opened, not executed
    };
    CheckOpen(cases);
    EXPECT_EQ(Execute(QStringLiteral(
                  "SELECT a01clid, a01last, a01clid = 1 AS b INTO copy FROM a01 ORDER BY a01clid")),
              QStringLiteral("rows=5"));
    EXPECT_EQ(Open(QStringLiteral("SELECT * FROM copy WHERE a01clid < 3")),
              QStringLiteral("1|Иванов|-1 / 2|Петров|0"));
    EXPECT_EQ(m_database->TableDefs(QStringLiteral("copy")).Fields(1).Size(), 50);
    EXPECT_TRUE(Execute(QStringLiteral("SELECT 1 AS q INTO copy")).startsWith(QStringLiteral("#3010 ")));
    EXPECT_EQ(Execute(QStringLiteral("SELECT x.v00vrid, y.v00vrid INTO pair FROM v00 AS x, v00 AS y")),
              QStringLiteral("rows=1"));
    EXPECT_EQ(Names(QStringLiteral("pair")), QStringLiteral("x_v00vrid|y_v00vrid"));
    EXPECT_EQ(Execute(QStringLiteral("CREATE TABLE o (b BINARY(4), l LONGBINARY)")),
              QStringLiteral("rows=0"));
    const struct {
        const char16_t* statement;
        const char16_t* rows;
        const char16_t* columns; ///< types and sizes
    } made[] = {
        {u"SELECT * INTO m1 FROM a02", u"rows=5", u"5:0 4:0 3:0 10:50"},
        {u"SELECT a02rcid AS x, a02rcid AS y INTO m2 FROM a02", u"rows=5", u"5:0 4:0"},
        {u"SELECT a01clid, a02rcid INTO m3 FROM a01 LEFT JOIN a02 ON a01clid = a02clid", u"rows=7",
         u"4:0 4:0"},
        {u"SELECT a02rcid INTO m4 FROM a02, v00, t02", u"rows=15", u"4:0"},
        {u"SELECT bit, day, dbl, txt & '1' AS t, id = 1 AS c, COUNT(*) AS n INTO m5 FROM [n 01] GROUP BY "
         u"bit, "
         u"day, dbl, txt, id",
         u"rows=4", u"1:0 9:0 7:0 10:255 3:0 4:0"},
        {u"SELECT * INTO m6 FROM o", u"rows=0", u"12:4 12:0"},
    };
    int number = 0;
    for (const auto& one : made) {
        EXPECT_EQ(Execute(QString::fromUtf16(one.statement)), QString::fromUtf16(one.rows));
        QStringList columns;
        const auto table = m_database->TableDefs(QStringLiteral("m%1").arg(++number));
        for (int i = 0; i < table.FieldsCount(); ++i)
            columns += QStringLiteral("%1:%2")
                           .arg(static_cast<int>(table.Fields(i).Type()))
                           .arg(table.Fields(i).Size());
        EXPECT_EQ(columns.join(u' '), QString::fromUtf16(one.columns)) << number;
    }
    EXPECT_EQ(Execute(QStringLiteral("INSERT INTO m1 (a02clid) VALUES (1)")), QStringLiteral("rows=1"));
    EXPECT_EQ(Open(QStringLiteral("SELECT MAX(a02rcid) FROM m1")), QStringLiteral("6"));
}

TEST_F(DialectActionTest, Schema) {
    static const DialectCase cases[] = {
        {u"CREATE TABLE x1 (id COUNTER, a INTEGER NOT NULL, b TEXT, c MEMO, CONSTRAINT pk PRIMARY KEY (id), "
         u"CONSTRAINT ab "
         u"UNIQUE (a, b))",
         u"rows=0"},
        {u"INSERT INTO x1 (a, b) VALUES (1, 'q')", u"rows=1"},
        {u"INSERT INTO x1 (a, b) VALUES (1, 'Q')", u"#3022 "},
        {u"INSERT INTO x1 (a, b) VALUES (1, NULL)", u"rows=1"},
        {u"INSERT INTO x1 (a, b) VALUES (1, NULL)", u"rows=1"},
        {u"ALTER TABLE x1 ADD COLUMN d TEXT(5)", u"rows=0"},
        {u"ALTER TABLE x1 ADD e SHORT", u"rows=0"},
        {u"SELECT d, e FROM x1 WHERE id = 1", u"NULL|NULL"},
        {u"ALTER TABLE x1 ALTER COLUMN d TEXT(10)", u"rows=0"},
        {u"UPDATE x1 SET d = '1234567' WHERE id = 1", u"rows=1"},
        {u"ALTER TABLE x1 DROP CONSTRAINT ab", u"rows=0"},
        {u"INSERT INTO x1 (a, b) VALUES (1, 'Q')", u"rows=1"},
        {u"CREATE INDEX ib ON x1 (b ASC, a DESC)", u"rows=0"},
        {u"CREATE UNIQUE INDEX ib ON x1 (a)", u"#3375 Таблица 'x1' уже содержит индекс с именем 'ib'."},
        {u"CREATE UNIQUE INDEX ic ON x1 (a)", u"#3022 "},
        {u"DROP INDEX ib ON x1", u"rows=0"},
        {u"ALTER TABLE x1 DROP COLUMN c", u"rows=0"},
        {u"SELECT * FROM x1 WHERE id = 1", u"1|1|q|1234567|NULL"},
        {u"DROP TABLE x1", u"rows=0"},
        {u"SELECT * FROM x1", u"#3078 "},
        {u"CREATE TABLE x1 (a INTEGER CONSTRAINT k PRIMARY KEY, b CHAR(3) CONSTRAINT u UNIQUE)", u"rows=0"},
        {u"INSERT INTO x1 VALUES (1, 'abc')", u"rows=1"},
        {u"INSERT INTO x1 VALUES (1, 'abd')", u"#3022 "},
        {u"INSERT INTO x1 VALUES (2, 'ABC')", u"#3022 "},
        {u"INSERT INTO x1 VALUES (2, 'abcd')", u"#3163 "},
        // The names of keys can be told again, whatever stands behind them in the file.
        {u"ALTER TABLE x1 DROP CONSTRAINT k", u"rows=0"},
        {u"INSERT INTO x1 VALUES (NULL, 'abe')", u"rows=1"},
        {u"CREATE TABLE x2 (n COUNTER CONSTRAINT mykey PRIMARY KEY, t TEXT(5))", u"rows=0"},
        {u"INSERT INTO x2 (t) VALUES ('a')", u"rows=1"},
        {u"DELETE FROM x2", u"rows=1"},
        {u"ALTER TABLE x2 ADD COLUMN s SHORT CONSTRAINT one UNIQUE", u"rows=0"},
        {u"INSERT INTO x2 (s) VALUES (7)", u"rows=1"},
        {u"INSERT INTO x2 (s) VALUES (7)", u"#3022 "},
        {u"ALTER TABLE x2 ALTER COLUMN s INTEGER", u"rows=0"},
        {u"INSERT INTO x2 (s) VALUES (7)", u"#3022 "},
        {u"ALTER TABLE x2 DROP CONSTRAINT one", u"rows=0"},
        {u"ALTER TABLE x2 DROP CONSTRAINT mykey", u"rows=0"},
        {u"INSERT INTO x2 (s) VALUES (7)", u"rows=1"},
        {u"SELECT n, s FROM x2", u"2|7 / 5|7"}, // two numbers went with what failed
        {u"CREATE TABLE x3 (a SHORT, CONSTRAINT q UNIQUE (a), CONSTRAINT Q PRIMARY KEY (a))", u"#3375 "},
        {u"CREATE TABLE x3 (a SHORT CONSTRAINT [a.b] UNIQUE)", u"#3289 "},
    };
    CheckExecute(cases);
}

/// NULL stands in no key, and no number is made up for it.
TEST_F(DialectActionTest, KeysRefuseNull) {
    static const DialectCase cases[] = {
        {u"CREATE TABLE b (k BYTE NOT NULL PRIMARY KEY, t TEXT(5))", u"rows=0"},
        {u"INSERT INTO b VALUES (NULL, 'a')", u"#3314 Поле 'b.k' "},
        {u"INSERT INTO b (t) VALUES ('a')", u"#3314 Поле 'b.k' "},
        {u"INSERT INTO b SELECT NULL, 'a'", u"#3314 Поле 'b.k' "},
        {u"INSERT INTO b VALUES (9, 'a')", u"rows=1"},
        {u"UPDATE b SET k = NULL", u"#3314 Поле 'b.k' "},
        {u"CREATE TABLE s (k SHORT PRIMARY KEY, t TEXT(5))", u"rows=0"},
        {u"INSERT INTO s (t) VALUES ('a')", u"#3058 "},
        {u"CREATE TABLE t (k TEXT(5) PRIMARY KEY, t TEXT(5))", u"rows=0"},
        {u"INSERT INTO t (t) VALUES ('a')", u"#3058 "},
        {u"INSERT INTO t VALUES ('a', 'a')", u"rows=1"},
        {u"UPDATE t SET k = NULL", u"#3058 "},
        {u"CREATE TABLE c (n COUNTER, a SHORT, b SHORT, CONSTRAINT k PRIMARY KEY (a, b))", u"rows=0"},
        {u"INSERT INTO c (a) VALUES (1)", u"#3058 "},
        {u"INSERT INTO c (a, b) VALUES (1, 2)", u"rows=1"},
        {u"CREATE TABLE i (a SHORT, b SHORT)", u"rows=0"},
        {u"INSERT INTO i (a) VALUES (1)", u"rows=1"},
        {u"CREATE INDEX w ON i (a, b) WITH DISALLOW NULL", u"#3058 "},
        {u"CREATE INDEX w ON i (b) WITH PRIMARY", u"#3058 "},
        {u"ALTER TABLE i ADD CONSTRAINT w PRIMARY KEY (b)", u"#3058 "},
        {u"CREATE INDEX w ON i (a) WITH DISALLOW NULL", u"rows=0"},
        {u"INSERT INTO i (b) VALUES (1)", u"#3314 "},
        {u"SELECT * FROM i", u"1|NULL"},
    };
    CheckExecute(cases);
    for (const char* table : {"b", "s", "t", "c"})
        EXPECT_EQ(
            Execute(QStringLiteral("INSERT INTO %1 SELECT * FROM %1 WHERE 1 = 2").arg(QLatin1String(table)),
                    0),
            QStringLiteral("rows=0"));
    EXPECT_EQ(Execute(QStringLiteral("INSERT INTO c (a, b) SELECT a, b FROM i"), 0),
              QStringLiteral("rows=0"));
    EXPECT_EQ(Execute(QStringLiteral("INSERT INTO s (t) VALUES ('a')"), 0), QStringLiteral("rows=0"));
}

TEST_F(DialectActionTest, ColumnsTakeWhatTheirTypesSay) {
    static const DialectCase cases[] = {
        {u"CREATE TABLE f (n COUNTER, y YESNO, t TEXT(5))", u"rows=0"},
        {u"INSERT INTO f (t) VALUES ('a')", u"rows=1"},
        {u"INSERT INTO f (y, t) VALUES (NULL, 'b')", u"rows=1"},
        {u"INSERT INTO f (y, t) SELECT NULL, 'c'", u"rows=1"},
        {u"INSERT INTO f (y) VALUES (TRUE)", u"rows=1"},
        {u"UPDATE f SET y = NULL WHERE n = 4", u"rows=1"},
        {u"ALTER TABLE f ADD COLUMN z YESNO", u"rows=0"},
        {u"ALTER TABLE f ADD COLUMN must YESNO NOT NULL", u"rows=0"},
        {u"INSERT INTO f (y, t) VALUES (TRUE, 'e')", u"rows=1"},
        {u"SELECT y, z, must FROM f ORDER BY n", u"0|0|0 / 0|0|0 / 0|0|0 / 0|0|0 / -1|0|0"},
        {u"SELECT COUNT(*) FROM f WHERE y = FALSE AND NOT z", u"4"},
        {u"SELECT f.y FROM v00 LEFT JOIN f ON v00.v00vrid = f.n + 90", u"NULL"},
        {u"CREATE TABLE o (b BINARY(4), l LONGBINARY, g GUID)", u"rows=0"},
        {u"INSERT INTO o (b) VALUES ('ab')", u"rows=1"},
        {u"INSERT INTO o (b) VALUES ('abc')", u"#3163 "},
        {u"UPDATE o SET b = 'abc'", u"#3163 "},
        {u"UPDATE o SET l = 'abc'", u"rows=1"},
        {u"INSERT INTO o (b) SELECT l FROM o", u"#3163 "},
        {u"CREATE TABLE o2 (b BINARY(511))", u"#3382 "},
        {u"CREATE TABLE o2 (b LONGBINARY(4))", u"#3290 "},
        {u"INSERT INTO o (g) VALUES ('{12345678-1234-1234-1234-1234567890AB}')", u"rows=1"},
        {u"INSERT INTO o (g) VALUES ('{12345678-1234-1234-1234-1234567890AB} ')", u"#3163 "},
        {u"UPDATE o SET g = g & 'x'", u"#3163 "},
        {u"UPDATE o SET g = '{12345678-1234-1234-1234-1234567890AB} '", u"#3163 "},
        {u"CREATE TABLE w (d DATETIME)", u"rows=0"},
        {u"INSERT INTO w VALUES (#01/01/100 12:00:00#)", u"rows=1"},
        {u"INSERT INTO w SELECT #12/31/9999 23:59:59#", u"rows=1"},
        {u"SELECT d FROM w", u"01.01.0100 12:00:00 / 31.12.9999 23:59:59"},
        {u"UPDATE w SET d = d - 1", u"#3349 "},
        {u"UPDATE w SET d = d + 1", u"#3349 "},
        {u"INSERT INTO w VALUES (2958466)", u"#3349 "},
    };
    CheckExecute(cases);
    // Without the option what is too long leaves its row out.
    for (const char* sql : {"INSERT INTO o (b) VALUES ('abc')", "INSERT INTO o (b) SELECT 'abc'",
                            "UPDATE o SET b = 'abc'", "UPDATE o SET g = STRING(39, 'x')"})
        EXPECT_EQ(Execute(QString::fromLatin1(sql), 0), QStringLiteral("rows=0")) << sql;
}

/// The rows of a query fill the columns in their order, whatever the query calls them.
TEST_F(DialectActionTest, InsertsOfAQueryGoByPosition) {
    static const DialectCase cases[] = {
        {u"CREATE TABLE p (x SHORT, y SHORT)", u"rows=0"},
        {u"INSERT INTO p SELECT 1 AS y, 2 AS x", u"rows=1"},
        {u"INSERT INTO p SELECT y AS q, x FROM p", u"rows=1"},
        {u"INSERT INTO p (y, x) SELECT 5 AS x, 6 AS y", u"rows=1"},
        {u"INSERT INTO p SELECT 7 AS y", u"rows=1"}, // fewer of them go by name
        {u"SELECT x, y FROM p", u"1|2 / 2|1 / 6|5 / NULL|7"},
        {u"INSERT INTO p SELECT 7 AS q", u"#3346 "},
        {u"INSERT INTO p SELECT 1, 2, 3", u"#3346 "},
    };
    CheckExecute(cases);
}

/// A table is made anew under a name that nobody else bears.
TEST_F(DialectActionTest, NoNameOfAnIndexStopsAChange) {
    static const DialectCase cases[] = {
        {u"CREATE TABLE n (a SHORT, b SHORT, t TEXT(5))", u"rows=0"},
        {u"INSERT INTO n VALUES (1, 2, 'x')", u"rows=1"},
        {u"CREATE INDEX new ON n (a)", u"rows=0"},
        {u"CREATE INDEX [new ] ON n (a)", u"rows=0"},
        {u"ALTER TABLE n DROP COLUMN b", u"rows=0"},
        {u"ALTER TABLE n ADD COLUMN c SHORT NOT NULL", u"rows=0"},
        {u"ALTER TABLE n ALTER COLUMN t TEXT(9)", u"rows=0"},
        {u"DROP INDEX new ON n", u"rows=0"},
        {u"SELECT * FROM n", u"1|x|NULL"},
    };
    CheckExecute(cases);
}

} // namespace
