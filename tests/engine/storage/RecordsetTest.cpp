#include "platform/engine/GroupClock.h"
#include "tests/engine/EngineTest.h"

using test::FailureOf;

namespace {

class Rowset : public test::EngineTest {
protected:
    Rowset() {
        MakeCards();
        Check(R"(
            INSERT INTO a01 VALUES (1, 'Ёлкин', 'а') ; INSERT INTO a01 VALUES (2, 'иванов', 'б') -> 1
            INSERT INTO a01 VALUES (3, 'Иванов', 'а') ; INSERT INTO a01 VALUES (4, 'Яшин', NULL) ; INSERT INTO a01 VALUES (5, 'Абрамов', 'а') -> 1
        )");
    }
    engine::Recordset Cards(const char* sql = "SELECT * FROM a01") {
        return database->OpenRecordset(QString::fromUtf8(sql));
    }
};

} // namespace

TEST_F(Rowset, MovesAndCounts) {
    auto set = Cards();
    EXPECT_EQ(set.RecordCount(), 1);
    EXPECT_FALSE(set.EndOfFile());
    set.MoveNext();
    EXPECT_EQ(set.RecordCount(), 2);
    set.MoveLast();
    EXPECT_EQ(set.RecordCount(), 5);
    set.MoveNext();
    EXPECT_TRUE(set.EndOfFile());
    EXPECT_EQ(FailureOf([&] { set.Fields(0).Value(); }), 3021);
    EXPECT_EQ(FailureOf([&] { set.MoveNext(); }), 3021);
    EXPECT_EQ(FailureOf([&] { set.Fields(u"a02cval"); }), 3265);

    auto none = Cards("SELECT * FROM a01 WHERE a01clid = 99");
    EXPECT_EQ(none.RecordCount(), 0);
    EXPECT_TRUE(none.EndOfFile());
    EXPECT_EQ(FailureOf([&] { none.MoveLast(); }), 3021);
    none.FindFirst(QStringLiteral("a01clid = 1"));
    EXPECT_TRUE(none.NoMatch());
}

TEST_F(Rowset, ShowsChangedRowsAtTheNextMove) {
    auto set = Cards("SELECT 'x', a01last, a01clid FROM a01 ORDER BY a01clid");
    auto fixed = Cards("SELECT DISTINCT a01last FROM a01");
    Check(R"(
        UPDATE a01 SET a01last = 'Новый' WHERE a01clid < 3
        DELETE FROM a01 WHERE a01clid = 3
        INSERT INTO a01 (a01clid) VALUES (6)
    )");
    EXPECT_EQ(set.Fields(u"a01last").Text(), QStringLiteral("Ёлкин")); // fetched before
    set.MoveNext();
    EXPECT_EQ(set.Fields(u"a01last").Text() + set.Fields(0).Text(), QStringLiteral("Новыйx"));
    set.MoveNext();
    EXPECT_EQ(FailureOf([&] { set.Fields(u"a01last").Value(); }), 3167);
    set.FindFirst(QStringLiteral("a01last = 'новый'"));
    EXPECT_EQ(set.Fields(u"a01clid").Value().Long(), 1);
    set.FindFirst(QStringLiteral("a01clid = 3"));
    EXPECT_TRUE(set.NoMatch());
    set.MoveLast();
    EXPECT_EQ(set.RecordCount(), 5);
    EXPECT_EQ(test::Rows(std::move(fixed)).size(), 4);

    // Another connection's change is seen a short while later.
    const auto other = workspace->OpenDatabase(path);
    engine::DBEngine::Commit();
    other->Execute(QStringLiteral("UPDATE a01 SET a01last = 'Чужой'"), engine::dbFailOnError);
    other->Close();
    engine::GroupClock::Advance(std::chrono::milliseconds(50));
    set.MoveFirst();
    EXPECT_EQ(set.Fields(u"a01last").Text(), QStringLiteral("Чужой"));
}

TEST_F(Rowset, HoldsItsTableAgainstDefinitions) {
    auto set = Cards();
    Check(R"(
        ALTER TABLE A01 ADD COLUMN x SHORT ; DROP TABLE a01 ; CREATE INDEX i ON a01 (a01last) -> #3211
        ALTER TABLE a02 ADD COLUMN x SHORT
    )");
    EXPECT_EQ(FailureOf([&] { AllowEmpty(QStringLiteral("a01"), {QStringLiteral("a01last")}); }), 3211);
    set.Close();
    Check("ALTER TABLE a01 ADD COLUMN x SHORT");
}

// Cells of every kind and length come back as they went in.
TEST_F(Rowset, KeepsEveryValue) {
    Run(QStringLiteral("CREATE TABLE v (i INTEGER, d DOUBLE, w DATETIME, y BIT, b BYTE, m LONGTEXT)"));
    QStringList expected;
    for (const int length : {1, 8191, 300000}) {
        const QString text = QString(QChar(u'\uFEFF')) + QString(length, u'ж'); // no mark of the byte order
        Run(QStringLiteral("INSERT INTO v VALUES (-%1, -0.25, #12/5/2006 10:30#, TRUE, 255, '%2')")
                .arg(QString::number(length), text));
        expected +=
            QStringLiteral("-%1|-0,25|05.12.2006 10:30:00|-1|255|%2").arg(QString::number(length), text);
    }
    EXPECT_EQ(test::Rows(Cards("v")), expected);
}
