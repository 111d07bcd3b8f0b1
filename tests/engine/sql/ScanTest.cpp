// What of a statement may differ where its plan is used again.
#include "platform/engine/sql/Plan.h"
#include "platform/runtime/Failure.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using engine::sql::Literal;
using engine::sql::Scan;
using engine::sql::ScanLike;
using engine::sql::Scanned;

struct Pair {
    const char16_t* first;
    const char16_t* second;
};

Scanned ScanOf(const char16_t* text) {
    return Scan(QString::fromUtf16(text));
}

/// Whether the second text is taken apart by the first, with the literals that it has by itself.
bool Alike(const Pair& pair) {
    Scanned scanned;
    if (!ScanLike(ScanOf(pair.first), QString::fromUtf16(pair.second), scanned))
        return false;
    const Scanned alone = ScanOf(pair.second);
    EXPECT_EQ(scanned.text, alone.text);
    EXPECT_TRUE(
        std::ranges::equal(scanned.literals, alone.literals, {}, &Literal::ToValue, &Literal::ToValue));
    return true;
}

TEST(ScanTest, TextsThatDifferInLiteralsShareAPlan) {
    static const Pair pairs[] = {
        {u"SELECT * FROM a01 WHERE a01clid = 1", u"SELECT * FROM a01 WHERE a01clid = 22"},
        {u"INSERT INTO t02 (t02cval) VALUES ('a')", u"INSERT INTO t02 (t02cval) VALUES ('it''s')"},
        {u"a02clid= 5AND a02code = 1", u"a02clid= 77AND a02code = 2"},
        {u"SELECT 1 WHERE a LIKE 'x*'", u"SELECT 1 WHERE a LIKE '[a]'"},
        {u"SELECT 1 WHERE a LIKE 'x'", u"SELECT 1 WHERE a LIKE ''"},
        {u"SELECT #1/1/2000#", u"SELECT #2/2/2002 10:30#"},
    };
    for (const Pair& pair : pairs)
        EXPECT_TRUE(Alike(pair)) << QString::fromUtf16(pair.first).toStdString();
}

TEST(ScanTest, TextsThatMeanSomethingElseDoNot) {
    static const Pair pairs[] = {
        {u"SELECT 1", u"SELECT '1'"},
        {u"SELECT 1", u"SELECT 1.5"},
        {u"SELECT 1", u"SELECT 3000000000"},
        {u"SELECT a WHERE a LIKE 'x'", u"SELECT a WHERE a LIKE 'x*'"},
        {u"SELECT a WHERE a LIKE 'x'", u"SELECT a WHERE a LIKE '['"},
        {u"SELECT TOP 1 a FROM b", u"SELECT TOP 2 a FROM b"},
        {u"SELECT a, b FROM c ORDER BY 1", u"SELECT a, b FROM c ORDER BY 2"},
        {u"SELECT a, b FROM c ORDER BY (1)", u"SELECT a, b FROM c ORDER BY (2)"},
        {u"SELECT a, b FROM c ORDER BY +1", u"SELECT a, b FROM c ORDER BY +2"},
        {u"SELECT a, b FROM c ORDER BY a, 1", u"SELECT a, b FROM c ORDER BY a, 2"},
        {u"SELECT a + 1 FROM b GROUP BY a + 1", u"SELECT a + 1 FROM b GROUP BY a + 2"},
        {u"SELECT DISTINCT a + 1 FROM b ORDER BY a + 1", u"SELECT DISTINCT a + 1 FROM b ORDER BY a + 2"},
        {u"SELECT [a b]", u"SELECT a b"},
        {u"SELECT a AS b", u"SELECT a AS B"},
        {u"SELECT 1 IN (1, 2)", u"SELECT 1 IN (1, 2, 3)"},
        {u"SELECT a WHERE b = 1", u"SELECT a WHERE b = 1 AND c"},
        {u"SELECT a WHERE b = 1", u"SELECT a WHERE b = "},
        {u"SELECT a WHERE b = 1", u"SELECT a WHERE b =  1"},
        {u"SELECT x .5", u"SELECT x 0.5"},
        {u"SELECT x 1.5", u"SELECT x .5"},
        {u"SELECT 1.5", u"SELECT 922337203685477.5807"},
    };
    for (const Pair& pair : pairs)
        EXPECT_FALSE(Alike(pair)) << QString::fromUtf16(pair.first).toStdString();
}

TEST(ScanTest, LiteralsComeInOrder) {
    const Scanned scanned = ScanOf(u"a = 'it''s' AND b = &H10 OR c=1.5E2AND d = #12/31/2006#");
    ASSERT_EQ(scanned.literals.size(), 4U);
    EXPECT_EQ(scanned.literals[0].ToValue(), engine::Value(QStringLiteral("it's")));
    EXPECT_EQ(scanned.literals[1].ToValue(), engine::Value(16));
    EXPECT_EQ(scanned.literals[2].ToValue(), engine::Value(150.0));
    EXPECT_EQ(scanned.literals[3].ToValue().Text(), QStringLiteral("31.12.2006"));
}

TEST(ScanTest, SomeTextsArePlannedAnew) {
    QString list = QStringLiteral("SELECT 1 IN (1");
    for (int i = 0; i < 300; ++i)
        list += QStringLiteral(", 1");
    EXPECT_FALSE(Scan(list + u')').cacheable);
    EXPECT_FALSE(ScanOf(u"CREATE TABLE a (b TEXT(5))").cacheable);
    EXPECT_FALSE(ScanOf(u"alter table a add column b TEXT(5)").cacheable);
    EXPECT_FALSE(ScanOf(u"SELECT 'left open").cacheable);
    EXPECT_TRUE(ScanOf(u"SELECT a FROM create1").cacheable);
    EXPECT_THROW(Scan(QString(1'000'001, u' ')), runtime::Failure);
}

} // namespace
