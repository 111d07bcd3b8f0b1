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
};

} // namespace

// The order of rows does not tell that there is an index.
TEST_F(LookUps, LeaveTheOrderOfRows) {
    for (const bool with : {false, true}) {
        engine::DBEngine::SetLookUps(with ? lookUps : std::vector<engine::LookUp>());
        Check(R"(
            DROP TABLE a02
            CREATE TABLE a02 (a02rcid COUNTER, a02clid INTEGER NOT NULL, a02code SHORT NOT NULL)
            INSERT INTO a02 VALUES (1, 5, 3) ; INSERT INTO a02 VALUES (2, 4, 1) ; INSERT INTO a02 VALUES (3, 5, 1) -> 1
            SELECT DISTINCT a02code FROM a02 ; SELECT a02code FROM a02 WHERE a02clid = 5 -> 3 / 1
            SELECT a02rcid FROM a02 WHERE a02clid IN (5, 4) -> 1 / 2 / 3
        )");
    }
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
    const auto definition = [this] {
        return test::ReadRows(path,
                              QStringLiteral("SELECT sql FROM sqlite_schema WHERE name = 'a02..a02clid'"));
    };
    const QStringList made = definition();
    ChangePlainly("DROP INDEX \"a02..a02clid\"; CREATE INDEX \"a02..a02clid\" ON a02 (a02clid)");
    EXPECT_EQ(Kept(), both);
    EXPECT_EQ(definition(), made);

    ChangePlainly("DROP INDEX \"a01..a01last\"; CREATE TABLE \"a01..a01last\" (x)");
    Check("UPDATE a01 SET a01last = 'Ёжкин' -> 1");
}
