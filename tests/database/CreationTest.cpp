#include "database/General.h"
#include "database/Schema.h"
#include "platform/engine/EngineError.h"
#include "tests/support/BoundBook.h"

#include <QCryptographicHash>

using test::ErrorStart;

namespace {

class Creation : public test::BoundBase {};

QString Checksum(const QStringList& rows) {
    return QCryptographicHash::hash(rows.join(u'\n').toUtf8(), QCryptographicHash::Sha256)
        .toHex()
        .constData();
}

} // namespace

TEST_F(Creation, ANewFileHoldsTheWholeSchemaAndItsStartingRows) {
    const test::Answers answers;
    ASSERT_TRUE(General::ApplySQLToCreateDB(*gDatabase));
    EXPECT_EQ(Row("SELECT v00vrid, (SELECT count(*) FROM a01), (SELECT count(*) FROM a02), (SELECT count(*) "
                  "FROM a03), (SELECT min(t02rcid) || max(t02rcid) FROM t02) FROM v00"),
              "3|0|0|0|179");
    EXPECT_EQ(Checksum(Rows("SELECT name, sql FROM sqlite_master ORDER BY name")),
              "9eeb8442f574e0969c026eebe21cbd7181c2f10148798ed4115803617c321696")
        << "columns and their rules";
    EXPECT_EQ(Rows("SELECT t01ctid, t01type, t01code, t01cval FROM t01 ORDER BY t01ctid"),
              QStringList({"1|0|1|Домашний телефон", "2|0|2|Мобильный телефон", "3|0|3|Рабочий телефон",
                           "4|0|4|Основной телефон"}));
    EXPECT_EQ(Checksum(Rows("SELECT t02cval FROM t02 ORDER BY t02rcid")),
              "aa1a0d7abd3a4914580cbc41f426091aea8fa3da3452126334cf64d93a28c97d");
    // To the character, superfluous blanks too.
    EXPECT_EQ(
        Checksum(Rows("SELECT t02cval, t03cval, t03numb FROM t03 JOIN t02 ON t02rcid = t03code ORDER BY "
                      "t03rcid")),
        "e07b1c64bc64493b647eabda960601d3647a6fe3d6725339e35b46a71fff07be");
}

/// What stands in the way is told by the routine that meets it; what has been made so far stays.
TEST_F(Creation, Failures) {
    const QString absent = "Ошибка целостности базы данных: отсутствует регион '%1'.";
    const struct {
        const char* before; ///< done to the reference tables, the regions being there
        bool (*routine)(engine::Database&);
        QString box;
        const char* left; ///< rows of t02 and t03
    } rows[] = {
        {"", General::FillRegions, ErrorStart("General функция FillRegions:", engine::DuplicateKey), "79|0"},
        {"DELETE FROM t02 WHERE t02cval = 'МОСКОВСКАЯ ОБЛАСТЬ'", General::FillCity,
         absent.arg("МОСКОВСКАЯ ОБЛАСТЬ"), "78|0"},
        {"DELETE FROM t02 WHERE t02cval = 'МОРДОВИЯ'", General::FillCity, absent.arg("МОРДОВИЯ"), "78|887"},
        {"DROP TABLE t03", General::FillCity1,
         ErrorStart("General функция FillCity1:", engine::UnknownTargetTable), ""},
        {"DROP TABLE a01", General::ApplySQLToCreateDB,
         ErrorStart("General функция ApplySQLToCreateDB:", engine::TableExists), "79|0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.box.toStdString());
        gDatabase = Create(Path(QStringLiteral("%1.mdb").arg(&row - rows)));
        for (const QString& statement : {schema::CreateA01(), schema::CreateT02(), schema::CreateT03()})
            Execute(statement);
        ASSERT_TRUE(General::FillRegions(*gDatabase));
        if (*row.before != '\0')
            Execute(row.before);
        test::Answers answers;
        answers.BoxStarting(row.box, forms::Icon::Critical);
        EXPECT_FALSE(row.routine(*gDatabase));
        EXPECT_TRUE(answers.Done());
        engine::DBEngine::Commit();
        if (*row.left != '\0') {
            EXPECT_EQ(test::ReadRows(gDatabase->Name(),
                                     "SELECT (SELECT count(*) FROM t02), (SELECT count(*) FROM t03)"),
                      QStringList(row.left));
        }
    }
}
