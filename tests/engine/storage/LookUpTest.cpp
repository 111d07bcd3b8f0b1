#include "platform/engine/schema/FileCatalog.h"
#include "platform/engine/sql/Plan.h"
#include "platform/engine/store/Statement.h"
#include "tests/engine/storage/StorageTest.h"

namespace {

const engine::LookUp cards{QStringLiteral("a01"), {QStringLiteral("a01last"), QStringLiteral("a01frst")}};
const engine::LookUp phones{QStringLiteral("a02"), {QStringLiteral("a02clid"), QStringLiteral("a02code")}};
const QString both = QStringLiteral("a01..a01last a02..a02clid");

// Indexes that the storage keeps for itself: the file has them, and nothing else knows them.
class LookUps : public test::Storage {
protected:
    LookUps() {
        engine::DBEngine::SetLookUps({cards, phones});
        MakeCards();
        Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (7, 'Иванов', 'Пётр')"));
    }
    ~LookUps() override { engine::DBEngine::SetLookUps({}); }

    /// Those that the file has, behind one more statement that writes.
    QString Kept() {
        Run(QStringLiteral("DELETE FROM a01 WHERE a01clid = 9999"));
        return InFile();
    }
    QString InFile() const {
        engine::DBEngine::Commit();
        EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
        return test::ReadRows(path, QStringLiteral("SELECT name FROM sqlite_schema WHERE type = 'index' AND "
                                                   "name LIKE '%..%' ORDER BY name"))
            .join(u' ');
    }
    /// Changes the file as another program may.
    void RunPlain(const char* sql) const {
        engine::DBEngine::Commit();
        engine::Sqlite(path, path).Run(sql, engine::Doing::Define);
    }
    /// How SQLite goes about what a statement of the dialect becomes.
    QString WayOf(const QString& text, engine::sql::Purpose purpose) const {
        const engine::Sqlite other(path, path);
        const auto plan =
            engine::sql::Translate(engine::sql::Scan(text), engine::FileCatalog(other), purpose);
        engine::Statement steps(other, QStringLiteral("EXPLAIN QUERY PLAN ") + plan.text);
        QString way;
        while (steps.Next())
            way += steps.Text(3) + u'\n';
        return way;
    }
};

} // namespace

TEST_F(LookUps, ServeEqualityAlone) {
    EXPECT_EQ(Kept(), both);
    const struct {
        const char* sql;
        const char* index;
    } cases[] = {
        {"SELECT * FROM a01 WHERE a01frst LIKE 'пётр' AND a01last = 'ИВАНОВ'", "a01..a01last"},
        {"SELECT * FROM a01 WHERE a01last = 'Иванов' AND a01clid > 3 ORDER BY a01frst", "a01..a01last"},
        {"SELECT * FROM a01 WHERE a01last = 'Иванов' OR a01frst = 'Пётр'", nullptr},
        {"SELECT * FROM a01 WHERE a01last LIKE 'Ив*'", nullptr},
        {"SELECT * FROM a01 WHERE a01frst = 'Пётр'", nullptr},
        {"SELECT * FROM a02 WHERE a02clid = 7", "a02..a02clid"},
        {"DELETE FROM a02 WHERE a02clid = 7 AND a02code = 1", "a02..a02clid"},
        {"UPDATE a02 SET a02cval = 'x' WHERE a02clid = 7 AND a02code = 1", "a02..a02clid"},
        {"SELECT a02clid FROM a02", nullptr},
        {"SELECT DISTINCT a02code FROM a02", nullptr},
        {"SELECT a02clid FROM a02 WHERE a02clid > 3", nullptr},
        {"SELECT a01last, a01frst FROM a01 WHERE a01last IS NOT NULL", nullptr},
        {"SELECT a02code, count(*) FROM a02 WHERE a02clid = 7 GROUP BY a02code", nullptr},
        {"SELECT TOP 1 a02code FROM a02 WHERE a02clid = 7", nullptr},
        {"SELECT a02code FROM a02 WHERE a02clid = 7 UNION ALL SELECT a02code FROM a02", nullptr},
        {"SELECT * FROM a01, a02 WHERE a01clid = a02clid AND a02clid = 7 AND a02code = 1", nullptr},
        {"SELECT * FROM a01 WHERE a01clid = (SELECT max(a02code) FROM a02 WHERE a02clid = 7)", nullptr},
    };
    for (const auto& one : cases) {
        const QString text = QString::fromUtf8(one.sql);
        const QString way = WayOf(text, text.startsWith(u"SELECT") ? engine::sql::Purpose::OpenRecordset
                                                                   : engine::sql::Purpose::Execute);
        EXPECT_TRUE(one.index == nullptr ? !way.contains(QLatin1String(".."))
                                         : way.contains(QLatin1String(one.index)))
            << one.sql << '\n'
            << way.toStdString();
    }
}

// The order of rows does not tell that there is an index.
TEST_F(LookUps, LeaveTheOrderOfRows) {
    const char* const questions[] = {
        "SELECT a02clid FROM a02",
        "SELECT DISTINCT a02code FROM a02",
        "SELECT a02code FROM a02 WHERE a02clid = 5",
        "SELECT * FROM a02 WHERE a02clid IN (5, 4)",
        "SELECT * FROM a02 WHERE a02clid BETWEEN 1 AND 5 ORDER BY a02cval",
    };
    QStringList before;
    for (const bool with : {false, true}) {
        engine::DBEngine::SetLookUps(with ? std::vector{phones} : std::vector<engine::LookUp>());
        Run(QStringLiteral("DROP TABLE a02"));
        Run(QStringLiteral(
            "CREATE TABLE a02 (a02rcid COUNTER, a02clid INTEGER NOT NULL, a02code SHORT NOT NULL, a02cval "
            "TEXT(50))"));
        for (const char* row : {"5, 3", "4, 1", "5, 1", "1, 2", "5, 2"})
            Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, 'x')")
                    .arg(QLatin1String(row)));
        QStringList rows;
        for (const char* question : questions)
            rows += Ask(QString::fromUtf8(question)).join(u' ');
        if (with) {
            EXPECT_EQ(rows, before);
        }
        before = rows;
    }
}

TEST_F(LookUps, FollowEveryDefinition) {
    const struct {
        const char* sql;
        const char* kept;
    } steps[] = {
        {"CREATE INDEX a01last ON a01 (a01last)", nullptr},
        {"DROP INDEX a01last ON a01", nullptr},
        {"ALTER TABLE a02 ADD COLUMN more SHORT NOT NULL", nullptr},
        {"ALTER TABLE a02 ALTER COLUMN a02code INTEGER", nullptr},
        {"ALTER TABLE a01 DROP COLUMN a01frst", "a02..a02clid"},
        {"ALTER TABLE a01 ADD COLUMN A01FRST TEXT(50)", nullptr},
        {"DROP TABLE a02", "a01..a01last"},
        {"CREATE TABLE a02 (a02clid SHORT, a02code SHORT)", nullptr},
    };
    for (const auto& step : steps) {
        Run(QString::fromUtf8(step.sql));
        EXPECT_EQ(Kept(), step.kept == nullptr ? both : QString::fromUtf8(step.kept)) << step.sql;
    }
    EXPECT_EQ(FailureOfRun(QStringLiteral("DROP INDEX a01last ON a01")), 3372);
    EXPECT_EQ(Ask(QStringLiteral("SELECT a01clid FROM a01 WHERE a01last LIKE 'иванов'")),
              QStringList{QStringLiteral("7")});
    workspace->BeginTrans();
    Run(QStringLiteral("DROP TABLE a02"));
    workspace->Rollback();
    EXPECT_EQ(Kept(), both);
}

// A file without them is given them by the first statement that writes, and by no other.
TEST_F(LookUps, ComeToAFileOfBefore) {
    RunPlain("DROP INDEX IF EXISTS \"a01..a01last\"; DROP INDEX IF EXISTS \"a02..a02clid\"");
    Reopen();
    const QByteArray bytes = test::ReadBytes(path);
    Ask(QStringLiteral("SELECT * FROM a01 WHERE a01last = 'Иванов' AND a01frst = 'Пётр'"));
    database->Close();
    EXPECT_EQ(test::ReadBytes(path), bytes);
    database = workspace->OpenDatabase(path);
    const auto set = database->OpenRecordset(QStringLiteral("SELECT * FROM a01"));
    Run(QStringLiteral("UPDATE a01 SET a01last = 'Ёлкин'"));
    EXPECT_EQ(database->RecordsAffected(), 1);
    EXPECT_EQ(InFile(), both);

    // One that has been made in another way is made anew.
    RunPlain("DROP INDEX \"a02..a02clid\"; CREATE INDEX \"a02..a02clid\" ON a02 (a02clid)");
    Reopen();
    EXPECT_EQ(Kept(), both);
    EXPECT_TRUE(WayOf(QStringLiteral("DELETE FROM a02 WHERE a02clid = 7 AND a02code = 1"),
                      engine::sql::Purpose::Execute)
                    .contains(QLatin1String("a02code=?")));
}

TEST_F(LookUps, FailNoStatement) {
    RunPlain("DROP INDEX IF EXISTS \"a01..a01last\"; CREATE TABLE \"a01..a01last\" (x)");
    Reopen();
    Run(QStringLiteral("UPDATE a01 SET a01last = 'Ёлкин'"));
    engine::DBEngine::Commit();
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT a01last FROM a01")),
              QStringList{QStringLiteral("Ёлкин")});
}
