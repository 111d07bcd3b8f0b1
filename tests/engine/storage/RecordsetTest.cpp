#include "platform/engine/GroupClock.h"
#include "tests/engine/storage/StorageTest.h"

#include <stdexcept>

using test::FailureOf;

namespace {

class Rowset : public test::Storage {
protected:
    Rowset() {
        MakeCards();
        for (int id = 1; id <= 5; ++id)
            Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst) VALUES (%1, '%2', %3)")
                    .arg(id)
                    .arg(QStringList{QStringLiteral("Ёлкин"), QStringLiteral("иванов"),
                                     QStringLiteral("Иванов"), QStringLiteral("Яшин"),
                                     QStringLiteral("Абрамов")}[id - 1])
                    .arg(id == 4 ? QStringLiteral("NULL") : QStringLiteral("'Имя%1'").arg(id % 2)));
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
    set.MoveFirst();
    EXPECT_EQ(set.RecordCount(), 5);
    set.MoveLast();
    set.MoveNext();
    EXPECT_TRUE(set.EndOfFile());
    EXPECT_EQ(FailureOf([&] { set.Fields(0).Value(); }), 3021);
    EXPECT_EQ(FailureOf([&] { set.MoveNext(); }), 3021);

    auto none = Cards("SELECT * FROM a01 WHERE a01clid = 99");
    EXPECT_EQ(none.RecordCount(), 0);
    EXPECT_TRUE(none.EndOfFile());
    for (const auto move :
         {&engine::Recordset::MoveFirst, &engine::Recordset::MoveLast, &engine::Recordset::MoveNext})
        EXPECT_EQ(FailureOf([&] { (none.*move)(); }), 3021);
    EXPECT_FALSE(none.NoMatch());
    none.FindFirst(QStringLiteral("a01clid = 1"));
    EXPECT_TRUE(none.NoMatch());
    EXPECT_EQ(FailureOf([] { engine::Recordset().MoveFirst(); }), 3420);
}

TEST_F(Rowset, FieldsByNameAndPlace) {
    auto set = Cards("SELECT a01clid, a01last, a01frst, a01clid + 1 FROM a01 WHERE a01clid = 4");
    EXPECT_EQ(set.FieldsCount(), 4);
    EXPECT_EQ(set.Fields(u"A01LAST").Name(), QStringLiteral("a01last"));
    EXPECT_EQ(set.Fields(u"a01last").Text(), QStringLiteral("Яшин"));
    EXPECT_TRUE(set.Fields(u"a01frst").Value().IsNull());
    EXPECT_EQ(set.Fields(u"a01frst").Text(), QString());
    EXPECT_EQ(set.Fields(0).Type(), engine::DataType::Long);
    EXPECT_EQ(set.Fields(3).Name(), QStringLiteral("Expr1000"));
    EXPECT_EQ(set.Fields(3).Value().Long(), 5);
    EXPECT_EQ(FailureOf([&] { set.Fields(u"a02cval"); }), 3265);
    EXPECT_EQ(FailureOf([&] { set.Fields(4); }), 3265);
    EXPECT_EQ(FailureOf([&] { set.Fields(-1); }), 3265);

    Run(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (4, 1, '123')"));
    auto joined = Cards("SELECT x.a01clid, y.a01clid, a02cval FROM a01 AS x, a01 AS y, a02 WHERE x.a01clid = "
                        "a02clid AND y.a01clid = a02clid");
    EXPECT_EQ(joined.Fields(0).Name(), QStringLiteral("x.a01clid"));
    EXPECT_EQ(joined.Fields(1).Name(), QStringLiteral("y.a01clid"));
    EXPECT_EQ(joined.Fields(u"a02cval").Text(), QStringLiteral("123"));
}

TEST_F(Rowset, FindFirst) {
    const struct {
        const char* criteria;
        int found; ///< 0: none
        int failure;
    } cases[] = {
        {"a01clid = 3", 3, 0},
        {"a01clid = 3AND a01last = 'ИВАНОВ'", 3, 0},
        {"a01last = 'ИВАНОВ'", 2, 0},
        {"a01last = 'иванов' AND a01frst LIKE 'имя1'", 3, 0},
        {"a01last LIKE 'я*'", 4, 0},
        {"a01last = 'ивано'", 0, 0},
        {"a01frst IS NULL", 4, 0},
        {"a01frst = 'Имя1' AND a01clid > 3", 5, 0},
        {"a01clid = 2 OR a01clid = 5", 2, 0},
        {"NOT a01frst = 'Имя1'", 2, 0},
        {"a01clid = 3.0", 3, 0},
        {"a01clid = 3.5", 0, 0},
        {"TRUE", 1, 0},
        {"a01clid = ", 0, 3077},
        {"a01last = 'x", 0, 3077},
        {"x = 1", 0, 3070},
        {"a01clid = 'три'", 0, 3464},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.criteria);
        auto set = Cards();
        set.MoveLast();
        EXPECT_EQ(FailureOf([&] { set.FindFirst(QString::fromUtf8(row.criteria)); }), row.failure);
        if (row.failure == 0) {
            EXPECT_EQ(set.NoMatch(), row.found == 0);
        }
        EXPECT_EQ(set.Fields(u"a01clid").Value().Long(), row.found == 0 ? 5 : row.found);
    }
}

TEST_F(Rowset, ShowsChangedRowsAtTheNextMove) {
    auto set = Cards("SELECT * FROM a01 ORDER BY a01clid");
    auto fixed = Cards("SELECT DISTINCT a01last FROM a01");
    Run(QStringLiteral("UPDATE a01 SET a01last = 'Новый' WHERE a01clid < 3"));
    Run(QStringLiteral("DELETE FROM a01 WHERE a01clid = 3"));
    Run(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (6)"));
    EXPECT_EQ(set.Fields(u"a01last").Text(), QStringLiteral("Ёлкин")); // fetched before
    set.MoveNext();
    EXPECT_EQ(set.Fields(u"a01last").Text(), QStringLiteral("Новый"));
    set.MoveNext();
    EXPECT_EQ(FailureOf([&] { set.Fields(u"a01last").Value(); }), 3167);
    set.FindFirst(QStringLiteral("a01last = 'новый'"));
    EXPECT_EQ(set.Fields(u"a01clid").Value().Long(), 1);
    set.FindFirst(QStringLiteral("a01clid = 3"));
    EXPECT_TRUE(set.NoMatch());
    set.MoveLast();
    EXPECT_EQ(set.RecordCount(), 5);
    EXPECT_EQ(test::Rows(std::move(fixed)).size(), 4);

    // A row that comes back under its key is the same row.
    Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (3, 'Другой')"));
    set.FindFirst(QStringLiteral("a01last = 'другой'"));
    EXPECT_EQ(set.Fields(u"a01clid").Value().Long(), 3);

    // Another connection's change is seen a short while later.
    const auto other = workspace->OpenDatabase(path);
    engine::DBEngine::Commit();
    other->Execute(QStringLiteral("UPDATE a01 SET a01last = 'Чужой'"), engine::dbFailOnError);
    other->Close();
    engine::GroupClock::Advance(std::chrono::milliseconds(50));
    set.MoveFirst();
    EXPECT_EQ(set.Fields(u"a01last").Text(), QStringLiteral("Чужой"));
}

// Rows that are read again, at the same length and at another, take the room of the old ones: all that these
// leave behind would be beyond what a result may take.
TEST_F(Rowset, ChangesDoNotGatherInTheBuffer) {
    Run(QStringLiteral("CREATE TABLE m (k INTEGER NOT NULL PRIMARY KEY, m LONGTEXT)"));
    const auto text = [](qsizetype size) { return QString(size, u'ж'); };
    for (int row = 0; row < 50; ++row)
        Run(QStringLiteral("INSERT INTO m (k, m) VALUES (%1, '%2')").arg(row).arg(text(120'000)));
    auto set = database->OpenRecordset(QStringLiteral("SELECT * FROM m"));
    for (int round = 0; round < 120; ++round) {
        Run(QStringLiteral("UPDATE m SET m = '%2' WHERE k = %1").arg(round % 50).arg(text(120'000 + round)));
        set.FindFirst(QStringLiteral("k = %1").arg(round % 50));
        ASSERT_EQ(set.Fields(u"m").Text().size(), 120'000 + round);
    }
    for (int row = 0; row < 50; ++row, set.MoveNext()) {
        if (row == 0)
            set.MoveFirst();
        EXPECT_EQ(set.Fields(u"k").Value().Long(), row);
        EXPECT_EQ(set.Fields(u"m").Text(), text(row < 20 ? 120'100 + row : 120'050 + row));
    }
}

TEST_F(Rowset, HoldsItsTableAgainstDefinitions) {
    auto set = Cards();
    for (const char* sql :
         {"ALTER TABLE A01 ADD COLUMN x SHORT", "DROP TABLE a01", "CREATE INDEX i ON a01 (a01last)"})
        EXPECT_EQ(FailureOfRun(QString::fromUtf8(sql)), 3211) << sql;
    auto field = database->TableDefs(QStringLiteral("a01")).Fields(QStringLiteral("a01last"));
    EXPECT_EQ(FailureOf([&] { field.SetAllowZeroLength(true); }), 3211);
    EXPECT_EQ(FailureOfRun(QStringLiteral("ALTER TABLE a02 ADD COLUMN x SHORT")), 0);
    set.Close();
    EXPECT_EQ(FailureOfRun(QStringLiteral("ALTER TABLE a01 ADD COLUMN x SHORT")), 0);
}

// Cells of every kind and length come back as they went in.
TEST_F(Rowset, KeepsEveryValue) {
    Run(QStringLiteral("CREATE TABLE v (i INTEGER, d DOUBLE, m LONGTEXT)"));
    database->TableDefs(QStringLiteral("v")).Fields(QStringLiteral("m")).SetAllowZeroLength(true);
    QStringList expected;
    int number = 0;
    for (const qsizetype length : {0, 1, 50, 8190, 8191, 8192, 8193, 300000}) {
        const int value = QList<int>{0, -1, 4095, 4096, -4096, -4097, 2147483647, -2147483647}[number++];
        const QString text = QString(length, u'ж');
        Run(QStringLiteral("INSERT INTO v (i, d, m) VALUES (%1, %1 / 4, '%2')").arg(value).arg(text));
        expected +=
            QStringLiteral("%1|%2|%3").arg(QString::number(value), engine::Value(value / 4.0).Text(), text);
    }
    Run(QStringLiteral("INSERT INTO v (i) VALUES (NULL)"));
    expected += QStringLiteral("NULL|NULL|NULL");
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM v")), expected);
    Run(QStringLiteral("CREATE TABLE w (w DATETIME, y BIT, b BYTE)"));
    Run(QStringLiteral("INSERT INTO w (w, y, b) VALUES (#12/5/2006 10:30#, TRUE, 255)"));
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM w")),
              QStringList{QStringLiteral("05.12.2006 10:30:00|-1|255")});
}

TEST_F(Rowset, AStatementIsStopped) {
    const QString product =
        QStringLiteral("FROM a01 AS a, a01 AS b, a01 AS c, a01 AS d, a01 AS e, a01 AS f, a01 "
                       "AS g, a01 AS h, a01 AS i, a01 AS j");
    for (const char* list : {"COUNT(*) %1", "a.a01clid %1", "a.a01last %1 ORDER BY b.a01last"}) {
        const QString text = QStringLiteral("SELECT ") + QString::fromUtf8(list).arg(product);
        for (const int last : {1, 100}) {
            int asked = 0;
            const auto stop = [&] { return ++asked >= last; };
            EXPECT_EQ(FailureOf([&] { database->OpenRecordset(text, engine::dbOpenDynaset, stop); }), 32001);
        }
        const auto broken = []() -> bool { throw std::logic_error("stop"); };
        EXPECT_THROW(database->OpenRecordset(text, engine::dbOpenDynaset, broken), std::logic_error);
    }
    EXPECT_EQ(test::Rows(Cards()).size(), 5); // nobody is asked any more
}

TEST_F(Rowset, RefusesWhatReturnsNoRows) {
    for (const char* sql :
         {"DELETE FROM a01", "UPDATE a01 SET a01last = 'x'", "INSERT INTO a01 (a01clid) VALUES (9)",
          "DROP TABLE a01", "SELECT * INTO b FROM a01"})
        EXPECT_EQ(FailureOf([&] { Cards(sql); }), 3219) << sql;
    EXPECT_EQ(FailureOfRun(QStringLiteral("SELECT * FROM a01")), 3065);
    for (const char* sql : {"PRAGMA user_version = 5", "ATTACH 'x' AS y", "VACUUM", "SELEC * FROM a01", ""})
        EXPECT_EQ(FailureOf([&] { Cards(sql); }), 3078) << sql;
    EXPECT_EQ(test::Rows(Cards("A01")).size(), 5);
}
