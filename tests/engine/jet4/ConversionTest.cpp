#include "platform/engine/jet4/Conversion.h"

#include "platform/engine/EngineError.h"
#include "tests/engine/jet4/OldFiles.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>

using engine::jet4::Conversion;
using engine::jet4::Report;

namespace {

/// Rules of somebody who knows no table.
engine::jet4::Rules NoRules() {
    return {.requiredTables = {},
            .makeTable = [](engine::Database&, const engine::jet4::Table&) { return false; }};
}

class OldFormatConversion : public testing::Test {
protected:
    QString Path(const QString& name) const { return m_folder.Path(name); }

    QString Copy(const char* name) const {
        QString path = Path(QString::fromUtf8(name));
        EXPECT_TRUE(QFile::copy(test::OldFile(QString::fromUtf8(name)), path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        return path;
    }

    QStringList Files() const {
        return QFileInfo(Path(QStringLiteral("x"))).dir().entryList(QDir::Files | QDir::Hidden);
    }

private:
    test::TestFolder m_folder;
};

void ExpectTable(engine::Database& database, const QString& table, const QJsonObject& expected) {
    SCOPED_TRACE(table.toStdString());
    QStringList names;
    for (const auto& column : expected[QLatin1String("columns")].toArray())
        names += u'[' + column.toString() + u']';
    engine::Recordset set = database.OpenRecordset(
        QStringLiteral("SELECT %1 FROM [%2] ORDER BY %3").arg(names.join(u','), table, names.front()));
    QJsonArray rows;
    for (; !set.EndOfFile(); set.MoveNext()) {
        QJsonArray values;
        for (int i = 0; i < set.FieldsCount(); ++i) {
            engine::Value value = set.Fields(i).Value();
            if (const auto* date = value.As<QDateTime>())
                values.append(date->toString(QStringLiteral("yyyy-MM-ddTHH:mm")));
            else
                values.append(test::JsonOf(value, set.Fields(i).Type()));
        }
        rows.append(values);
    }
    EXPECT_EQ(QJsonDocument(rows).toJson().toStdString(),
              QJsonDocument(expected[QLatin1String("rows")].toArray()).toJson().toStdString());
}

} // namespace

TEST_F(OldFormatConversion, TablesThatNobodyKnowsKeepTheirRowsAndTypes) {
    const QJsonObject expected = test::ExpectedRows();
    for (const char* name : {"foreign.mdb", "v3-small.mdb"}) {
        SCOPED_TRACE(name);
        const QString path = Copy(name);
        const QByteArray before = test::BytesOf(path);
        ASSERT_TRUE(Conversion::IsNeeded(path));
        const Report report = Conversion(path, NoRules()).Run();
        EXPECT_EQ(test::BytesOf(report.kept), before);
        EXPECT_FALSE(Conversion::IsNeeded(path));
        EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
        const auto database = engine::DBEngine::Workspaces(0)->OpenDatabase(path);
        const QJsonObject tables = expected[QString::fromUtf8(name)].toObject();
        for (auto it = tables.begin(); it != tables.end(); ++it) {
            if (it.value().isObject())
                ExpectTable(*database, it.key(), it.value().toObject());
        }
        database->Close();
    }
    EXPECT_EQ(
        test::ReadRows(Path(QStringLiteral("v3-small.mdb")), QStringLiteral("SELECT count(*) FROM t03")),
        QStringList{QStringLiteral("1913")});
}

TEST_F(OldFormatConversion, MoneyIsExactAndGeneratedNumbersGoOnBehindTheGreatest) {
    const QString path = Copy("foreign.mdb");
    QByteArray bytes = test::BytesOf(path);
    // 560.99, and what no fraction of 64 bits holds.
    const QByteArray price = QByteArray::fromHex("ac99550000000000");
    ASSERT_TRUE(bytes.contains(price));
    bytes.replace(price, QByteArray::fromHex("feffffffffffff7f"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    Conversion(path, NoRules()).Run();
    const auto database = engine::DBEngine::Workspaces(0)->OpenDatabase(path);
    EXPECT_EQ(database->OpenRecordset(QStringLiteral("SELECT MAX([Цена]) FROM [Товары]")).Fields(0).Text(),
              QStringLiteral("922337203685477,5806"));
    database->Execute(QStringLiteral("INSERT INTO [Товары] ([Название]) VALUES ('')"), engine::dbFailOnError);
    EXPECT_EQ(
        database->OpenRecordset(QStringLiteral("SELECT MAX([Код]) FROM [Товары]")).Fields(0).Value().Long(),
        5);
    database->Close();
}

TEST_F(OldFormatConversion, KeepsThePlaceBehindALinkAndTheRightsOfTheFile) {
    const QString path = Copy("v1-old.mdb");
    QDir().mkdir(Path(QStringLiteral("links")));
    const QString link = Path(QStringLiteral("links/book.mdb"));
    ASSERT_TRUE(QFile::link(path, link));
    QFile::setPermissions(path, QFile::ReadOwner);
    Conversion conversion(link, NoRules());
    EXPECT_EQ(conversion.KeptName(), QStringLiteral("v1-old.jet4.mdb"));
    const Report report = conversion.Run();
    EXPECT_EQ(report.kept, Path(QStringLiteral("v1-old.jet4.mdb")));
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), path);
    EXPECT_FALSE(Conversion::IsNeeded(link));
    EXPECT_FALSE(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther));
}

TEST_F(OldFormatConversion, RefusalsAndFaultsLeaveTheFolderAsItWas) {
    const QString path = Copy("v1-old.mdb");
    const QByteArray before = test::BytesOf(path);
    const QStringList files = Files();
    const auto expectUntouched = [&] {
        EXPECT_EQ(test::BytesOf(path), before);
        EXPECT_EQ(Files(), files);
    };

    engine::jet4::Rules stranger = NoRules();
    stranger.requiredTables = {QStringLiteral("a01"), QStringLiteral("missing")};
    EXPECT_EQ(test::FailureNumber([&] { Conversion(path, stranger); }), engine::UnrecognisedFormat);
    expectUntouched();

    // A rule that the rows do not keep: two rows of one key.
    engine::jet4::Rules narrow = NoRules();
    narrow.makeTable = [](engine::Database& target, const engine::jet4::Table& table) {
        if (table.name != QLatin1String("a02"))
            return false;
        target.Execute(
            QStringLiteral("CREATE TABLE a02 (a02rcid COUNTER, a02clid LONG, a02code SHORT PRIMARY KEY, "
                           "a02cval TEXT(50))"),
            engine::dbFailOnError);
        return true;
    };
    EXPECT_EQ(test::FailureNumber([&] { Conversion(path, narrow).Run(); }), engine::CannotOpenDatabase);
    expectUntouched();

    // The other program writes to the file while it is converted.
    Conversion late(path, NoRules());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        file.setFileTime(QDateTime::currentDateTime().addSecs(60), QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(test::FailureNumber([&] { late.Run(); }), engine::FileInUse);
    expectUntouched();

    class FullDisk : public engine::jet4::Disk {
        std::error_code Sync(const QString&) override {
            return std::make_error_code(std::errc::no_space_on_device);
        }
    } full;
    EXPECT_EQ(test::FailureNumber([&] { Conversion(path, NoRules()).Run(full); }), engine::DiskFull);
    expectUntouched();
}
