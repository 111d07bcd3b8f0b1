#include "platform/engine/schema/FileCatalog.h"
#include "platform/engine/sql/Plan.h"
#include "platform/engine/store/Statement.h"
#include "tests/engine/EngineTest.h"

namespace {

const std::vector<engine::LookUp> lookUps = {
    {QStringLiteral("a01"), {QStringLiteral("a01last"), QStringLiteral("a01frst")}},
    {QStringLiteral("a02"), {QStringLiteral("a02clid"), QStringLiteral("a02code")}}};
const QString both = QStringLiteral("a01..a01last a02..a02clid");

// Indexes that the storage keeps for itself: the file has them, and nothing else knows them.
class LookUps : public test::EngineTest {
protected:
    LookUps() {
        engine::DBEngine::SetLookUps(lookUps);
        MakeCards();
        Run(QStringLiteral("INSERT INTO a01 VALUES (7, 'Иванов', 'Пётр')"));
    }
    ~LookUps() override { engine::DBEngine::SetLookUps({}); }

    QString InFile() const {
        engine::DBEngine::Commit();
        EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
        return test::ReadRows(path, QStringLiteral("SELECT name FROM sqlite_schema WHERE type = 'index' AND "
                                                   "name LIKE '%..%' ORDER BY name"))
            .join(u' ');
    }
    /// Those that the file has, behind one more statement that writes.
    QString Kept() {
        Run(QStringLiteral("DELETE FROM a01 WHERE a01clid = 9999"));
        return InFile();
    }
    /// Changes the file as another program may.
    void ChangePlainly(const char* sql) {
        database->Close();
        RunPlainly(sql);
        database = workspace->OpenDatabase(path);
    }
    /// How SQLite goes about what a statement of the dialect becomes.
    QString WayOf(const QString& text) const {
        using namespace engine::sql;
        const engine::Sqlite other(path, path);
        const auto plan = Translate(Scan(text), engine::FileCatalog(other),
                                    text.startsWith(u"SELECT") ? Purpose::OpenRecordset : Purpose::Execute);
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
    for (const auto& [statement, index] : test::Lines(R"(
        SELECT * FROM a01 WHERE a01frst LIKE 'пётр' AND a01last = 'ИВАНОВ' ORDER BY a01frst -> a01..a01last
        DELETE FROM a02 WHERE a02clid = 7 AND a02code = 1 -> a02code=?
        SELECT DISTINCT a02code FROM a02 -> none
        SELECT * FROM a01, a02 WHERE a01clid = a02clid AND a02clid = 7 AND a02code = 1 -> none
    )"))
        EXPECT_EQ(WayOf(statement).contains(index == u"none" ? QStringLiteral("..") : index),
                  index != u"none")
            << statement.toStdString() << '\n'
            << WayOf(statement).toStdString();
}

// The order of rows does not tell that there is an index.
TEST_F(LookUps, LeaveTheOrderOfRows) {
    for (const bool with : {false, true}) {
        engine::DBEngine::SetLookUps(with ? lookUps : std::vector<engine::LookUp>());
        Check(R"(
            DROP TABLE a02
            CREATE TABLE a02 (a02rcid COUNTER, a02clid INTEGER NOT NULL, a02code SHORT NOT NULL)
            INSERT INTO a02 VALUES (1, 5, 3) ; INSERT INTO a02 VALUES (2, 4, 1) ; INSERT INTO a02 VALUES (3, 5, 1) -> 1
            INSERT INTO a02 VALUES (4, 1, 2) ; INSERT INTO a02 VALUES (5, 5, 2) -> 1
            SELECT a02clid FROM a02 -> 5 / 4 / 5 / 1 / 5
            SELECT DISTINCT a02code FROM a02 ; SELECT a02code FROM a02 WHERE a02clid = 5 -> 3 / 1 / 2
            SELECT a02rcid FROM a02 WHERE a02clid IN (5, 4) -> 1 / 2 / 3 / 5
        )");
    }
}

TEST_F(LookUps, FollowEveryDefinition) {
    for (const auto& [statement, kept] : test::Lines(R"(
        CREATE INDEX a01last ON a01 (a01last) -> both
        DROP INDEX a01last ON a01 -> both
        ALTER TABLE a02 ADD COLUMN more SHORT NOT NULL -> both
        ALTER TABLE a02 ALTER COLUMN a02code INTEGER -> both
        ALTER TABLE a01 DROP COLUMN a01frst -> a02..a02clid
        ALTER TABLE a01 ADD COLUMN A01FRST TEXT(50) -> both
        DROP TABLE a02 -> a01..a01last
        CREATE TABLE a02 (a02clid SHORT, a02code SHORT) -> both
    )")) {
        Run(statement);
        EXPECT_EQ(Kept(), kept == u"both" ? both : kept) << statement.toStdString();
    }
    Check("DROP INDEX a01last ON a01 -> #3372");
    workspace->BeginTrans();
    Run(QStringLiteral("DROP TABLE a02"));
    workspace->Rollback();
    EXPECT_EQ(Kept(), both);
}

// A file without them is given them by the first statement that writes, and by no other; where that cannot
// be, no statement fails.
TEST_F(LookUps, ComeToAFileOfBefore) {
    ChangePlainly("DROP INDEX IF EXISTS \"a01..a01last\"; DROP INDEX IF EXISTS \"a02..a02clid\"");
    const QByteArray bytes = test::ReadBytes(path);
    Check("SELECT a01clid FROM a01 WHERE a01last = 'Иванов' AND a01frst = 'Пётр' -> 7");
    Reopen();
    EXPECT_EQ(test::ReadBytes(path), bytes);
    const auto set = database->OpenRecordset(QStringLiteral("SELECT * FROM a01"));
    Check("UPDATE a01 SET a01last = 'Ёлкин' -> 1");
    EXPECT_EQ(InFile(), both);

    // One that has been made in another way is made anew.
    ChangePlainly("DROP INDEX \"a02..a02clid\"; CREATE INDEX \"a02..a02clid\" ON a02 (a02clid)");
    EXPECT_EQ(Kept(), both);
    EXPECT_TRUE(WayOf(QStringLiteral("DELETE FROM a02 WHERE a02clid = 7 AND a02code = 1"))
                    .contains(QStringLiteral("a02code=?")));

    ChangePlainly("DROP INDEX \"a01..a01last\"; CREATE TABLE \"a01..a01last\" (x)");
    Check("UPDATE a01 SET a01last = 'Ёжкин' -> 1");
    engine::DBEngine::Commit();
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT a01last FROM a01")),
              QStringList{QStringLiteral("Ёжкин")});
}
