// Tables, columns and indexes: made, changed and taken away.
#include "tests/engine/EngineTest.h"

namespace {

class Definition : public test::EngineTest {
protected:
    /// "name:type:size" of each column, with "!" where it is required and "e" where it takes the empty text.
    QString Columns(const char* table) const {
        QStringList columns;
        const auto definition = database->TableDefs(QString::fromUtf8(table));
        for (int at = 0; at < definition.FieldsCount(); ++at) {
            const auto field = definition.Fields(at);
            columns += QStringLiteral("%1:%2:%3")
                           .arg(field.Name())
                           .arg(static_cast<int>(field.Type()))
                           .arg(field.Size()) +
                       (field.Required() ? QStringLiteral("!") : QString()) +
                       (field.AllowZeroLength() ? QStringLiteral("e") : QString());
        }
        return columns.join(u' ');
    }
};

} // namespace

TEST_F(Definition, WhatAColumnIsDeclaredToBeOutlivesTheProgram) {
    Check(R"(
        CREATE TABLE [Мои данные] (n COUNTER, b BYTE NOT NULL, s SHORT, l INTEGER, t1 TEXT(1), [t 255] TEXT, m LONGTEXT, f SINGLE, d DOUBLE, c CURRENCY, w DATETIME, y BIT, [a"b] TEXT(7) NOT NULL, rowid TEXT(9))
        INSERT INTO [Мои данные] (b, [a"b], rowid) VALUES (1, 'x', 'y')
    )");
    AllowEmpty(QStringLiteral("мои данные"), {QStringLiteral("T1")});
    for (const bool again : {false, true}) {
        if (again)
            Reopen();
        EXPECT_EQ(Columns("МОИ ДАННЫЕ"),
                  QStringLiteral("n:5:0 b:2:0! s:3:0 l:4:0 t1:10:1e t 255:10:255 m:11:0 f:6:0 d:7:0 c:8:0 "
                                 "w:9:0 y:1:0 a\"b:10:7! rowid:10:9"));
    }
    Check("SELECT n, rowid FROM [Мои данные] -> 1|y");
    EXPECT_EQ(database->TableNames(), QStringList{QStringLiteral("Мои данные")});
    EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
}

TEST_F(Definition, ChangesKeepRowsRulesAndCounters) {
    Check(R"(
        CREATE TABLE x1 (id COUNTER, a INTEGER NOT NULL, b TEXT UNIQUE, c MEMO, z TEXT(5), CONSTRAINT pk PRIMARY KEY (id), CONSTRAINT ab UNIQUE (a, b))
        CREATE INDEX new ON x1 (z)
        INSERT INTO x1 (a, b) VALUES (1, 'q')
        INSERT INTO x1 (a, b) VALUES (1, 'Q') -> #3022
        INSERT INTO x1 (a, b) VALUES (1, NULL) ; INSERT INTO x1 (a, b) VALUES (1, NULL) -> 1
        DELETE FROM x1 WHERE id = 4 -> 1
    )");
    AllowEmpty(QStringLiteral("x1"), {QStringLiteral("z")});
    Check(R"(
        ALTER TABLE x1 ADD COLUMN d TEXT(5)
        ALTER TABLE x1 ADD COLUMN must SHORT NOT NULL
        SELECT * FROM x1 -> 1|1|q|NULL|NULL|NULL|NULL / 3|1|NULL|NULL|NULL|NULL|NULL
        INSERT INTO x1 (a, must, d) VALUES (9, 1, 'x') -> 1
        SELECT id FROM x1 WHERE a = 9 -> 5
        DELETE FROM x1 WHERE a = 9 -> 1
        INSERT INTO x1 (a) VALUES (2) -> #3314 Поле 'x1.must'
        ALTER TABLE x1 ALTER COLUMN d TEXT(10) NOT NULL
        ALTER TABLE x1 ALTER COLUMN z TEXT(9)
        ALTER TABLE x1 DROP COLUMN c
        INSERT INTO x1 (a, b, z, d, must) VALUES (1, 'Q', '', '1234567', 1) -> #3022
        INSERT INTO x1 (a, b, z, d, must) VALUES (1, 'r', '', '1234567', 1) -> 1
        ALTER TABLE x1 DROP COLUMN must
    )");
    Reopen();
    EXPECT_EQ(Columns("x1"), QStringLiteral("id:5:0 a:4:0! b:10:255 z:10:9e d:10:10!"));
    EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
    Check(R"(
        SELECT b, z, d FROM x1 -> q|NULL|NULL / NULL|NULL|NULL / r||1234567
        ALTER TABLE x1 DROP COLUMN id ; ALTER TABLE x1 DROP COLUMN b -> #3280
        CREATE UNIQUE INDEX NEW ON x1 (a) -> #3375 Таблица 'x1' уже содержит индекс с именем 'NEW'.
        ALTER TABLE x1 ADD COLUMN m COUNTER -> #3292
        DROP INDEX new ON x1
        ALTER TABLE x1 DROP COLUMN z
        DROP TABLE x1
        CREATE TABLE one (u SHORT, [1234567890123456789012345678901234567890123456789012345678901234] SHORT)
        CREATE TABLE [12345678901234567890123456789012345678901234567890123456789012345] (x SHORT) -> #3290
    )");
}

TEST_F(Definition, KeysAndIndexesHold) {
    Check(R"(
        CREATE TABLE p (n COUNTER, a SHORT, b TEXT(5), CONSTRAINT pk PRIMARY KEY (a, b), CONSTRAINT un UNIQUE (b, a))
        CREATE TABLE k (a INTEGER CONSTRAINT k PRIMARY KEY, b CHAR(3) CONSTRAINT u UNIQUE)
        INSERT INTO p (a, b) VALUES (1, 'x') ; INSERT INTO k VALUES (1, 'abc') -> 1
    )");
    Reopen();
    Check(R"(
        INSERT INTO p (a, b) VALUES (1, 'X') ; INSERT INTO k VALUES (1, 'abd') ; INSERT INTO k VALUES (2, 'ABC') -> #3022
        DROP INDEX pk ON p
        INSERT INTO p (a, b) VALUES (1, 'X') -> #3022
        DROP INDEX un ON p
        INSERT INTO p (a, b) VALUES (1, 'X') -> 1
        -- The names of keys can be told again, whatever stands behind them in the file.
        CREATE TABLE x2 (n COUNTER CONSTRAINT mykey PRIMARY KEY, t TEXT(5))
        ALTER TABLE x2 ADD COLUMN s SHORT CONSTRAINT one UNIQUE
        INSERT INTO x2 (s) VALUES (7) -> 1
        ALTER TABLE x2 ALTER COLUMN s INTEGER
        INSERT INTO x2 (s) VALUES (7) -> #3022
        ALTER TABLE x2 DROP CONSTRAINT one
        ALTER TABLE x2 DROP CONSTRAINT mykey
        INSERT INTO x2 (s) VALUES (7) -> 1
        ALTER TABLE x2 ADD CONSTRAINT own PRIMARY KEY (n)
        INSERT INTO x2 (n) VALUES (1) -> #3022
    )");
}

TEST_F(Definition, SelectIntoMakesATable) {
    MakeCards();
    Check(R"(
        INSERT INTO a01 VALUES (1, 'Иванов', NULL) ; INSERT INTO a01 VALUES (2, 'Петров', NULL) -> 1
        INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, 'x') ; INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 2, 'y') -> 1
        CREATE TABLE o (b BINARY(4), l LONGBINARY, d DATETIME, y YESNO)
        run SELECT * INTO m1 FROM a02 -> 2
        run SELECT a01clid, a02rcid INTO m3 FROM a01 LEFT JOIN a02 ON a01clid = a02clid -> 3
        run SELECT x.a01clid, y.a01clid, a01clid = 1 AS b INTO m5 FROM a01 AS x, a01 AS y WHERE y.a01clid = 2 -> #3079
        run SELECT x.a01clid, y.a01clid, x.a01last & '1' AS t, x.a01clid = 1 AS c INTO m5 FROM a01 AS x, a01 AS y WHERE y.a01clid = 2 -> 2
        SELECT * FROM m5 -> 1|2|Иванов1|-1 / 2|2|Петров1|0
        run SELECT * INTO m7 FROM o -> 0
        INSERT INTO m1 (a02clid) VALUES (1) -> 1
        SELECT MAX(a02rcid) FROM m1 -> 3
    )");
    const std::pair<const char*, const char*> made[] = {
        {"m1", "a02rcid:5:0 a02clid:4:0 a02code:3:0 a02cval:10:50e"},
        {"m3", "a01clid:4:0 a02rcid:4:0"},
        {"m5", "x_a01clid:4:0 y_a01clid:4:0 t:10:255e c:3:0"},
        {"m7", "b:12:4 l:12:0 d:9:0 y:1:0"},
    };
    for (const auto& [table, columns] : made)
        EXPECT_EQ(Columns(table), QString::fromUtf8(columns)) << table;
}

// As this program once laid tables out: YESNO without a value, narrower dates, keys without their names,
// money as fractions; and one of somebody else.
TEST_F(Definition, TablesLaidOutBeforeStayInUse) {
    database->Close();
    RunPlainly(
        "CREATE TABLE \"old\" (\"k\" INTEGER NOT NULL PRIMARY KEY CONSTRAINT \"k BYTE\" CHECK (\"k\" "
        "BETWEEN 0 AND 255), \"y\" INTEGER CONSTRAINT \"y BIT\" CHECK (\"y\" BETWEEN 0 AND 1), \"d\" "
        "REAL CONSTRAINT \"d DATETIME\" CHECK (\"d\" BETWEEN -657434.0 AND 2958466.0)) STRICT; "
        "INSERT INTO old VALUES (1, NULL, 2.5), (2, 1, NULL); "
        "CREATE TABLE price (c REAL CONSTRAINT \"c CURRENCY\" CHECK (c BETWEEN -922337203685477.5808 AND "
        "922337203685477.5807)) STRICT; "
        "INSERT INTO price VALUES (12.5), (123456789012.3456), (922337203685477.5807); "
        "CREATE TABLE plain (x, y VARCHAR(20), z INT)");
    database = workspace->OpenDatabase(path);
    EXPECT_EQ(Columns("old"), QStringLiteral("k:2:0! y:1:0 d:9:0"));
    Check(R"(
        SELECT * FROM sqlite_schema -> #3078
        INSERT INTO plain (y, z) VALUES ('а', 5)
        SELECT * FROM plain -> NULL|а|5
        INSERT INTO old (y) VALUES (TRUE) -> #3314
        INSERT INTO old (k) VALUES (3) -> 1
        SELECT k FROM old WHERE y = FALSE -> 1 / 3
        ALTER TABLE old ADD COLUMN more SHORT NOT NULL
        UPDATE old SET d = #1/1/100 12:00#, more = 1 WHERE k = 2 -> 1
        old -> 1|0|01.01.1900 12:00:00|NULL / 2|-1|01.01.0100 12:00:00|1 / 3|0|NULL|NULL
        UPDATE price SET c = c + 0.0001 WHERE c = 12.5 -> 1
    )");
    const QStringList kinds{QStringLiteral("real"), QStringLiteral("integer")};
    for (const QString& kind : kinds) {
        if (kind == kinds[1])
            Run(QStringLiteral("ALTER TABLE price ALTER COLUMN c CURRENCY"));
        Check("SELECT c FROM price ORDER BY c -> 12,5001 / 123456789012,3456 / 922337203685477,5807");
        Reopen();
        EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT DISTINCT typeof(c) FROM price")),
                  QStringList{kind});
    }
}
