#include "platform/engine/EngineError.h"
#include "tests/database/BoundBase.h"

using test::ErrorStart;

namespace {

class Creation : public test::BoundBase {};

const QString CreateHead = QStringLiteral("General функция ApplySQLToCreateDB:");

} // namespace

TEST_F(Creation, ANewFileHoldsTheWholeSchemaAndItsStartingRows) {
    const test::Answers answers;
    ASSERT_TRUE(General::ApplySQLToCreateDB(*gDatabase));

    EXPECT_EQ(Rows(QStringLiteral(
                  "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%' "
                  "ORDER BY name")),
              QStringList({"a01", "a02", "a03", "t01", "t02", "t03", "v00"}));
    EXPECT_EQ(Row(QStringLiteral("SELECT v00vrid FROM v00")), QStringLiteral("3"));
    EXPECT_EQ(
        Rows(QStringLiteral("SELECT t01ctid, t01type, t01code, t01cval FROM t01 ORDER BY t01ctid")),
        QStringList({QStringLiteral("1|0|1|Домашний телефон"), QStringLiteral("2|0|2|Мобильный телефон"),
                     QStringLiteral("3|0|3|Рабочий телефон"), QStringLiteral("4|0|4|Основной телефон")}));
    for (const char* table : {"a01", "a02", "a03"})
        EXPECT_EQ(Row(QStringLiteral("SELECT count(*) FROM ") + QString::fromLatin1(table)),
                  QStringLiteral("0"));
    EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
}

TEST_F(Creation, ColumnsKeepTheirRules) {
    const test::Answers answers;
    ASSERT_TRUE(General::ApplySQLToCreateDB(*gDatabase));
    const QString longText(51, u'я');
    const struct {
        QString sql;
        int failure;
    } rows[] = {
        {QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo, a01bith) "
                        "VALUES (1, '', '', '', '', '')"),
         0},
        {QStringLiteral("INSERT INTO a01 (a01clid) VALUES (2)"), 0},
        {QStringLiteral("INSERT INTO a01 (a01clid) VALUES (2)"), engine::DuplicateKey},
        {QStringLiteral("INSERT INTO a01 (a01last) VALUES ('x')"), engine::NullNotAllowed},
        {QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (3, '") + longText + QStringLiteral("')"),
         engine::ValueTooLong},
        {QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, '')"),
         engine::EmptyTextNotAllowed},
        {QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 40000, '5')"),
         engine::NumberOutOfRange},
        {QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('', '01.01.2006', 0)"),
         engine::EmptyTextNotAllowed},
        {QStringLiteral("INSERT INTO a03 (a03evnm, a03evdt, a03evpr) VALUES ('x', '', 0)"),
         engine::EmptyTextNotAllowed},
        {QStringLiteral("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 10, '')"),
         engine::EmptyTextNotAllowed},
        {QStringLiteral("INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 10, 'РАБОЧИЙ ТЕЛЕФОН')"),
         engine::DuplicateKey},
        {QStringLiteral("INSERT INTO t02 (t02cval) VALUES ('адыгея')"), engine::DuplicateKey},
        {QStringLiteral("INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (1, '', 1)"),
         engine::EmptyTextNotAllowed},
        {QStringLiteral("INSERT INTO v00 (v00vrid) VALUES (3)"), engine::DuplicateKey},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(test::FailureOf([&] { Execute(row.sql); }), row.failure) << row.sql.toStdString();
    }
}

TEST_F(Creation, AFileThatHasCardsAlreadyIsLeftAsItIs) {
    Execute(QStringLiteral("CREATE TABLE a01 (x INTEGER)"));
    test::Answers answers;
    answers.BoxStarting(ErrorStart(CreateHead, engine::TableExists), forms::Icon::Critical);
    EXPECT_FALSE(General::ApplySQLToCreateDB(*gDatabase));
    EXPECT_EQ(gDatabase->TableNames(), QStringList({"a01"}));
}

TEST_F(Creation, AFailureHalfWayLeavesTheTablesMadeSoFar) {
    Execute(QStringLiteral("CREATE TABLE t03 (x INTEGER)"));
    test::Answers answers;
    answers.BoxStarting(ErrorStart(CreateHead, engine::TableExists), forms::Icon::Critical);
    EXPECT_FALSE(General::ApplySQLToCreateDB(*gDatabase));
    EXPECT_EQ(Row(QStringLiteral("SELECT count(*) FROM t02")), QStringLiteral("0"));
    EXPECT_FALSE(gDatabase->TableNames().contains(QStringLiteral("a03")));
}
