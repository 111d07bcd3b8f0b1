#include "database/General.h"
#include "database/Schema.h"
#include "tests/support/BoundBook.h"

#include <QCryptographicHash>

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

TEST_F(Creation, ATownWithoutItsRegionIsTold) {
    for (const QString& statement : {schema::CreateT02(), schema::CreateT03()})
        Execute(statement);
    test::Answers answers;
    answers.Box("Ошибка целостности базы данных: отсутствует регион 'МОСКОВСКАЯ ОБЛАСТЬ'.",
                forms::Icon::Critical);
    EXPECT_FALSE(General::FillCity(*gDatabase));
}
