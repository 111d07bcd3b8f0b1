#include "tests/engine/storage/StorageTest.h"

#include <QRandomGenerator>

namespace {

// Statements of one shape on a large table go by an index in memory. It must tell the truth after every kind
// of change; the same question in a form that the index cannot answer is the yardstick.
class KeyIndex : public test::Storage {
protected:
    KeyIndex() {
        MakeCards();
        workspace->BeginTrans();
        for (int row = 0; row < 400; ++row) {
            Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (%1, '%2', '%3')")
                    .arg(row)
                    .arg(Last(row), First(row)));
            Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, %2, 'т%3')")
                    .arg(row / 4)
                    .arg(row % 4)
                    .arg(row));
        }
        workspace->CommitTrans();
        Check();
        Check();
    }
    static QString Last(int row) { return QStringLiteral("Иванов%1").arg(row % 37); }
    static QString First(int row) { return QStringLiteral("Имя%1").arg(row % 7); }

    void Check() {
        for (const int probe : {0, 3, 11, 36, 99}) {
            const QString names =
                QStringLiteral("SELECT a01clid FROM a01 WHERE a01frst LIKE '%1' AND a01last LIKE '%2'");
            EXPECT_EQ(Ask(names.arg(First(probe).toUpper(), Last(probe))),
                      Ask(QStringLiteral("SELECT a01clid FROM a01 WHERE a01frst & '+' & a01last = '%1+%2'")
                              .arg(First(probe), Last(probe))));
            EXPECT_EQ(
                Ask(QStringLiteral("SELECT a02rcid, a02cval FROM a02 WHERE a02clid = %1 AND a02code = 1")
                        .arg(probe)),
                Ask(QStringLiteral(
                        "SELECT a02rcid, a02cval FROM a02 WHERE a02clid + 0 = %1 AND a02code + 0 = 1")
                        .arg(probe)));
        }
    }
};

} // namespace

TEST_F(KeyIndex, StaysTrueAfterEveryChange) {
    const char* const changes[] = {
        "INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (9001, 'ИВАНОВ3', 'имя3')",
        "INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (3, 1, 'новый')",
        "UPDATE a01 SET a01last = 'Иванов11' WHERE a01clid = 9001",
        "UPDATE a01 SET a01clid = 9002 WHERE a01clid = 9001",
        "UPDATE a01 SET a01last = NULL WHERE a01clid = 36",
        "UPDATE a02 SET a02clid = 11 WHERE a02clid = 3 AND a02code = 1",
        "UPDATE a02 SET a02clid = 99, a02code = 1",
        "DELETE FROM a02 WHERE a02clid = 99 AND a02code = 1 AND a02rcid > 10",
        "DELETE FROM a01 WHERE a01last LIKE 'Иванов3'",
        "INSERT INTO a02 (a02clid, a02code, a02cval) SELECT a01clid, 1, 'x' FROM a01",
        "DELETE FROM a02",
        "INSERT INTO a02 (a02clid, a02code, a02cval) SELECT a01clid, 1, 'x' FROM a01",
        "ALTER TABLE a02 ADD COLUMN more SHORT",
        "ALTER TABLE a02 ALTER COLUMN a02code INTEGER",
        "DROP TABLE a01; CREATE TABLE a01 (a01last TEXT(50), a01clid SHORT, a01frst TEXT(50))",
        "INSERT INTO a01 (a01clid, a01last, a01frst) SELECT a02clid, 'Иванов3', 'Имя3' FROM a02",
    };
    for (const char* sql : changes) {
        SCOPED_TRACE(sql);
        const auto change = [&] {
            for (const QString& statement : QString::fromUtf8(sql).split(u';'))
                Run(statement);
        };
        workspace->BeginTrans();
        change();
        Check();
        Check();
        workspace->Rollback();
        Check();
        change();
        Check();
        Check();
    }
}

TEST_F(KeyIndex, StaysTrueAfterFailuresAndOthers) {
    EXPECT_EQ(FailureOfRun(QStringLiteral("UPDATE a01 SET a01clid = 5 WHERE a01last LIKE 'Иванов3'")), 3022);
    Check();
    const auto other = workspace->OpenDatabase(path);
    other->Execute(QStringLiteral("UPDATE a02 SET a02clid = 3 WHERE a02clid = 11"), engine::dbFailOnError);
    engine::DBEngine::Commit();
    Check(); // at once: what the statement itself would see
    Check();
    other->Execute(QStringLiteral("UPDATE a02 SET a02clid = 36 WHERE a02clid = 99"), engine::dbFailOnError);
    other->Close();
    Run(QStringLiteral("UPDATE a02 SET a02cval = 'найден' WHERE a02clid = 3 AND a02code = 1"));
    EXPECT_EQ(database->RecordsAffected(), 2);
    Check();
}

TEST_F(KeyIndex, ManyCandidatesAndRandomChanges) {
    QRandomGenerator random(7);
    Run(QStringLiteral("UPDATE a02 SET a02clid = 3, a02code = 1 WHERE a02rcid > 100"));
    Check();
    for (int step = 0; step < 150; ++step) {
        const int row = random.bounded(400);
        switch (random.bounded(4)) {
        case 0:
            Run(QStringLiteral("DELETE FROM a01 WHERE a01clid = %1").arg(row));
            break;
        case 1:
            database->Execute(
                QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (%1, '%2', '%3')")
                    .arg(row)
                    .arg(Last(row * 3), First(row)));
            break;
        case 2:
            Run(QStringLiteral("UPDATE a02 SET a02clid = %1 WHERE a02rcid = %2")
                    .arg(row / 4)
                    .arg(random.bounded(400)));
            break;
        default:
            Run(QStringLiteral("DELETE FROM a02 WHERE a02clid = %1 AND a02code = 1").arg(row / 4));
        }
        Check();
    }
}
