#include "tests/engine/storage/StorageTest.h"

#include <sqlite3.h>

using engine::DataType;

namespace {

class Schema : public test::Storage {
protected:
    QStringList Columns(const QString& table) {
        QStringList columns;
        const auto definition = database->TableDefs(table);
        for (int at = 0; at < definition.FieldsCount(); ++at) {
            const auto field = definition.Fields(at);
            columns += QStringLiteral("%1:%2:%3%4%5")
                           .arg(field.Name())
                           .arg(static_cast<int>(field.Type()))
                           .arg(field.Size())
                           .arg(field.Required() ? QStringLiteral("!") : QString(),
                                field.AllowZeroLength() ? QStringLiteral("0") : QString());
        }
        return columns;
    }
    static QString Column(const char* name, DataType type, int size = 0, const char* marks = "") {
        return QStringLiteral("%1:%2:%3%4")
            .arg(QString::fromUtf8(name))
            .arg(static_cast<int>(type))
            .arg(size)
            .arg(QString::fromUtf8(marks));
    }
};

} // namespace

TEST_F(Schema, WhatAColumnIsDeclaredToBeOutlivesTheProgram) {
    Run(QStringLiteral(
        "CREATE TABLE [Мои данные] (n COUNTER, b BYTE NOT NULL, s SHORT, l INTEGER, t1 TEXT(1), [t 255] "
        "TEXT, m LONGTEXT, f SINGLE, d DOUBLE, c CURRENCY, w DATETIME, y BIT, [a\"b] TEXT(7) NOT NULL)"));
    const QStringList expected{Column("n", DataType::Counter),        Column("b", DataType::Byte, 0, "!"),
                               Column("s", DataType::Short),          Column("l", DataType::Long),
                               Column("t1", DataType::Text, 1),       Column("t 255", DataType::Text, 255),
                               Column("m", DataType::Memo),           Column("f", DataType::Single),
                               Column("d", DataType::Double),         Column("c", DataType::Currency),
                               Column("w", DataType::Date),           Column("y", DataType::Bit),
                               Column("a\"b", DataType::Text, 7, "!")};
    EXPECT_EQ(Columns(QStringLiteral("МОИ ДАННЫЕ")), expected);
    Reopen();
    EXPECT_EQ(Columns(QStringLiteral("Мои данные")), expected);
    EXPECT_EQ(database->TableNames(), QStringList{QStringLiteral("Мои данные")});
    EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
}

TEST_F(Schema, ChangesKeepRowsRulesAndCounters) {
    MakeCards();
    Run(QStringLiteral("CREATE INDEX i ON a02 (a02clid, a02code)"));
    for (int row = 1; row <= 3; ++row)
        Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, 1, 'т%1')").arg(row));
    Run(QStringLiteral("DELETE FROM a02 WHERE a02rcid = 3"));

    Run(QStringLiteral("ALTER TABLE a02 ADD COLUMN note TEXT(20)"));
    Run(QStringLiteral("ALTER TABLE a02 ADD COLUMN must SHORT NOT NULL"));
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM a02")),
              (QStringList{QStringLiteral("1|1|1|т1|NULL|NULL"), QStringLiteral("2|2|1|т2|NULL|NULL")}));
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, 'x')")),
              3314);
    EXPECT_EQ(FailureOfRun(QStringLiteral(
                  "INSERT INTO a02 (a02clid, a02code, a02cval, note, must) VALUES (1, 1, 'x', '', 1)")),
              3315);
    Run(QStringLiteral("ALTER TABLE a02 ALTER COLUMN a02cval TEXT(60)"));
    Run(QStringLiteral("ALTER TABLE a02 DROP COLUMN must"));
    Reopen();
    EXPECT_EQ(Columns(QStringLiteral("a02")).mid(3),
              (QStringList{Column("a02cval", DataType::Text, 60), Column("note", DataType::Text, 20)}));
    // Two numbers were used up by the inserts that failed above.
    Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (9, 1, 'т9')"));
    EXPECT_GT(AskOne(QStringLiteral("SELECT max(a02rcid) FROM a02")).toInt(), 3);

    const struct {
        const char* sql;
        int failure;
    } refused[] = {
        {"CREATE TABLE A02 (x TEXT(5))", 3010},
        {"CREATE TABLE z (x TEXT(5), X SHORT)", 3191},
        {"ALTER TABLE a02 ADD COLUMN NOTE TEXT(5)", 3380},
        {"ALTER TABLE a02 ADD COLUMN wide TEXT(256)", 3382},
        {"ALTER TABLE a02 DROP COLUMN nothing", 3381},
        {"ALTER TABLE a02 DROP COLUMN a02rcid", 3280},
        {"ALTER TABLE a02 DROP COLUMN a02clid", 3280},
        {"ALTER TABLE nothing ADD COLUMN x TEXT(5)", 3371},
        {"DROP TABLE nothing", 3376},
        {"DROP INDEX nothing ON a02", 3372},
        {"CREATE INDEX I ON a02 (note)", 3375},
    };
    for (const auto& row : refused)
        EXPECT_EQ(FailureOfRun(QString::fromUtf8(row.sql)), row.failure) << row.sql;
    Run(QStringLiteral("DROP INDEX i ON a02"));
    Run(QStringLiteral("DROP TABLE a02"));
    EXPECT_EQ(database->TableNames(), QStringList{QStringLiteral("a01")});
    EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
}

TEST_F(Schema, KeysAndIndexesHold) {
    Run(QStringLiteral("CREATE TABLE p (n COUNTER, a SHORT, b TEXT(5), CONSTRAINT pk PRIMARY KEY (a, b), "
                       "CONSTRAINT un UNIQUE (b, a))"));
    Run(QStringLiteral("INSERT INTO p (a, b) VALUES (1, 'x')"));
    Reopen();
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO p (a, b) VALUES (1, 'X')")), 3022);
    EXPECT_EQ(FailureOfRun(QStringLiteral("CREATE INDEX pk2 ON p (n) WITH PRIMARY")), 3283);
    Run(QStringLiteral("DROP INDEX pk ON p"));
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO p (a, b) VALUES (1, 'X')")), 3022);
    Run(QStringLiteral("DROP INDEX un ON p"));
    Run(QStringLiteral("INSERT INTO p (a, b) VALUES (1, 'X')"));
    EXPECT_EQ(FailureOfRun(QStringLiteral("CREATE UNIQUE INDEX again ON p (b)")), 3022);
    EXPECT_EQ(Ask(QStringLiteral("SELECT n, a, b FROM p ORDER BY n")).size(), 2);
}

TEST_F(Schema, ChangesKeepWhatWasDeclared) {
    QStringList columns;
    for (int column = 1; column <= 255; ++column)
        columns += QStringLiteral("c%1 BIT").arg(column);
    Run(QStringLiteral("CREATE TABLE wide (%1)").arg(columns.join(u',')));
    Run(QStringLiteral("CREATE TABLE k (n COUNTER, u TEXT(5) UNIQUE, z TEXT(5), w TEXT(5))"));
    database->TableDefs(QStringLiteral("k")).Fields(QStringLiteral("z")).SetAllowZeroLength(true);
    const struct {
        const char* sql;
        int failure;
    } steps[] = {
        {"INSERT INTO k (u) VALUES ('x')", 0},
        {"ALTER TABLE k ALTER COLUMN u TEXT(9)", 0},
        {"INSERT INTO k (u) VALUES ('X')", 3022},
        {"ALTER TABLE k ALTER COLUMN z TEXT(9)", 0},
        {"INSERT INTO k (u, z) VALUES ('y', '')", 0},
        {"ALTER TABLE k ALTER COLUMN w TEXT(9) NOT NULL", 0}, // the rows stay, though they have none
        {"INSERT INTO k (u) VALUES ('z')", 3314},
        {"ALTER TABLE k ADD COLUMN m COUNTER", 3292},
        {"ALTER TABLE k ALTER COLUMN w COUNTER", 3292},
        {"ALTER TABLE k ADD CONSTRAINT own PRIMARY KEY (u)", 0}, // the counter was no key
        {"ALTER TABLE wide ADD COLUMN more BIT", 3293},
        {"SELECT u INTO one FROM k", 0},
        {"ALTER TABLE one DROP COLUMN u", 3293},
    };
    for (const auto& step : steps)
        EXPECT_EQ(FailureOfRun(QString::fromUtf8(step.sql)), step.failure) << step.sql;
    EXPECT_EQ(Ask(QStringLiteral("SELECT u, z, w FROM k")),
              (QStringList{QStringLiteral("x|NULL|NULL"), QStringLiteral("y||NULL")}));
}

TEST_F(Schema, SelectIntoMakesATable) {
    MakeCards();
    Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (1, 'Иванов')"));
    Run(QStringLiteral("SELECT a01clid, a01last INTO copy FROM a01"));
    EXPECT_EQ(database->RecordsAffected(), 1);
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM copy")), QStringList{QStringLiteral("1|Иванов")});
    EXPECT_EQ(FailureOfRun(QStringLiteral("SELECT * INTO copy FROM a01")), 3010);
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM copy")).size(), 1);
}

// As this program once laid tables out: YESNO without a value, narrower dates, keys without their names.
TEST_F(Schema, TablesLaidOutBeforeStayInUse) {
    database->Close();
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(path.toUtf8().constData(), &other), SQLITE_OK);
    EXPECT_EQ(
        sqlite3_exec(
            other,
            "CREATE TABLE \"old\" (\"k\" INTEGER NOT NULL PRIMARY KEY CONSTRAINT \"k BYTE\" CHECK (\"k\" "
            "BETWEEN 0 AND 255), \"y\" INTEGER CONSTRAINT \"y BIT\" CHECK (\"y\" BETWEEN 0 AND 1), \"d\" "
            "REAL CONSTRAINT \"d DATETIME\" CHECK (\"d\" BETWEEN -657434.0 AND 2958466.0)) STRICT; "
            "INSERT INTO old VALUES (1, NULL, 2.5), (2, 1, NULL); "
            "CREATE TABLE price (c REAL CONSTRAINT \"c CURRENCY\" CHECK (c BETWEEN -922337203685477.5808 AND "
            "922337203685477.5807)) STRICT; "
            "INSERT INTO price VALUES (12.5), (123456789012.3456), (-0.0001), (922337203685477.5807)",
            nullptr, nullptr, nullptr),
        SQLITE_OK)
        << sqlite3_errmsg(other);
    sqlite3_close(other);
    database = workspace->OpenDatabase(path);
    EXPECT_EQ(Columns(QStringLiteral("old")),
              (QStringList{Column("k", DataType::Byte, 0, "!"), Column("y", DataType::Bit),
                           Column("d", DataType::Date)}));
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO old (y) VALUES (TRUE)")), 3314);
    Run(QStringLiteral("INSERT INTO old (k) VALUES (3)"));
    EXPECT_EQ(Ask(QStringLiteral("SELECT k FROM old WHERE y = FALSE")),
              (QStringList{QStringLiteral("1"), QStringLiteral("3")}));
    Run(QStringLiteral("ALTER TABLE old ADD COLUMN more SHORT NOT NULL"));
    Run(QStringLiteral("UPDATE old SET d = #1/1/100 12:00#, more = 1 WHERE k = 2"));
    EXPECT_EQ(Ask(QStringLiteral("old")),
              (QStringList{QStringLiteral("1|0|01.01.1900 12:00:00|NULL"),
                           QStringLiteral("2|-1|01.01.0100 12:00:00|1"), QStringLiteral("3|0|NULL|NULL")}));
    Run(QStringLiteral("INSERT INTO price VALUES ('7,1234')"));
    Run(QStringLiteral("UPDATE price SET c = c + 0.0001 WHERE c = 12.5"));
    Run(QStringLiteral("ALTER TABLE price ADD COLUMN n LONG NOT NULL"));
    Run(QStringLiteral("ALTER TABLE price ADD COLUMN y BIT NOT NULL"));
    Reopen();
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT 1 FROM old, price WHERE old.y IS NULL OR "
                                                  "price.y IS NULL")),
              QStringList());
    const QStringList prices = {QStringLiteral("-0,0001"), QStringLiteral("7,1234"),
                                QStringLiteral("12,5001"), QStringLiteral("123456789012,3456"),
                                QStringLiteral("922337203685477,5807")};
    EXPECT_EQ(Ask(QStringLiteral("SELECT c FROM price ORDER BY c")), prices);
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT DISTINCT typeof(c) FROM price")),
              QStringList{QStringLiteral("real")});
    Run(QStringLiteral("ALTER TABLE price ALTER COLUMN c CURRENCY"));
    EXPECT_EQ(Ask(QStringLiteral("SELECT c FROM price ORDER BY c")), prices);
    Reopen();
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT DISTINCT typeof(c) FROM price")),
              QStringList{QStringLiteral("integer")});
}
