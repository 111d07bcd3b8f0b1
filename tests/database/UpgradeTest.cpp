#include "database/General.h"
#include "platform/engine/EngineError.h"
#include "tests/database/OldVersion.h"
#include "tests/support/BoundBook.h"

#include <sqlite3.h>

using test::ErrorStart;

namespace {

const QString Head = "Функция UpdateBaseIfNeed:";

class Upgrade : public test::BoundBase {
protected:
    void Open(int version) {
        gDatabase->Close();
        QFile::remove(Path());
        test::MakeBook(Path(), version);
        gDatabase = gWorkspace->OpenDatabase(Path());
    }

    /// Starts on the book; these boxes come, and the process ends or goes on.
    static void Raise(const QStringList& boxes = {}, bool ends = false) {
        test::Answers answers;
        for (const QString& box : boxes)
            answers.BoxStarting(box, forms::Icon::Critical);
        bool ended = false;
        try {
            General::UpdateBaseIfNeed();
        } catch (const test::ProcessEnded&) {
            ended = true;
        }
        EXPECT_EQ(ended, ends);
        EXPECT_TRUE(answers.Done());
        EXPECT_TRUE(gDatabase->IsOpen());
    }

    QString Version() const { return Row("SELECT v00vrid FROM v00"); }
    static bool Has(const char* table) { return gDatabase->TableNames().contains(table); }
    static engine::TableDef Cards() { return gDatabase->TableDefs("a01"); }
    QByteArray Bytes() const {
        engine::DBEngine::Commit();
        return test::ReadBytes(Path());
    }
};

} // namespace

TEST_F(Upgrade, WhatIsNoOldVersionIsLeftAsItIs) {
    const QString broken = "Нарушена целостность базы данных: в таблице v00 %1. Дальнейшая работа программы "
                           "не возможна.";
    const QString tooNew = "Данная версия программы может работать только с версией базы меньше либо равной "
                           "3. Версия же текущей базы данных: 4";
    const std::tuple<const char*, QStringList, QString> rows[] = {
        // type of the column, its values, the message
        {"BYTE", {}, broken.arg("отсутствуют записи")},
        {"BYTE", {"1", "2"}, broken.arg("более одной записи")},
        {"TEXT(10)", {"'три'"}, broken.arg("содержится не числовое значение")},
        {"BYTE", {"NULL"}, broken.arg("содержится не числовое значение")},
        {"BYTE", {"4"}, tooNew},
        {"BYTE", {"0"}, {}},
    };
    for (const auto& [type, values, message] : rows) {
        SCOPED_TRACE(values.join(u' ').toStdString());
        Execute(QStringLiteral("CREATE TABLE v00 (v00vrid %1)").arg(type));
        for (const QString& value : values)
            Execute("INSERT INTO v00 (v00vrid) VALUES (" + value + ")");
        const QByteArray before = Bytes();
        Raise(message.isEmpty() ? QStringList() : QStringList(message), !message.isEmpty());
        EXPECT_TRUE(Bytes() == before);
        Execute("DROP TABLE v00");
    }
    // Without a table of versions it is told, and used.
    Raise({ErrorStart(Head, engine::UnknownTable)});
}

TEST_F(Upgrade, OldVersionsClimbAndARungThatFailsIsUndoneWholeAndTriedAgain) {
    const struct {
        int version;
        const char* inTheWay;
        const char* left; ///< the version behind it
    } rows[] = {{1, "t03", "1"}, {1, "a03", "2"}, {2, "a03", "2"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.version << ' ' << row.inTheWay);
        Open(row.version);
        Execute(QStringLiteral("CREATE TABLE %1 (x INTEGER)").arg(row.inTheWay));
        Raise({ErrorStart(Head, engine::TableExists)});
        const QByteArray before = Bytes();
        Raise({ErrorStart(Head, engine::TableExists)});
        EXPECT_TRUE(Bytes() == before);
        EXPECT_EQ(Version(), row.left);
        EXPECT_EQ(Has("t02"), *row.left == '2');
        EXPECT_EQ(Cards().FieldsCount(), *row.left == '2' ? 6 : 5);

        Execute(QStringLiteral("DROP TABLE %1").arg(row.inTheWay));
        Raise();
        EXPECT_EQ(Version(), "3");
        EXPECT_EQ(Row("SELECT a01clid, a01last, a01bith, a02cval FROM a01, a02"), "7|Иванов|NULL|495");
        EXPECT_EQ(Row("SELECT (SELECT count(*) FROM t02), (SELECT count(*) FROM t03), count(*) FROM a03"),
                  row.version == 1 ? "79|1913|0" : "0|0|0");
        // The step behind the commit of the first rung is made up for by the second one.
        EXPECT_TRUE(Cards().Fields("a01bith").AllowZeroLength());
    }
}

TEST_F(Upgrade, SeedDataThatCannotBeWrittenEndTheProcessWithTheFileAsItWas) {
    Open(1);
    engine::DBEngine::Commit();
    sqlite3* other = nullptr;
    sqlite3_open(Path().toUtf8().constData(), &other);
    const char* atItsEnd = "INSERT INTO sqlite_sequence (name, seq) VALUES ('t03', 9223372036854775807)";
    EXPECT_EQ(sqlite3_exec(other, atItsEnd, nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    Raise({"General функция FillCity:", "Невозможно заполнить таблицу t03."}, true);
    EXPECT_EQ(Version(), "1");
    EXPECT_FALSE(Has("t02"));
    EXPECT_EQ(Cards().FieldsCount(), 5);
}
