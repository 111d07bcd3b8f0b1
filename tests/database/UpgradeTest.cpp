#include "platform/engine/EngineError.h"
#include "platform/runtime/Process.h"
#include "tests/database/BoundBase.h"
#include "tests/database/OldVersion.h"

#include <sqlite3.h>

using test::ErrorStart;

namespace {

const QString Head = QStringLiteral("Функция UpdateBaseIfNeed:");

class Upgrade : public test::BoundBase {
protected:
    void Open(int version) {
        gDatabase->Close();
        QFile::remove(Path());
        test::MakeBook(Path(), version);
        gDatabase = gWorkspace->OpenDatabase(Path());
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

    /// Starts on the book; these boxes come, and the process ends or goes on.
    static void Raise(const QStringList& boxes = {}, bool ends = false) {
        const runtime::EndTrap trap;
        test::Answers answers;
        for (const QString& box : boxes)
            answers.BoxStarting(box, forms::Icon::Critical);
        bool ended = false;
        try {
            General::UpdateBaseIfNeed();
        } catch (const runtime::ProcessEnded&) {
            ended = true;
        }
        EXPECT_EQ(ended, ends);
        EXPECT_TRUE(answers.Done());
        EXPECT_TRUE(gDatabase->IsOpen());
    }

    QString Version() const { return Row(QStringLiteral("SELECT v00vrid FROM v00")); }
    static bool Has(const char* table) {
        return gDatabase->TableNames().contains(QString::fromLatin1(table));
    }
    static engine::TableDef Cards() { return gDatabase->TableDefs(QStringLiteral("a01")); }
    static bool TakesEmptyBirthdays() { return Cards().Fields(QStringLiteral("a01bith")).AllowZeroLength(); }
    QByteArray Bytes() const {
        engine::DBEngine::Commit();
        return test::ReadBytes(Path());
    }
};

} // namespace

TEST_F(Upgrade, OldVersionsClimbToTheCurrentOneAndKeepTheirCards) {
    for (const int version : {1, 2}) {
        SCOPED_TRACE(version);
        Open(version);
        Raise();
        EXPECT_EQ(Version(), QStringLiteral("3"));
        EXPECT_EQ(Row("SELECT a01clid, a01last, a01bith FROM a01"), QStringLiteral("7|Иванов|NULL"));
        EXPECT_EQ(Row("SELECT a02clid, a02cval FROM a02"), QStringLiteral("7|495"));
        EXPECT_EQ(Row("SELECT (SELECT count(*) FROM t02), (SELECT count(*) FROM t03), count(*) FROM a03"),
                  version == 1 ? QStringLiteral("79|1913|0") : QStringLiteral("0|0|0"));
        // The step behind the commit of the first rung is made up for by the second one.
        EXPECT_TRUE(TakesEmptyBirthdays());
        EXPECT_EQ(test::Integrity(Path()), QStringLiteral("ok"));
    }
    // A birthday of another type stops nothing.
    Open(2);
    Execute(QStringLiteral("ALTER TABLE a01 DROP COLUMN a01bith"));
    Execute(QStringLiteral("ALTER TABLE a01 ADD COLUMN a01bith DATETIME"));
    Raise();
    EXPECT_EQ(Version(), QStringLiteral("3"));
}

TEST_F(Upgrade, WhatIsNoOldVersionIsLeftAsItIs) {
    const QString key = QStringLiteral("BYTE NOT NULL PRIMARY KEY");
    const QString broken = QStringLiteral("Нарушена целостность базы данных: в таблице v00 %1. Дальнейшая "
                                          "работа программы не возможна.");
    const QString several = broken.arg(QStringLiteral("более одной записи"));
    const QString noNumber = broken.arg(QStringLiteral("содержится не числовое значение"));
    const QString tooNew =
        QStringLiteral("Данная версия программы может работать только с версией базы меньше либо равной 3. "
                       "Версия же текущей базы данных: ");
    const struct {
        QString type;
        QStringList values;
        QString message; ///< empty: the file is used
    } rows[] = {
        {key, {"0"}, {}},
        {key, {"3"}, {}},
        {key, {}, broken.arg(QStringLiteral("отсутствуют записи"))},
        {key, {"1", "2"}, several},
        {key, {"3", "4"}, several},
        {QStringLiteral("TEXT(10)"), {QStringLiteral("'три'")}, noNumber},
        {QStringLiteral("BYTE"), {"NULL"}, noNumber},
        {key, {"4"}, tooNew + u'4'},
        {key, {"255"}, tooNew + QStringLiteral("255")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.values.join(u' ').toStdString());
        SetVersion(row.type, row.values);
        const QByteArray before = Bytes();
        const runtime::EndTrap trap;
        test::Answers answers;
        if (row.message.isEmpty()) {
            General::UpdateBaseIfNeed();
        } else {
            answers.Box(row.message, forms::Icon::Critical);
            EXPECT_THROW(General::UpdateBaseIfNeed(), runtime::ProcessEnded);
        }
        EXPECT_TRUE(gDatabase->IsOpen());
        EXPECT_TRUE(Bytes() == before);
        Execute(QStringLiteral("DROP TABLE v00"));
    }
    // Without a table of versions it is told, and used.
    Raise({ErrorStart(Head, engine::UnknownTable)});
}

TEST_F(Upgrade, ARungThatFailsIsUndoneWholeAndTriedAgain) {
    const struct {
        int version;
        const char* inTheWay;
        const char* left; ///< the version behind it
    } rows[] = {{1, "t03", "1"}, {1, "a03", "2"}, {2, "a03", "2"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.inTheWay);
        Open(row.version);
        const QString table = QString::fromLatin1(row.inTheWay);
        Execute(QStringLiteral("CREATE TABLE %1 (x INTEGER)").arg(table));
        Raise({ErrorStart(Head, engine::TableExists)});
        const QByteArray before = Bytes();
        Raise({ErrorStart(Head, engine::TableExists)});
        EXPECT_TRUE(Bytes() == before);
        EXPECT_EQ(Version(), QString::fromLatin1(row.left));
        EXPECT_EQ(Has("t02"), *row.left == '2');
        EXPECT_EQ(Cards().FieldsCount(), *row.left == '2' ? 6 : 5);
        EXPECT_TRUE(row.version == 1 || !TakesEmptyBirthdays());
        Execute(QStringLiteral("DROP TABLE ") + table);
        Raise();
        EXPECT_EQ(Version(), QStringLiteral("3"));
    }
}

TEST_F(Upgrade, SeedDataThatCannotBeWrittenEndTheProcessWithTheFileAsItWas) {
    Open(1);
    for (const char* table : {"t02", "t03"}) { // whose counter stands at its end before the table is made
        SCOPED_TRACE(table);
        Plant("DELETE FROM sqlite_sequence WHERE name IN ('t02', 't03')");
        Plant(QByteArrayLiteral("INSERT INTO sqlite_sequence (name, seq) VALUES ('") + table +
              QByteArrayLiteral("', 9223372036854775807)"));
        const QString name = QString::fromLatin1(table);
        Raise({QStringLiteral("General функция %1:\r\nпроизошла ошибка №")
                   .arg(name == u"t02" ? QStringLiteral("FillRegions") : QStringLiteral("FillCity")),
               QStringLiteral("Невозможно заполнить таблицу %1.").arg(name)},
              true);
        EXPECT_EQ(Version(), QStringLiteral("1"));
        EXPECT_FALSE(Has("t02"));
        EXPECT_EQ(Cards().FieldsCount(), 5);
    }
}
