// What a plan tells the connection beside its text: parameters, keys, texts of rows.
#include "platform/engine/sql/Plan.h"
#include "platform/engine/sql/Words.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using engine::DataType;
using namespace engine::sql;

class SmallCatalog : public Catalog {
public:
    SmallCatalog() {
        TableInfo people;
        people.name = QStringLiteral("a01");
        people.columns = {Column("a01clid", DataType::Long, 0), Column("a01last", DataType::Text, 50),
                          Column("a01bith", DataType::Text, 20)};
        people.indexes = {{QStringLiteral("pk"), {QStringLiteral("a01clid")}, true, true, false}};
        TableInfo phones;
        phones.name = QStringLiteral("a02");
        phones.columns = {Column("a02rcid", DataType::Counter, 0), Column("a02clid", DataType::Long, 0),
                          Column("a02code", DataType::Short, 0), Column("a02cval", DataType::Text, 50)};
        phones.indexes = {{QStringLiteral("pk"), {QStringLiteral("a02rcid")}, true, true, false}};
        TableInfo odd;
        odd.name = QStringLiteral("odd");
        odd.columns = {Column("rowid", DataType::Text, 10), Column("u", DataType::Text, 10)};
        odd.columns[1].unique = true;
        m_tables = {people, phones, odd};
    }

    const TableInfo* FindTable(QStringView name) const override {
        const auto found =
            std::ranges::find_if(m_tables, [&](const TableInfo& t) { return SameName(t.name, name); });
        return found == m_tables.end() ? nullptr : &*found;
    }

private:
    static ColumnInfo Column(const char* name, DataType type, int size) {
        ColumnInfo column;
        column.name = QString::fromLatin1(name);
        column.type = type;
        column.size = size;
        return column;
    }
    std::vector<TableInfo> m_tables;
};

Plan PlanOf(const char* sql, Purpose purpose) {
    static const SmallCatalog catalog;
    return Translate(Scan(QString::fromUtf8(sql)), catalog, purpose);
}

TEST(TranslationTest, KeysOfOneTable) {
    struct Case {
        const char* sql;
        std::vector<int> columns;
    };
    static const Case cases[] = {
        {"SELECT * FROM a02 WHERE a02clid = 1", {1}},
        {"SELECT * FROM a02 AS x WHERE x.a02clid = 1 AND 2 = x.a02code", {1, 2}},
        {"SELECT * FROM a01 WHERE a01last LIKE 'a' AND a01bith = 'b'", {1, 2}},
        {"SELECT * FROM a01 WHERE a01last LIKE 'a*'", {}},
        {"SELECT * FROM a01 WHERE NOT a01last LIKE 'a'", {}},
        {"SELECT * FROM a01 WHERE a01last NOT LIKE 'a'", {}},
        {"SELECT * FROM a02 WHERE a02clid = 1 OR a02code = 2", {}},
        {"SELECT * FROM a02 WHERE a02clid = 1 AND (a02code = 2 OR a02code = 3)", {1}},
        {"SELECT * FROM a02 WHERE a02clid = 1.5", {}},
        {"SELECT * FROM a02 WHERE a02rcid = 1 AND a02clid = 2", {}}, // SQLite's own key decides
        {"SELECT * FROM odd WHERE u = 'x'", {}},
        {"SELECT * FROM a01, a02 WHERE a02clid = 1", {}},
        {"SELECT COUNT(*) FROM a02 WHERE a02clid = 1", {1}},
        {"SELECT * FROM a02 WHERE a02clid > 1", {}},
    };
    for (const Case& one : cases) {
        const Plan plan = PlanOf(one.sql, Purpose::OpenRecordset);
        std::vector<int> columns;
        for (const KeyCondition& key : plan.keys)
            columns.push_back(key.column);
        EXPECT_EQ(columns, one.columns) << one.sql;
        EXPECT_EQ(plan.keyedText.isEmpty(), one.columns.empty()) << one.sql;
        const QString rows = QStringLiteral("json_each(?%1)").arg(plan.parameters.size() + 1);
        EXPECT_EQ(plan.keyedText.contains(rows), !one.columns.empty()) << one.sql;
        const QString row = QStringLiteral(" = ?%1").arg(plan.parameters.size() + 1);
        EXPECT_EQ(plan.keyedRowText.contains(row), !one.columns.empty()) << one.sql;
    }
}

TEST(TranslationTest, KeysOfActionStatements) {
    const Plan update =
        PlanOf("UPDATE a02 SET a02cval = 'x' WHERE a02clid = 5 AND a02code = 1", Purpose::Execute);
    ASSERT_EQ(update.keys.size(), 2U);
    EXPECT_EQ(update.keys[0].literal, 1);
    EXPECT_TRUE(update.keyedText.contains(QStringLiteral("json_each(?4)")));
    EXPECT_TRUE(update.keyedIgnoreText.startsWith(QStringLiteral("UPDATE OR IGNORE ")));
    const Plan remove = PlanOf("DELETE FROM a02 WHERE a02clid = 5", Purpose::Execute);
    EXPECT_EQ(remove.keyTable, QStringLiteral("a02"));
    EXPECT_FALSE(remove.deletesAll);
    EXPECT_TRUE(PlanOf("DELETE FROM a02", Purpose::Execute).deletesAll);
}

TEST(TranslationTest, RowTexts) {
    struct Case {
        const char* sql;
        bool plain;
    };
    static const Case cases[] = {
        {"SELECT * FROM a01", true},
        {"SELECT a01clid + 1, 'x' FROM a01 WHERE a01last LIKE 'y*' ORDER BY a01last", true},
        {"a01", true},
        {"SELECT DISTINCT a01last FROM a01", false},
        {"SELECT TOP 1 * FROM a01", false},
        {"SELECT COUNT(*) FROM a01", false},
        {"SELECT a01last FROM a01 GROUP BY a01last", false},
        {"SELECT * FROM a01, a02", false},
        {"SELECT * FROM (SELECT * FROM a01) AS q", false},
        {"SELECT a01last FROM a01 UNION SELECT a01last FROM a01", false},
        {"SELECT 1", false},
    };
    for (const Case& one : cases) {
        const Plan plan = PlanOf(one.sql, Purpose::OpenRecordset);
        EXPECT_EQ(!plan.rowText.isEmpty(), one.plain) << one.sql;
        if (one.plain) {
            EXPECT_TRUE(plan.rowText.endsWith(QStringLiteral(" = ?%1").arg(plan.parameters.size() + 1)))
                << one.sql;
        }
    }
    // A column of that name hides SQLite's row number.
    EXPECT_TRUE(PlanOf("SELECT * FROM odd", Purpose::OpenRecordset)
                    .rowText.contains(QStringLiteral("._rowid_ = ?1")));
}

TEST(TranslationTest, Parameters) {
    const Plan insert = PlanOf("INSERT INTO a01 (a01last, a01clid) VALUES ('x', 7)", Purpose::Execute);
    ASSERT_EQ(insert.parameters.size(), 2U);
    ASSERT_TRUE(insert.parameters[0].column.has_value());
    EXPECT_EQ(insert.parameters[0].column->name, QStringLiteral("a01last"));
    EXPECT_EQ(insert.parameters[0].table, QStringLiteral("a01"));
    EXPECT_EQ(insert.parameters[1].literal, 1);
    EXPECT_FALSE(insert.setsCounter);
    EXPECT_TRUE(PlanOf("INSERT INTO a02 VALUES (1, 2, 3, 'x')", Purpose::Execute).setsCounter);
    // Bounds stand twice in the text and are bound once.
    const Plan between = PlanOf("SELECT * FROM a01 WHERE a01clid BETWEEN 5 AND 1", Purpose::OpenRecordset);
    EXPECT_EQ(between.parameters.size(), 2U);
    EXPECT_FALSE(between.parameters[0].column.has_value());
}

TEST(TranslationTest, EqualitiesOfCriteria) {
    const std::vector<ResultColumn> columns = {{QStringLiteral("a02clid"), DataType::Long},
                                               {QStringLiteral("a02cval"), DataType::Text}};
    struct Case {
        const char* criteria;
        std::size_t equalities;
        bool exact;
    };
    static const Case cases[] = {
        {"a02clid= 5AND a02cval = 'x'", 2, true},
        {"a02clid = 5 AND a02cval LIKE 'x'", 2, true},
        {"a02clid = 5 AND a02cval LIKE 'x*'", 1, false},
        {"a02clid = 5 OR a02cval = 'x'", 0, false},
        {"a02clid > 5", 0, false},
        {"a02cval = 'x'", 1, true},
    };
    for (const Case& one : cases) {
        const CriteriaPlan plan = TranslateCriteria(Scan(QString::fromLatin1(one.criteria)), columns);
        EXPECT_EQ(plan.equalities.size(), one.equalities) << one.criteria;
        EXPECT_EQ(plan.exact, one.exact) << one.criteria;
    }
}

} // namespace
