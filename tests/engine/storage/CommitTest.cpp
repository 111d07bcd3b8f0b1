#include "platform/engine/GroupClock.h"
#include "tests/engine/storage/StorageTest.h"
#include "tests/support/System.h"

#include <QFile>

#include <functional>

namespace {

class Commit : public test::Storage {
protected:
    Commit() {
        MakeCards();
        engine::DBEngine::Commit();
    }
    void Insert(int id) {
        Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, 'Иванов')").arg(id));
    }
    QString Disk() const {
        return test::ReadRows(path, QStringLiteral("SELECT a01clid FROM a01 ORDER BY 1")).join(u' ');
    }
};

} // namespace

TEST_F(Commit, StatementsBecomeDurableInGroups) {
    Insert(1);
    EXPECT_EQ(Disk(), QString());
    EXPECT_EQ(Ask(QStringLiteral("SELECT a01clid FROM a01")), QStringList{QStringLiteral("1")});
    engine::DBEngine::Commit();
    EXPECT_EQ(Disk(), QStringLiteral("1"));
    EXPECT_FALSE(QFile::exists(path + QStringLiteral("-journal")));

    Insert(4);
    workspace->BeginTrans();
    EXPECT_EQ(Disk(), QStringLiteral("1 4"));
    Insert(5);
    engine::DBEngine::Commit(); // a box inside a transaction changes nothing
    EXPECT_EQ(Disk(), QStringLiteral("1 4"));
    workspace->CommitTrans();
    EXPECT_EQ(Disk(), QStringLiteral("1 4 5"));

    Insert(6);
    database->Close();
    EXPECT_EQ(Disk(), QStringLiteral("1 4 5 6"));
}

// No group lives longer, whatever kind of work follows it.
TEST_F(Commit, AnOldGroupIsCommittedOnEveryRoad) {
    Insert(1);
    auto set = database->OpenRecordset(QStringLiteral("SELECT * FROM a01"));
    const std::pair<const char*, std::function<void()>> roads[] = {
        {"query", [&] { Ask(QStringLiteral("SELECT * FROM a02")); }},
        {"move", [&] { set.MoveFirst(); }},
        {"find", [&] { set.FindFirst(QStringLiteral("a01clid = 1")); }},
        {"tables", [&] { database->TableNames(); }},
        {"refused action", [&] { FailureOfRun(QStringLiteral("DELETE FROM nowhere")); }},
        {"action", [&] { Run(QStringLiteral("DELETE FROM a02")); }},
    };
    int id = 1;
    for (const auto& [name, work] : roads) {
        engine::DBEngine::Commit();
        Insert(++id);
        work();
        EXPECT_FALSE(Disk().endsWith(QString::number(id))) << name;
        engine::GroupClock::Advance(std::chrono::milliseconds(50));
        work();
        EXPECT_TRUE(Disk().endsWith(QString::number(id))) << name;
    }
}

TEST_F(Commit, AFailedStatementDoesNotHoldALock) {
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (NULL)")), 3314);
    const auto other = workspace->OpenDatabase(path);
    other->Execute(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (1)"), engine::dbFailOnError);
    other->Close();
    EXPECT_EQ(Disk(), QStringLiteral("1"));
}

TEST_F(Commit, ALostGroupIsToldToWhoeverPassesOverFailures) {
    const QString text = QString(50, u'я');
    const auto insert = [&](int id) {
        return FailureOfRun(
            QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, '%2')").arg(id).arg(text));
    };
    EXPECT_EQ(insert(1), 0);
    engine::DBEngine::Commit();
    Run(QStringLiteral("CREATE TABLE extra (x TEXT(5))"));
    int failures = 0;
    {
        const test::SmallDisk noRoom(QFile(path).size());
        for (int id = 2; id < 500; ++id) {
            if (id == 300)
                engine::GroupClock::Advance(std::chrono::milliseconds(50)); // the group is due
            failures += insert(id) != 0;
        }
    }
    // There is room again, but the rows before the failure are gone: nothing may go on as if they were there.
    EXPECT_EQ(failures, 200);
    EXPECT_NE(insert(6000), 0);
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO extra (x) VALUES ('x')")), insert(6000));
    EXPECT_NE(test::FailureOf([] { engine::DBEngine::Commit(); }), 0);
    EXPECT_EQ(test::FailureOf([] { engine::DBEngine::Commit(); }), 0);
    EXPECT_EQ(insert(6000), 0);
    engine::DBEngine::Commit();
    EXPECT_TRUE(Disk().startsWith(QStringLiteral("1 ")) && Disk().endsWith(QStringLiteral(" 6000")));
    EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
}

TEST_F(Commit, AGroupThatCannotBeCommittedIsToldOnceAtTheEnd) {
    Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (1, 'x')"));
    engine::DBEngine::Commit();
    {
        const test::SmallDisk noRoom(QFile(path).size());
        workspace->BeginTrans();
        const QString text = QString(50, u'я');
        for (int id = 2; id < 200; ++id)
            Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, '%2')").arg(id).arg(text));
        EXPECT_EQ(test::FailureOf([&] { workspace->CommitTrans(); }), 3043);
        workspace->Rollback();
        EXPECT_EQ(test::FailureOf([&] { workspace->Rollback(); }), 3034);
    }
    EXPECT_EQ(Ask(QStringLiteral("SELECT a01clid FROM a01")), QStringList{QStringLiteral("1")});
    Insert(2);
    engine::DBEngine::Commit();
    EXPECT_EQ(Disk(), QStringLiteral("1 2"));
}
