#include "tests/engine/storage/StorageTest.h"
#include "tests/support/FaultyFiles.h"

namespace {

class Transaction : public test::Storage {};

} // namespace

TEST_F(Transaction, SchemaStatementsTakePart) {
    MakeCards();
    Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (1, 'Иванов')"));
    workspace->BeginTrans();
    Run(QStringLiteral("CREATE TABLE t03 (t03rcid COUNTER NOT NULL PRIMARY KEY, t03cval TEXT(50) NOT NULL)"));
    Run(QStringLiteral("INSERT INTO t03 (t03cval) VALUES ('x')"));
    Run(QStringLiteral("ALTER TABLE a01 ADD COLUMN a01bith TEXT(20)"));
    Run(QStringLiteral("UPDATE a01 SET a01bith = '05.12.2006'"));
    database->TableDefs(QStringLiteral("a01")).Fields(QStringLiteral("a01last")).SetAllowZeroLength(true);
    Run(QStringLiteral("DROP TABLE a02"));
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM a01")),
              QStringList{QStringLiteral("1|Иванов|NULL|05.12.2006")});
    workspace->Rollback();
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM a01")), QStringList{QStringLiteral("1|Иванов|NULL")});
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO t03 (t03cval) VALUES ('x')")), 3192);
    EXPECT_EQ(FailureOfRun(QStringLiteral("UPDATE a01 SET a01last = ''")), 3315);
    EXPECT_EQ(database->TableNames(), (QStringList{QStringLiteral("a01"), QStringLiteral("a02")}));

    workspace->BeginTrans();
    Run(QStringLiteral("ALTER TABLE a01 ADD COLUMN a01bith TEXT(20)"));
    workspace->CommitTrans();
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT * FROM a01")),
              QStringList{QStringLiteral("1|Иванов|NULL|NULL")});
}

TEST_F(Transaction, LevelsNest) {
    MakeCards();
    const auto insert = [&](int id) { Run(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (%1)").arg(id)); };
    const auto ids = [&] {
        return Ask(QStringLiteral("SELECT a01clid FROM a01 ORDER BY a01clid")).join(u' ');
    };
    EXPECT_EQ(test::FailureOf([&] { workspace->CommitTrans(); }), 3034);
    EXPECT_EQ(test::FailureOf([&] { workspace->Rollback(); }), 3034);
    workspace->BeginTrans(); // 1
    insert(1);
    workspace->BeginTrans(); // 2
    workspace->BeginTrans(); // 3: the first statement inside opens both levels
    insert(2);
    workspace->Rollback();
    EXPECT_EQ(ids(), QStringLiteral("1"));
    insert(3);
    workspace->CommitTrans();
    workspace->BeginTrans();
    insert(4);
    workspace->Rollback();
    EXPECT_EQ(ids(), QStringLiteral("1 3"));
    workspace->CommitTrans();
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT a01clid FROM a01")).join(u' '),
              QStringLiteral("1 3"));

    for (int level = 0; level < 5; ++level)
        workspace->BeginTrans();
    EXPECT_EQ(test::FailureOf([&] { workspace->BeginTrans(); }), 3003);
    insert(5);
    for (int level = 0; level < 5; ++level)
        workspace->Rollback();
    EXPECT_EQ(ids(), QStringLiteral("1 3"));
}

// SQLite takes the whole transaction back where the journal cannot be written: what follows would stand
// alone.
TEST_F(Transaction, ALossInTheMiddleIsToldUntilItIsTakenBack) {
    MakeCards();
    database->Close();
    int disk = SQLITE_OK;
    const test::FaultyFiles faulty([&disk](test::FaultyFiles::Call) { return disk; });
    database = workspace->OpenDatabase(path);
    const auto insert = [&] { return FailureOfRun(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (1)")); };
    workspace->BeginTrans();
    EXPECT_EQ(insert(), 0);
    disk = SQLITE_IOERR_WRITE;
    EXPECT_EQ(
        FailureOfRun(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) SELECT 1, 1, 'x' FROM a01")),
        3043);
    disk = SQLITE_OK;
    EXPECT_EQ(insert(), 3043);
    EXPECT_EQ(test::FailureOf([&] { workspace->CommitTrans(); }), 3043);
    workspace->Rollback();
    EXPECT_TRUE(Ask(QStringLiteral("SELECT * FROM a01")).isEmpty());
    EXPECT_EQ(insert(), 0);
    database->Close();
}

TEST_F(Transaction, BindsAllDatabasesOfTheWorkspace) {
    MakeCards();
    const QString otherPath = folder.Path(QStringLiteral("other.mdb"));
    workspace->BeginTrans();
    const auto other = workspace->CreateDatabase(otherPath, {});
    other->Execute(QStringLiteral("CREATE TABLE t (x TEXT(5))"), engine::dbFailOnError);
    Run(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (1)"));
    workspace->Rollback();
    EXPECT_TRUE(other->TableNames().isEmpty());
    EXPECT_TRUE(Ask(QStringLiteral("SELECT * FROM a01")).isEmpty());
}

TEST_F(Transaction, ClosingTheWorkspaceTakesBackWhatIsPending) {
    MakeCards();
    workspace->BeginTrans();
    Run(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (1)"));
    auto set = database->OpenRecordset(QStringLiteral("SELECT * FROM a01"));
    workspace->Close();
    EXPECT_FALSE(database->IsOpen());
    EXPECT_TRUE(test::ReadRows(path, QStringLiteral("SELECT * FROM a01")).isEmpty());
    // Whatever is used after its end says so.
    EXPECT_EQ(test::FailureOf([&] { set.MoveFirst(); }), 3420);
    EXPECT_EQ(test::FailureOf([&] { set.Close(); }), 3420);
    EXPECT_EQ(test::FailureOf([&] { database->Close(); }), 3420);
    EXPECT_EQ(test::FailureOf([&] { database->OpenRecordset(QStringLiteral("SELECT 1")); }), 3420);
    EXPECT_EQ(test::FailureOf([&] { workspace->Close(); }), 3420);
    EXPECT_EQ(test::FailureOf([&] { workspace->OpenDatabase(path); }), 3420);

    const auto standard = engine::DBEngine::Workspaces(0);
    auto again = standard->OpenDatabase(path);
    standard->Close();
    EXPECT_FALSE(again->IsOpen());
    again = standard->OpenDatabase(path);
    again->Close();
    EXPECT_EQ(test::FailureOf([&] { engine::DBEngine::Workspaces(1); }), 3265);
}
