#include "platform/engine/EngineError.h"
#include "platform/runtime/Process.h"
#include "tests/database/BoundBase.h"

#include <QFile>
#include <sqlite3.h>

using test::ErrorStart;

namespace {

const QString Head = QStringLiteral("Функция UpdateBaseIfNeed:");

class Upgrade : public test::BoundBase {
protected:
    void MakeVersion1() {
        Execute(QStringLiteral("CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY, a01last TEXT(50), "
                               "a01frst TEXT(50), a01midl TEXT(50), a01memo TEXT(100))"));
        Execute(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (1, 'Иванов')"));
        Execute(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (7, 'Петрова')"));
        Execute(QStringLiteral(
            "CREATE TABLE a02 (a02rcid COUNTER NOT NULL PRIMARY KEY, a02clid INTEGER NOT NULL, "
            "a02code SHORT NOT NULL, a02cval TEXT(50) NOT NULL)"));
        Execute(QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (7, 2, '495')"));
        Execute(
            QStringLiteral("CREATE TABLE t01 (t01ctid COUNTER NOT NULL PRIMARY KEY, t01type BYTE NOT NULL, "
                           "t01code SHORT NOT NULL, t01cval TEXT(50) NOT NULL UNIQUE)"));
        SetVersion(QStringLiteral("BYTE NOT NULL PRIMARY KEY"), {QStringLiteral("1")});
    }

    void MakeVersion2() {
        MakeVersion1();
        Execute(QStringLiteral(
            "CREATE TABLE t02 (t02rcid COUNTER NOT NULL PRIMARY KEY, t02cval TEXT(50) NOT NULL)"));
        Execute(QStringLiteral(
            "CREATE TABLE t03 (t03rcid COUNTER NOT NULL PRIMARY KEY, t03code INTEGER NOT NULL, "
            "t03cval TEXT(50) NOT NULL, t03numb INTEGER NOT NULL)"));
        Execute(QStringLiteral("ALTER TABLE a01 ADD COLUMN a01bith TEXT(20)"));
        Execute(QStringLiteral("UPDATE a01 SET a01bith = '05.12.1970' WHERE a01clid = 1"));
        Execute(QStringLiteral("UPDATE v00 SET v00vrid = 2"));
    }

    void SetVersion(const QString& type, const QStringList& values) {
        Execute(QStringLiteral("CREATE TABLE v00 (v00vrid ") + type + u')');
        for (const QString& value : values)
            Execute(QStringLiteral("INSERT INTO v00 (v00vrid) VALUES (") + value + u')');
    }

    /// Puts something into the file that no statement of the dialect could: the rungs meet it half way.
    void Plant(const QByteArray& sql) const {
        engine::DBEngine::Commit();
        sqlite3* connection = nullptr;
        ASSERT_EQ(sqlite3_open(Path().toUtf8().constData(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, sql.constData(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection);
        sqlite3_close(connection);
    }

    QString Version() const { return Row(QStringLiteral("SELECT v00vrid FROM v00")); }

    QByteArray Bytes() const {
        engine::DBEngine::Commit();
        return test::ReadBytes(Path());
    }
};

} // namespace

TEST_F(Upgrade, AFileOfVersion1ClimbsToTheCurrentOneAndKeepsItsCards) {
    MakeVersion1();
    const test::Answers answers;
    General::UpdateBaseIfNeed();

    EXPECT_EQ(Version(), QStringLiteral("3"));
    EXPECT_EQ(Rows(QStringLiteral("SELECT a01clid, a01last, a01bith FROM a01 ORDER BY a01clid")),
              QStringList({QStringLiteral("1|Иванов|NULL"), QStringLiteral("7|Петрова|NULL")}));
    EXPECT_EQ(Row(QStringLiteral("SELECT a02clid, a02cval FROM a02")), QStringLiteral("7|495"));
    EXPECT_EQ(Row(QStringLiteral("SELECT (SELECT count(*) FROM t02), (SELECT count(*) FROM t03), "
                                 "(SELECT count(*) FROM a03)")),
              QStringLiteral("79|1913|0"));
    EXPECT_TRUE(
        gDatabase->TableDefs(QStringLiteral("a01")).Fields(QStringLiteral("a01bith")).AllowZeroLength());
    EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
}

TEST_F(Upgrade, AFileOfVersion2GetsEvents) {
    MakeVersion2();
    const test::Answers answers;
    General::UpdateBaseIfNeed();
    EXPECT_EQ(Version(), QStringLiteral("3"));
    EXPECT_EQ(Row(QStringLiteral("SELECT count(*) FROM a03")), QStringLiteral("0"));
    EXPECT_EQ(Row(QStringLiteral("SELECT count(*) FROM t02")), QStringLiteral("0"))
        << "no seed data on this rung";
    EXPECT_EQ(Row(QStringLiteral("SELECT a01bith FROM a01 WHERE a01clid = 1")), QStringLiteral("05.12.1970"));
    EXPECT_TRUE(
        gDatabase->TableDefs(QStringLiteral("a01")).Fields(QStringLiteral("a01bith")).AllowZeroLength())
        << "the step behind the commit of the first rung is made up for";
}

TEST_F(Upgrade, ABirthdayOfAnotherTypeDoesNotStopTheSecondRung) {
    MakeVersion2();
    Execute(QStringLiteral("ALTER TABLE a01 DROP COLUMN a01bith"));
    Execute(QStringLiteral("ALTER TABLE a01 ADD COLUMN a01bith DATETIME"));
    const test::Answers answers;
    General::UpdateBaseIfNeed();
    EXPECT_EQ(Version(), QStringLiteral("3"));
}

TEST_F(Upgrade, VersionsThatNeedNothingAreOnlyRead) {
    for (const QString& version : {QStringLiteral("0"), QStringLiteral("3")}) {
        SetVersion(QStringLiteral("BYTE NOT NULL PRIMARY KEY"), {version});
        const QByteArray before = Bytes();
        const test::Answers answers;
        General::UpdateBaseIfNeed();
        EXPECT_EQ(Bytes(), before) << version.toStdString();
        Execute(QStringLiteral("DROP TABLE v00"));
    }
}

TEST_F(Upgrade, UnsoundOrTooNewVersionsEndTheProcessAndLeaveTheFile) {
    const QString byteKey = QStringLiteral("BYTE NOT NULL PRIMARY KEY");
    const QString broken = QStringLiteral("Нарушена целостность базы данных: в таблице v00 ");
    const QString useless = QStringLiteral(" Дальнейшая работа программы не возможна.");
    const struct {
        QString type;
        QStringList values;
        QString message;
    } rows[] = {
        {byteKey, {}, broken + QStringLiteral("отсутствуют записи.") + useless},
        {byteKey, {"1", "2"}, broken + QStringLiteral("более одной записи.") + useless},
        {byteKey, {"3", "4"}, broken + QStringLiteral("более одной записи.") + useless},
        {QStringLiteral("TEXT(10)"),
         {QStringLiteral("'три'")},
         broken + QStringLiteral("содержится не числовое значение.") + useless},
        {QStringLiteral("BYTE"),
         {"NULL"},
         broken + QStringLiteral("содержится не числовое значение.") + useless},
        {byteKey,
         {"4"},
         QStringLiteral(
             "Данная версия программы может работать только с версией базы меньше либо равной 3. Версия "
             "же текущей базы данных: 4")},
        {byteKey,
         {"255"},
         QStringLiteral(
             "Данная версия программы может работать только с версией базы меньше либо равной 3. Версия "
             "же текущей базы данных: 255")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message.toStdString());
        SetVersion(row.type, row.values);
        const QByteArray before = Bytes();
        {
            const runtime::EndTrap trap;
            test::Answers answers;
            answers.Box(row.message, forms::Icon::Critical);
            EXPECT_THROW(General::UpdateBaseIfNeed(), runtime::ProcessEnded);
        }
        EXPECT_TRUE(gDatabase->IsOpen());
        EXPECT_EQ(Bytes(), before);
        Execute(QStringLiteral("DROP TABLE v00"));
    }
}

TEST_F(Upgrade, ARungThatFailsIsUndoneWholeAndTriedAgain) {
    MakeVersion1();
    Execute(QStringLiteral("CREATE TABLE t03 (x INTEGER)"));
    for (int start = 0; start < 2; ++start) {
        test::Answers answers;
        answers.BoxStarting(ErrorStart(Head, engine::TableExists), forms::Icon::Critical);
        General::UpdateBaseIfNeed();
        EXPECT_EQ(Version(), QStringLiteral("1"));
        EXPECT_FALSE(gDatabase->TableNames().contains(QStringLiteral("t02")));
        EXPECT_EQ(gDatabase->TableDefs(QStringLiteral("a01")).FieldsCount(), 5);
    }
    Execute(QStringLiteral("DROP TABLE t03"));
    const test::Answers answers;
    General::UpdateBaseIfNeed();
    EXPECT_NE(Version(), QStringLiteral("1"));
}

TEST_F(Upgrade, SeedDataThatCannotBeWrittenEndTheProcessWithTheFileAsItWas) {
    const struct {
        const char* table; ///< whose counter stands at its end before the table is made
        QString head;
        QString message;
    } rows[] = {
        {"t02", QStringLiteral("General функция FillRegions:"),
         QStringLiteral("Невозможно заполнить таблицу t02.")},
        {"t03", QStringLiteral("General функция FillCity:"),
         QStringLiteral("Невозможно заполнить таблицу t03.")},
    };
    MakeVersion1();
    for (const auto& row : rows) {
        SCOPED_TRACE(row.message.toStdString());
        Plant("DELETE FROM sqlite_sequence WHERE name IN ('t02', 't03')");
        Plant(QByteArrayLiteral("INSERT INTO sqlite_sequence (name, seq) VALUES ('") + row.table +
              QByteArrayLiteral("', 9223372036854775807)"));
        {
            const runtime::EndTrap trap;
            test::Answers answers;
            answers.BoxStarting(row.head + QStringLiteral("\r\nпроизошла ошибка №"), forms::Icon::Critical)
                .Box(row.message, forms::Icon::Critical);
            EXPECT_THROW(General::UpdateBaseIfNeed(), runtime::ProcessEnded);
        }
        EXPECT_EQ(Version(), QStringLiteral("1"));
        EXPECT_FALSE(gDatabase->TableNames().contains(QStringLiteral("t02")));
        EXPECT_EQ(gDatabase->TableDefs(QStringLiteral("a01")).FieldsCount(), 5);
    }
}

TEST_F(Upgrade, TheSecondRungFailsAlone) {
    MakeVersion1();
    Execute(QStringLiteral("CREATE TABLE a03 (x INTEGER)"));
    test::Answers answers;
    answers.BoxStarting(ErrorStart(Head, engine::TableExists), forms::Icon::Critical);
    General::UpdateBaseIfNeed();
    if (!answers.Done())
        General::UpdateBaseIfNeed();
    EXPECT_EQ(Version(), QStringLiteral("2"));
    EXPECT_EQ(Row(QStringLiteral("SELECT count(*) FROM t03")), QStringLiteral("1913"));
}

TEST_F(Upgrade, ASecondRungThatFailsLeavesTheFileAsItWas) {
    MakeVersion2();
    Execute(QStringLiteral("CREATE TABLE a03 (x INTEGER)"));
    const QByteArray before = Bytes();
    test::Answers answers;
    answers.BoxStarting(ErrorStart(Head, engine::TableExists), forms::Icon::Critical);
    General::UpdateBaseIfNeed();
    EXPECT_EQ(Bytes(), before);
    EXPECT_FALSE(
        gDatabase->TableDefs(QStringLiteral("a01")).Fields(QStringLiteral("a01bith")).AllowZeroLength());
}

TEST_F(Upgrade, AFileWithoutAVersionTableIsReportedAndUsed) {
    Execute(QStringLiteral("CREATE TABLE a01 (x INTEGER)"));
    test::Answers answers;
    answers.BoxStarting(ErrorStart(Head, engine::UnknownTable), forms::Icon::Critical);
    General::UpdateBaseIfNeed();
    EXPECT_TRUE(gDatabase->IsOpen());
}
