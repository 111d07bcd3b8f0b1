#include "tests/engine/storage/StorageTest.h"

namespace {

class Constraint : public test::Storage {
protected:
    Constraint() {
        Run(QStringLiteral(
            "CREATE TABLE t (n COUNTER NOT NULL PRIMARY KEY, b BYTE, s SHORT NOT NULL, l INTEGER, "
            "x TEXT(5), u TEXT(50) UNIQUE)"));
        Run(QStringLiteral("CREATE TABLE k (k INTEGER NOT NULL PRIMARY KEY, x TEXT(5))"));
        Run(QStringLiteral("INSERT INTO t (s, x, u) VALUES (1, 'абв', 'Дом')"));
        Run(QStringLiteral("INSERT INTO k (k, x) VALUES (7, 'а')"));
        database->TableDefs(QStringLiteral("T")).Fields(QStringLiteral("U")).SetAllowZeroLength(true);
    }
};

} // namespace

TEST_F(Constraint, EveryRuleHasItsNumberAndUndoesTheStatement) {
    const struct {
        const char* sql;
        int failure;
        int rowsWithout128; ///< rows changed by the same statement without dbFailOnError
    } cases[] = {
        {"INSERT INTO t (s) VALUES (32767)", 0, 1},
        {"INSERT INTO t (s) VALUES (32768)", 3349, 0},
        {"INSERT INTO t (s, b) VALUES (1, 256)", 3349, 1},
        {"INSERT INTO t (s, b) VALUES (1, -1)", 3349, 1},
        {"INSERT INTO t (s, l) VALUES (1, 2147483648)", 3349, 1},
        {"INSERT INTO t (b) VALUES (1)", 3314, 0},
        {"INSERT INTO t (s, b) VALUES (NULL, 1)", 3314, 0},
        {"INSERT INTO t (s, x) VALUES (1, 'абвгд')", 0, 1},
        {"INSERT INTO t (s, x) VALUES (1, 'абвгде')", 3163, 0},
        {"INSERT INTO t (s, x) VALUES (1, '')", 3315, 0},
        {"INSERT INTO t (s, u) VALUES (1, '')", 0, 0}, // the second empty text is a duplicate
        {"INSERT INTO t (s, u) VALUES (1, 'дОМ')", 3022, 0},
        {"INSERT INTO t (s, u) VALUES (1, NULL)", 0, 1},
        {"INSERT INTO t (s, l) VALUES (1, ' 3 ')", 0, 1},
        {"INSERT INTO t (s, l) VALUES (1, 'abc')", 3464, 1},
        {"INSERT INTO t (s, l) VALUES (1, '')", 3464, 1},
        {"INSERT INTO t (s, x) VALUES (1, 12345)", 0, 1},
        {"INSERT INTO t (s, x) VALUES (1, 123456)", 3163, 0},
        {"INSERT INTO t (n, s) VALUES (1, 1)", 3022, 0},
        {"INSERT INTO k (k) VALUES (7)", 3022, 0},
        {"INSERT INTO k (x) VALUES ('б')", 3314, 0},
        {"INSERT INTO k (k) VALUES (NULL)", 3314, 0},
        {"INSERT INTO k (k) VALUES (3000000000)", 3349, 0},
        {"UPDATE t SET x = 'слишком длинно'", 3163, 0},
        {"UPDATE t SET x = 'слишком длинно' WHERE n = 99999", 0, 0},
        {"UPDATE t SET b = 300 WHERE n = 99999", 0, 0},
        {"UPDATE t SET s = 'x' WHERE n = 99999", 0, 0},
        {"UPDATE t SET s = 'x' WHERE n = 1", 3464, 0},
        {"UPDATE t SET s = NULL", 3314, 0},
        {"UPDATE t SET s = s + 40000", 3349, 0},
        {"UPDATE t SET x = x & 'вгде' WHERE n = 1", 3163, 0},
        {"UPDATE k SET k = 'x'", 3464, 0},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.sql);
        const QString sql = QString::fromUtf8(row.sql);
        const QStringList before =
            Ask(QStringLiteral("SELECT * FROM t")) + Ask(QStringLiteral("SELECT * FROM k"));
        EXPECT_EQ(FailureOfRun(sql), row.failure);
        const QStringList after =
            Ask(QStringLiteral("SELECT * FROM t")) + Ask(QStringLiteral("SELECT * FROM k"));
        if (row.failure != 0) {
            EXPECT_EQ(after, before);
        }
        EXPECT_EQ(test::FailureOf([&] { database->Execute(sql); }), 0);
        EXPECT_EQ(database->RecordsAffected(), row.rowsWithout128);
    }
}

TEST_F(Constraint, AFailureNamesTheColumn) {
    const struct {
        const char* sql;
        const char* name;
    } cases[] = {
        {"INSERT INTO t (b) VALUES (1)", "'t.s'"},
        {"INSERT INTO t (s, x) VALUES (1, '')", "'t.x'"},
        {"UPDATE t SET x = MID(x, 1, 0)", "'t.x'"},
        {"INSERT INTO k (x) VALUES ('б')", "'k.k'"},
    };
    for (const auto& row : cases) {
        const auto run = [&] { Run(QString::fromUtf8(row.sql)); };
        EXPECT_NE(test::FailureOf(run, QString::fromUtf8(row.name)), 0) << row.sql;
    }
}

// One row of several fails: all of them with 128, that one alone without.
TEST_F(Constraint, ManyRowsAreUndoneOrPassedOver) {
    Run(QStringLiteral("INSERT INTO k (k, x) VALUES (8, 'б')"));
    Run(QStringLiteral("CREATE TABLE m (k INTEGER NOT NULL PRIMARY KEY, x TEXT(5))"));
    Run(QStringLiteral("INSERT INTO m (k, x) VALUES (8, 'в')"));
    const QString sql = QStringLiteral("INSERT INTO m (k, x) SELECT k, x FROM k");
    EXPECT_EQ(FailureOfRun(sql), 3022);
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM m")), QStringList{QStringLiteral("8|в")});
    database->Execute(sql);
    EXPECT_EQ(database->RecordsAffected(), 1);
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM m ORDER BY k")),
              (QStringList{QStringLiteral("7|а"), QStringLiteral("8|в")}));
}

TEST_F(Constraint, EmptyTextIsSwitchedAtRunTime) {
    auto field = database->TableDefs(QStringLiteral("t")).Fields(QStringLiteral("x"));
    EXPECT_FALSE(field.AllowZeroLength());
    field.SetAllowZeroLength(true);
    EXPECT_TRUE(field.AllowZeroLength());
    Run(QStringLiteral("INSERT INTO t (s, x) VALUES (5, '')"));
    // Rows that are there stay when the rule comes back, in the open file and in one opened anew.
    field.SetAllowZeroLength(false);
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO t (s, x) VALUES (6, '')")), 3315);
    Reopen();
    EXPECT_EQ(Ask(QStringLiteral("SELECT s FROM t WHERE x = ''")), QStringList{QStringLiteral("5")});
    EXPECT_FALSE(database->TableDefs(QStringLiteral("t")).Fields(QStringLiteral("x")).AllowZeroLength());
    EXPECT_EQ(test::FailureOf([&] { database->TableDefs(QStringLiteral("нет")); }), 3265);
    EXPECT_EQ(
        test::FailureOf([&] { database->TableDefs(QStringLiteral("t")).Fields(QStringLiteral("нет")); }),
        3265);
}

// A number that an insert has used up does not come again, whatever became of the row.
TEST_F(Constraint, CountersNeverGoBack) {
    const auto insert = [&](const char* values) {
        return FailureOfRun(QStringLiteral("INSERT INTO t (s, x) VALUES ") + QString::fromUtf8(values));
    };
    const auto last = [&] { return AskOne(QStringLiteral("SELECT max(n) FROM t")); };
    EXPECT_EQ(insert("(2, 'а')"), 0);
    EXPECT_EQ(last(), QStringLiteral("2"));
    EXPECT_EQ(insert("(3, '')"), 3315);
    EXPECT_EQ(insert("(4, 'б')"), 0);
    EXPECT_EQ(last(), QStringLiteral("4"));
    workspace->BeginTrans();
    EXPECT_EQ(insert("(5, 'в')"), 0);
    EXPECT_EQ(insert("(6, 'г')"), 0);
    workspace->Rollback();
    EXPECT_EQ(insert("(7, 'д')"), 0);
    EXPECT_EQ(last(), QStringLiteral("7"));
    Run(QStringLiteral("DELETE FROM t"));
    EXPECT_EQ(insert("(8, 'е')"), 0);
    EXPECT_EQ(last(), QStringLiteral("8"));
    Run(QStringLiteral("INSERT INTO t (n, s) VALUES (100, 9)"));
    Reopen();
    EXPECT_EQ(insert("(10, 'ж')"), 0);
    EXPECT_EQ(last(), QStringLiteral("101"));
    Run(QStringLiteral("INSERT INTO t (n, s) VALUES (2147483647, 9)"));
    EXPECT_EQ(insert("(11, 'з')"), 3349);
}
