// Groups of statements, transactions, and other connections and programs beside them.
#include "platform/engine/GroupClock.h"
#include "tests/engine/EngineTest.h"
#include "tests/support/FaultyFiles.h"

#include <functional>

using engine::DBEngine;
using test::FailureOf;

namespace {

class Transaction : public test::EngineTest {
protected:
    Transaction() {
        MakeCards();
        DBEngine::Commit();
    }
    int Insert(int id, const QString& text = QStringLiteral("Иванов")) const {
        return FailureOfRun(
            QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, '%2')").arg(id).arg(text));
    }
    QString Ids() const {
        return Result(QStringLiteral("SELECT a01clid FROM a01 ORDER BY 1")).remove(QStringLiteral("/ "));
    }
    QString Disk() const {
        return test::ReadRows(path, QStringLiteral("SELECT a01clid FROM a01 ORDER BY 1")).join(u' ');
    }
};

} // namespace

TEST_F(Transaction, StatementsBecomeDurableInGroups) {
    Insert(1);
    EXPECT_EQ(Disk(), QString());
    EXPECT_EQ(Ids(), QStringLiteral("1"));
    DBEngine::Commit();
    EXPECT_EQ(Disk(), QStringLiteral("1"));
    Insert(4);
    workspace->BeginTrans();
    EXPECT_EQ(Disk(), QStringLiteral("1 4"));
    Insert(5);
    DBEngine::Commit(); // a box inside a transaction changes nothing
    EXPECT_EQ(Disk(), QStringLiteral("1 4"));
    workspace->CommitTrans();
    EXPECT_EQ(Disk(), QStringLiteral("1 4 5"));

    // A statement that has failed holds no lock.
    Check("INSERT INTO a01 (a01clid) VALUES (NULL) -> #3314");
    const auto other = workspace->OpenDatabase(path);
    other->Execute(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (6)"), engine::dbFailOnError);
    other->Close();
    Insert(7);
    database->Close();
    EXPECT_EQ(Disk(), QStringLiteral("1 4 5 6 7"));
}

// No group lives longer, whatever kind of work follows it.
TEST_F(Transaction, AnOldGroupIsCommittedOnEveryRoad) {
    Insert(1);
    auto set = database->OpenRecordset(QStringLiteral("SELECT * FROM a01"));
    const std::pair<const char*, std::function<void()>> roads[] = {
        {"query", [&] { Check("SELECT * FROM a02 ->"); }},
        {"move", [&] { set.MoveFirst(); }},
        {"find", [&] { set.FindFirst(QStringLiteral("a01clid = 1")); }},
        {"refused action", [&] { Check("DELETE FROM nowhere -> #3078"); }},
    };
    int id = 1;
    for (const auto& [name, work] : roads) {
        DBEngine::Commit();
        Insert(++id);
        work();
        EXPECT_FALSE(Disk().endsWith(QString::number(id))) << name;
        engine::GroupClock::Advance(std::chrono::milliseconds(50));
        work();
        EXPECT_TRUE(Disk().endsWith(QString::number(id))) << name;
    }
}

// Whatever was lost on a disk that is full is told to whoever passes over failures.
TEST_F(Transaction, ALostGroupIsToldUntilItIsTakenNoteOf) {
    Insert(1);
    DBEngine::Commit();
    Run(QStringLiteral("CREATE TABLE extra (x TEXT(5))"));
    int failures = 0;
    {
        const test::SmallDisk noRoom(QFile(path).size());
        for (int id = 2; id < 500; ++id) {
            if (id == 300)
                engine::GroupClock::Advance(std::chrono::milliseconds(50)); // the group is due
            failures += Insert(id, QString(50, u'я')) != 0;
        }
    }
    // There is room again, but the rows before the failure are gone: nothing may go on as if they were there.
    EXPECT_EQ(failures, 200);
    EXPECT_NE(Insert(6000), 0);
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO extra (x) VALUES ('x')")), Insert(6000));
    EXPECT_NE(FailureOf([] { DBEngine::Commit(); }), 0);
    EXPECT_EQ(FailureOf([] { DBEngine::Commit(); }), 0);
    EXPECT_EQ(Insert(6000), 0);
    DBEngine::Commit();
    EXPECT_EQ(Disk(), QStringLiteral("1 6000"));
    EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
}

// SQLite takes the whole transaction back where the journal cannot be written: what follows would stand
// alone.
TEST_F(Transaction, ALossInTheMiddleIsToldUntilItIsTakenBack) {
    database->Close();
    int disk = SQLITE_OK;
    const test::FaultyFiles faulty([&disk](test::FaultyFiles::Call) { return disk; });
    database = workspace->OpenDatabase(path);
    workspace->BeginTrans();
    EXPECT_EQ(Insert(1), 0);
    disk = SQLITE_IOERR_WRITE;
    Check("INSERT INTO a02 (a02clid, a02code, a02cval) SELECT 1, 1, 'x' FROM a01 -> #3043");
    disk = SQLITE_OK;
    EXPECT_EQ(Insert(1), 3043);
    EXPECT_EQ(FailureOf([&] { workspace->CommitTrans(); }), 3043);
    workspace->Rollback();
    EXPECT_EQ(Ids(), QString());
    EXPECT_EQ(Insert(1), 0);
    database->Close();
}

TEST_F(Transaction, DefinitionsTakePart) {
    Insert(1);
    workspace->BeginTrans();
    Check(R"(
        CREATE TABLE t03 (t03rcid COUNTER NOT NULL PRIMARY KEY, t03cval TEXT(50) NOT NULL)
        INSERT INTO t03 (t03cval) VALUES ('x')
        ALTER TABLE a01 ADD COLUMN a01bith TEXT(20)
        UPDATE a01 SET a01bith = '05.12.2006'
        DROP TABLE a02
        SELECT * FROM a01 -> 1|Иванов|NULL|05.12.2006
    )");
    AllowEmpty(QStringLiteral("a01"), {QStringLiteral("a01last")});
    workspace->Rollback();
    Check(R"(
        SELECT * FROM a01 -> 1|Иванов|NULL
        INSERT INTO t03 (t03cval) VALUES ('x') -> #3192
        UPDATE a01 SET a01last = '' -> #3315
    )");
    EXPECT_EQ(database->TableNames(), (QStringList{QStringLiteral("a01"), QStringLiteral("a02")}));

    // All databases of the workspace are bound, also those that come to be within.
    workspace->BeginTrans();
    const auto other = workspace->CreateDatabase(folder.Path(QStringLiteral("other.mdb")), {});
    other->Execute(QStringLiteral("CREATE TABLE t (x TEXT(5))"), engine::dbFailOnError);
    Insert(2);
    workspace->Rollback();
    EXPECT_TRUE(other->TableNames().isEmpty());
    EXPECT_EQ(Ids(), QStringLiteral("1"));
}

TEST_F(Transaction, LevelsNest) {
    EXPECT_EQ(FailureOf([&] { workspace->CommitTrans(); }), 3034);
    workspace->BeginTrans(); // 1
    Insert(1);
    workspace->BeginTrans(); // 2
    workspace->BeginTrans(); // 3: the first statement inside opens both levels
    Insert(2);
    workspace->Rollback();
    EXPECT_EQ(Ids(), QStringLiteral("1"));
    Insert(3);
    workspace->CommitTrans();
    workspace->CommitTrans();
    EXPECT_EQ(Disk(), QStringLiteral("1 3"));

    for (int level = 0; level < 5; ++level)
        workspace->BeginTrans();
    EXPECT_EQ(FailureOf([&] { workspace->BeginTrans(); }), 3003);
}

TEST_F(Transaction, ClosingTheWorkspaceTakesBackWhatIsPending) {
    workspace->BeginTrans();
    Insert(1);
    auto set = database->OpenRecordset(QStringLiteral("SELECT * FROM a01"));
    workspace->Close();
    EXPECT_FALSE(database->IsOpen());
    EXPECT_EQ(Disk(), QString());
    // Whatever is used after its end says so.
    EXPECT_EQ(FailureOf([&] { set.MoveFirst(); }), 3420);
    EXPECT_EQ(FailureOf([&] { database->OpenRecordset(QStringLiteral("SELECT 1")); }), 3420);
    EXPECT_EQ(FailureOf([&] { workspace->OpenDatabase(path); }), 3420);

    const auto standard = DBEngine::Workspaces(0);
    auto again = standard->OpenDatabase(path);
    standard->Close();
    EXPECT_FALSE(again->IsOpen());
    standard->OpenDatabase(path)->Close();
}

// Somebody who reads for long does not stop a run; the group is made durable when the reader has gone.
TEST_F(Transaction, AReaderDelaysTheCommitAndNothingElse) {
    sqlite3* reader = nullptr;
    sqlite3_open(path.toUtf8().constData(), &reader);
    sqlite3_exec(reader, "BEGIN; SELECT * FROM a01", nullptr, nullptr, nullptr);
    QString cards;
    for (int card = 1; card <= 20; ++card) {
        EXPECT_EQ(Insert(card), 0);
        engine::GroupClock::Advance(std::chrono::milliseconds(50)); // the group is due
        cards += QStringLiteral("%1 ").arg(card);
    }
    sqlite3_exec(reader, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(reader);
    EXPECT_EQ(FailureOf([] { DBEngine::Commit(); }), 0);
    EXPECT_EQ(Disk(), cards.trimmed());
}
