// What a plan tells the connection beside its text: parameters, keys, texts of rows.
#include "platform/engine/schema/Names.h"
#include "platform/engine/sql/Plan.h"
#include "platform/runtime/Failure.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace engine;
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

// Rows of one table come with their number, by which they are read again.
TEST(TranslationTest, WrittenTexts) {
    struct Case {
        const char* sql;
        const char* text;
    };
    static const Case cases[] = {
        {"odd", R"(SELECT q1."rowid" AS c0, q1."u" AS c1, q1._rowid_ FROM "odd" AS q1)"},
        {"SELECT a01last FROM a01 WHERE a01clid + 1 > 5",
         R"(SELECT q1."a01last" AS c0, q1.rowid FROM "a01" AS q1 WHERE zv_whole(q1."a01clid" + ?1) > ?2)"},
        {"SELECT DISTINCT a01last FROM a01", R"(SELECT DISTINCT q1."a01last" AS c0 FROM "a01" AS q1)"},
        {"SELECT TOP 2 a01clid FROM a01 ORDER BY a01last DESC",
         "SELECT c0 FROM (SELECT *, rank() OVER (ORDER BY o0 COLLATE ZV_SORT DESC) AS place FROM (SELECT "
         R"(q1."a01clid" AS c0, q1."a01last" COLLATE ZV_SORT AS o0 FROM "a01" AS q1)) WHERE place <= 2 ORDER BY place)"},
        {"SELECT COUNT(*) FROM a01", R"(SELECT count(*) AS c0 FROM "a01" AS q1)"},
        {"SELECT q.a01last FROM (SELECT a01last FROM a01) AS q",
         R"(SELECT q2.c0 AS c0 FROM (SELECT q1."a01last" AS c0 FROM "a01" AS q1) AS q2)"},
        {"SELECT a01clid FROM a01 UNION ALL SELECT 1 FROM a02 ORDER BY 1",
         R"(SELECT q1."a01clid" AS c0 FROM "a01" AS q1 UNION ALL SELECT ?1 AS c0 FROM "a02" AS q2 ORDER BY 1)"},
        {"SELECT a01clid FROM a01 LEFT JOIN a02 ON a01clid = a02clid",
         R"(SELECT q1."a01clid" AS c0 FROM "a01" AS q1 LEFT JOIN "a02" AS q2 ON q1."a01clid" = q2."a02clid")"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(PlanOf(one.sql, Purpose::OpenRecordset).text, QLatin1String(one.text));
    EXPECT_EQ(PlanOf("SELECT 'x', u FROM odd ORDER BY u", Purpose::OpenRecordset).rowText,
              QStringLiteral(R"(SELECT ?1 AS c0, q1."u" AS c1 FROM "odd" AS q1 WHERE q1._rowid_ = ?2)"));
}

TEST(TranslationTest, Parameters) {
    const Plan insert = PlanOf("INSERT INTO a01 (a01last, a01clid) VALUES ('x', 7)", Purpose::Execute);
    ASSERT_EQ(insert.parameters.size(), 2U);
    ASSERT_TRUE(insert.parameters[0].column.has_value());
    EXPECT_EQ(insert.parameters[0].column->name, QStringLiteral("a01last"));
    EXPECT_EQ(insert.parameters[1].literal, 1);
    EXPECT_EQ(insert.ignoreText,
              QStringLiteral(R"(INSERT OR IGNORE INTO "a01" ("a01last", "a01clid") SELECT )"
                             R"(?1, ?2 WHERE ?2 IS NOT NULL)"));
    EXPECT_FALSE(insert.setsCounter);
    EXPECT_TRUE(PlanOf("INSERT INTO a02 VALUES (1, 2, 3, 'x')", Purpose::Execute).setsCounter);
}

// A plan is found again by the shape of its statement: whatever a translation looks at beside what it binds
// has to stand in the shape.
TEST(TranslationTest, OneShapeOnePlan) {
    static const char* const clauses[] = {
        "%1",
        "(%1)",
        "+%1",
        "-%1",
        "a01clid + %1",
        "a01last LIKE %1",
        "a01last NOT LIKE (%1)",
        "FORMAT(a01clid, %1)",
        "DATEPART(%1, a01bith)",
        "CHOOSE(%1, 1, 2)",
        "a01clid IN (%1, 7)",
        "a01clid BETWEEN %1 AND 7",
        "IIF(%1, 1, 2)",
        "a01last & %1",
        "MID(a01last, %1)",
    };
    static const char* const statements[] = {
        "SELECT a01clid, a01last FROM a01 ORDER BY %1",
        "SELECT a01clid, a01last FROM a01 UNION SELECT a01clid, a01last FROM a01 ORDER BY %1",
        "SELECT a01clid FROM a01 WHERE a01clid IN (SELECT TOP 2 a02clid FROM a02 ORDER BY %1)",
        "SELECT TOP %1 a01clid, a01last FROM a01",
        "SELECT TOP %1 PERCENT a01clid, a01last FROM a01 ORDER BY a01last",
        "SELECT %1 FROM a01",
        "SELECT DISTINCT %1 AS q, a01last FROM a01 ORDER BY %1",
        "SELECT COUNT(*), %1 FROM a01 GROUP BY %1 HAVING %1 > 1",
        "TRANSFORM COUNT(*) SELECT a01last FROM a01 GROUP BY a01last PIVOT a01clid IN (%1, 7)",
        "SELECT a01clid FROM a01 WHERE %1",
        "INSERT INTO a01 (a01clid, a01last) VALUES (1, %1)",
        "UPDATE a01 SET a01last = %1",
        "DELETE FROM a01 WHERE a01clid = %1",
    };
    static const char* const literals[][2] = {
        {"1", "2"},      {"0", "1"},          {"'a'", "''"},         {"'a*'", "'b?c'"},
        {"'a'", "'a*'"}, {"'yyyy'", "'[a]'"}, {"1.5", "3000000000"}, {"#1/2/2003#", "#3/4/2005 6:07#"},
    };
    const auto planned = [](const QString& sql) {
        try {
            const Purpose purpose = sql.startsWith(u"SELECT") || sql.startsWith(u"TRANSFORM")
                                        ? Purpose::OpenRecordset
                                        : Purpose::Execute;
            const Plan plan = PlanOf(sql.toUtf8().constData(), purpose);
            return plan.text + plan.ignoreText + plan.rowText;
        } catch (const runtime::Failure& failure) {
            return QString::number(failure.number());
        }
    };
    int same = 0;
    for (const char* statement : statements)
        for (const char* clause : clauses)
            for (const auto& pair : literals) {
                const QString text =
                    QString::fromLatin1(statement).replace(QLatin1String("%1"), QLatin1String(clause));
                const QString first = QString(text).replace(QLatin1String("%1"), QLatin1String(pair[0]));
                const QString second = QString(text).replace(QLatin1String("%1"), QLatin1String(pair[1]));
                if (Scanned scanned; !ScanLike(Scan(first), second, scanned))
                    continue;
                ++same;
                EXPECT_EQ(planned(first), planned(second))
                    << first.toStdString() << " | " << second.toStdString();
            }
    EXPECT_GT(same, 100);
}

TEST(TranslationTest, EqualitiesOfCriteria) {
    const std::vector<ResultColumn> columns = {{QStringLiteral("a02clid"), DataType::Long},
                                               {QStringLiteral("a02cval"), DataType::Text}};
    struct Case {
        const char* criteria;
        std::size_t equalities;
    };
    static const Case cases[] = {
        {"a02clid= 5AND a02cval = 'x'", 2},
        {"a02clid = 5 AND a02cval LIKE 'x'", 2},
        {"a02clid = 5 AND a02cval LIKE 'x*'", 1},
        {"a02clid = 5 OR a02cval = 'x'", 0},
        {"a02clid > 5", 0},
        {"a02cval = 'x'", 1},
    };
    for (const Case& one : cases) {
        const CriteriaPlan plan = TranslateCriteria(Scan(QString::fromLatin1(one.criteria)), columns);
        EXPECT_EQ(plan.equalities.size(), one.equalities) << one.criteria;
    }
}

} // namespace
