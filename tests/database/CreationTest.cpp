#include "database/Schema.h"
#include "platform/engine/EngineError.h"
#include "tests/database/BoundBase.h"

#include <QCryptographicHash>

using test::ErrorStart;

namespace {

class Creation : public test::BoundBase {};

QByteArray Checksum(const QStringList& rows) {
    return QCryptographicHash::hash(rows.join(u'\n').toUtf8(), QCryptographicHash::Sha256).toHex();
}

const QString CreateHead = QStringLiteral("General функция ApplySQLToCreateDB:");
const QString RegionsHead = QStringLiteral("General функция FillRegions:");
const QString CityHead = QStringLiteral("General функция FillCity:");

} // namespace

TEST_F(Creation, ANewFileHoldsTheWholeSchemaAndItsStartingRows) {
    const test::Answers answers;
    ASSERT_TRUE(General::ApplySQLToCreateDB(*gDatabase));

    EXPECT_EQ(Row("SELECT group_concat(name, ' ') FROM (SELECT name FROM sqlite_master WHERE type = 'table' "
                  "AND name NOT LIKE 'sqlite_%' ORDER BY name)"),
              QStringLiteral("a01 a02 a03 t01 t02 t03 v00"));
    EXPECT_EQ(Row("SELECT v00vrid, (SELECT count(*) FROM a01), (SELECT count(*) FROM a02), (SELECT count(*) "
                  "FROM a03) FROM v00"),
              QStringLiteral("3|0|0|0"));
    EXPECT_EQ(Rows("SELECT t01ctid, t01type, t01code, t01cval FROM t01 ORDER BY t01ctid"),
              QStringList({"1|0|1|Домашний телефон", "2|0|2|Мобильный телефон", "3|0|3|Рабочий телефон",
                           "4|0|4|Основной телефон"}));
    const QStringList regions = Rows("SELECT t02cval FROM t02 ORDER BY t02rcid");
    EXPECT_EQ(regions.size(), 79);
    EXPECT_EQ(Checksum(regions), "aa1a0d7abd3a4914580cbc41f426091aea8fa3da3452126334cf64d93a28c97d");
    // To the character, superfluous blanks too.
    const QStringList towns =
        Rows("SELECT t02cval, t03cval, t03numb FROM t03 JOIN t02 ON t02rcid = t03code ORDER BY t03rcid");
    EXPECT_EQ(towns.size(), 1913);
    EXPECT_EQ(Checksum(towns), "e07b1c64bc64493b647eabda960601d3647a6fe3d6725339e35b46a71fff07be");
    EXPECT_EQ(Row("SELECT min(t02rcid), max(t02rcid) FROM t02"), QStringLiteral("1|79"));
    EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
}

TEST_F(Creation, ColumnsKeepTheirRules) {
    const test::Answers answers;
    ASSERT_TRUE(General::ApplySQLToCreateDB(*gDatabase));
    const struct {
        const char* values;
        int failure = 0;
    } rows[] = {
        {"a01 (a01clid, a01last, a01frst, a01midl, a01memo, a01bith) VALUES (1, '', '', '', '', '')"},
        {"a01 (a01clid) VALUES (2)"},
        {"a01 (a01clid) VALUES (2)", engine::DuplicateKey},
        {"a01 (a01last) VALUES ('x')", engine::NullNotAllowed},
        {"a01 (a01clid, a01last) VALUES (3, Space(51))", engine::ValueTooLong},
        {"a02 (a02clid, a02code, a02cval) VALUES (1, 1, '')", engine::EmptyTextNotAllowed},
        {"a02 (a02clid, a02code, a02cval) VALUES (1, 40000, '5')", engine::NumberOutOfRange},
        {"a03 (a03evnm, a03evdt, a03evpr) VALUES ('', '01.01.2006', 0)", engine::EmptyTextNotAllowed},
        {"a03 (a03evnm, a03evdt, a03evpr) VALUES ('x', '', 0)", engine::EmptyTextNotAllowed},
        {"t01 (t01type, t01code, t01cval) VALUES (0, 10, '')", engine::EmptyTextNotAllowed},
        {"t01 (t01type, t01code, t01cval) VALUES (0, 10, 'РАБОЧИЙ ТЕЛЕФОН')", engine::DuplicateKey},
        {"t02 (t02cval) VALUES ('адыгея')", engine::DuplicateKey},
        {"t03 (t03code, t03cval, t03numb) VALUES (1, '', 1)", engine::EmptyTextNotAllowed},
        {"v00 (v00vrid) VALUES (3)", engine::DuplicateKey},
    };
    for (const auto& row : rows)
        EXPECT_EQ(test::FailureOf([&] { Execute(QStringLiteral("INSERT INTO ") + row.values); }), row.failure)
            << row.values;
}

/// What stands in the way is told by the routine that meets it; what has been made so far stays.
TEST_F(Creation, Failures) {
    const auto absent = [](const char* region) {
        return QStringLiteral("Ошибка целостности базы данных: отсутствует регион '%1'.")
            .arg(QString::fromUtf8(region));
    };
    const struct {
        const char* before; ///< done to the reference tables, the regions being there
        bool (*routine)(engine::Database&);
        QString box;
        const char* left; ///< rows of t02 and t03
    } rows[] = {
        {"", General::FillRegions, ErrorStart(RegionsHead, engine::DuplicateKey), "79|0"},
        {"DELETE FROM t02 WHERE t02cval = 'МОСКОВСКАЯ ОБЛАСТЬ'", General::FillCity,
         absent("МОСКОВСКАЯ ОБЛАСТЬ"), "78|0"},
        {"DELETE FROM t02 WHERE t02cval = 'АДЫГЕЯ'", General::FillCity, absent("АДЫГЕЯ"), "78|70"},
        {"DELETE FROM t02 WHERE t02cval = 'МОРДОВИЯ'", General::FillCity, absent("МОРДОВИЯ"), "78|887"},
        {"DROP TABLE t03", General::FillCity, ErrorStart(CityHead, engine::UnknownTargetTable), ""},
        {"DROP TABLE t03", General::FillCity1,
         ErrorStart(QStringLiteral("General функция FillCity1:"), engine::UnknownTargetTable), ""},
        {"DROP TABLE t02", General::FillCity, ErrorStart(CityHead, engine::UnknownTable), ""},
        {"DROP TABLE t02", General::FillRegions, ErrorStart(RegionsHead, engine::UnknownTargetTable), ""},
        {"DROP TABLE t02", General::ApplySQLToCreateDB, ErrorStart(CreateHead, engine::TableExists), ""},
        {"DROP TABLE a01", General::ApplySQLToCreateDB, ErrorStart(CreateHead, engine::TableExists), "79|0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.box.toStdString());
        gDatabase = gWorkspace->CreateDatabase(Path(QStringLiteral("%1.mdb").arg(&row - rows)), {});
        for (const QString& statement : {schema::CreateA01(), schema::CreateT02(), schema::CreateT03()})
            Execute(statement);
        ASSERT_TRUE(General::FillRegions(*gDatabase));
        if (*row.before != '\0')
            Execute(QString::fromUtf8(row.before));
        test::Answers answers;
        answers.BoxStarting(row.box, forms::Icon::Critical);
        EXPECT_FALSE(row.routine(*gDatabase));
        EXPECT_TRUE(answers.Done());
        if (*row.left != '\0') {
            engine::DBEngine::Commit();
            EXPECT_EQ(test::ReadRows(gDatabase->Name(),
                                     "SELECT (SELECT count(*) FROM t02), (SELECT count(*) FROM t03)"),
                      QStringList(QString::fromLatin1(row.left)));
        }
    }
}
