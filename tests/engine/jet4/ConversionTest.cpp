#include "platform/engine/jet4/Conversion.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/dao/DBEngine.h"
#include "platform/engine/store/DatabaseFile.h"
#include "tests/engine/jet4/OldFiles.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <sqlite3.h>

#include <functional>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/file.h>
#endif

using engine::jet4::Conversion;
using engine::jet4::Report;

namespace {

/// Rules of somebody who knows no table.
engine::jet4::Rules NoRules() {
    return {.requiredTables = {},
            .furtherTables = [](const auto&) { return QStringList(); },
            .known = [](const auto&, const auto&) { return engine::jet4::KnownTable(); }};
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
    const std::pair<const char*, const char*> files[] = {
        // a file, and the one that lists its rows
        {"v3-small.mdb", "v3-small.mdb"},
        {"v1-old.mdb", "v1-old.mdb"},
        {"v2-old.mdb", "v2-old.mdb"},
        {"v3-upgraded.mdb", "v3-upgraded.mdb"},
        {"foreign.mdb", "foreign.mdb"},
        {"v1-encoded.mdb", "v1-old.mdb"},
        // The spoilt block belongs to properties, which tell nothing of the rows.
        {"broken-property-loop.mdb", "v1-old.mdb"},
    };
    for (const auto& [name, rows] : files) {
        SCOPED_TRACE(name);
        const QString path = Copy(name);
        const QByteArray before = test::ReadBytes(path);
        ASSERT_TRUE(Conversion::IsNeeded(path));
        const Report report = Conversion(path, NoRules()).Run();
        EXPECT_EQ(test::ReadBytes(report.kept), before);
        EXPECT_FALSE(Conversion::IsNeeded(path));
        EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
        const auto database = engine::DBEngine::Workspaces(0)->OpenDatabase(path);
        const QJsonObject tables = expected[QString::fromUtf8(rows)].toObject();
        EXPECT_EQ(database->TableNames().size(), tables.size());
        for (auto it = tables.begin(); it != tables.end(); ++it) {
            if (it.value().isObject())
                ExpectTable(*database, it.key(), it.value().toObject());
            else
                EXPECT_EQ(database->OpenRecordset(QStringLiteral("SELECT COUNT(*) FROM ") + it.key())
                              .Fields(0)
                              .Text(),
                          it.key() == u"t02" ? QStringLiteral("79") : QStringLiteral("1913"));
        }
        database->Close();
    }
    const auto database = engine::DBEngine::Workspaces(0)->OpenDatabase(Path(QStringLiteral("v3-small.mdb")));
    for (const char* column : {"a01.a01clid:4:0", "a01.a01memo:10:100", "A02.a02rcid:5:0", "a02.a02code:3:0",
                               "t01.t01type:2:0", "a03.a03evdt:10:20"}) {
        const QString text = QString::fromUtf8(column);
        const auto field =
            database->TableDefs(text.section(u'.', 0, 0)).Fields(text.section(u'.', 1).section(u':', 0, 0));
        EXPECT_EQ(text.section(u':', 1),
                  QStringLiteral("%1:%2").arg(static_cast<int>(field.Type())).arg(field.Size()))
            << column;
    }
    database->Close();
}

TEST_F(OldFormatConversion, MoneyIsExactAndGeneratedNumbersGoOnBehindTheGreatest) {
    const QString path = Copy("foreign.mdb");
    QByteArray bytes = test::ReadBytes(path);
    // 560.99, and what no fraction of 64 bits holds.
    const QByteArray price = QByteArray::fromHex("ac99550000000000");
    ASSERT_TRUE(bytes.contains(price));
    bytes.replace(price, QByteArray::fromHex("feffffffffffff7f"));
    test::WriteBytes(path, bytes);
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

// What the format allows and the new file has no like of: it comes over all the same.
TEST_F(OldFormatConversion, NothingIsLostThatTheNewFileHasNoLikeOf) {
    const auto rename = [](const char16_t* column, const char16_t* name) {
        return [=](test::OldBytes& bytes) {
            bytes.Rename(u"Orders", QString::fromUtf16(column), QString::fromUtf16(name));
        };
    };
    const QStringList orders{QStringLiteral("10|Ромашка"), QStringLiteral("11|Василёк")};
    const struct {
        const char* file;
        std::function<void(test::OldBytes&)> change;
        const char* sql;
        QStringList rows;
        QStringList renamed = {};
    } cases[] = {
        {"foreign.mdb", rename(u"OrderId", u"RowId"), "SELECT RowId, Customer FROM Orders ORDER BY 1",
         orders},
        {"foreign.mdb",
         [&](test::OldBytes& bytes) {
             rename(u"OrderId", u"rowid")(bytes);
             rename(u"Customer", u"_rowid_")(bytes);
             rename(u"Note", u"oid")(bytes);
         },
         "SELECT rowid, _rowid_ FROM Orders ORDER BY 1", orders},
        {"foreign.mdb",
         rename(u"Customer", u"a\xFFFFz"),
         "SELECT OrderId, a_z FROM Orders ORDER BY 1",
         orders,
         {QStringLiteral("Orders.a\uFFFFz → a_z")}},
        {"foreign.mdb",
         [&](test::OldBytes& bytes) {
             rename(u"Customer", u"a\xFFFFz")(bytes);
             rename(u"OrderId", u"a_z")(bytes);
         },
         "SELECT a_z, a_z_2 FROM Orders ORDER BY 1",
         orders,
         {QStringLiteral("Orders.a\uFFFFz → a_z_2")}},
        {"foreign.mdb",
         [](test::OldBytes& bytes) {
             bytes.Replace(bytes.CatalogRow(u"Orders"), QStringLiteral("Orders"), QStringLiteral("~rders"));
         },
         "SELECT count(*) FROM _rders",
         {QStringLiteral("2")},
         {QStringLiteral("~rders → _rders")}},
        {"foreign.mdb",
         [](test::OldBytes& bytes) {
             bytes.Replace(bytes.CatalogRow(u"Пустая таблица"), QStringLiteral("Пустая таблица"),
                           QStringLiteral("SQLite_таблица"));
         },
         "SELECT count(*) FROM _SQLite_таблица",
         {QStringLiteral("0")},
         {QStringLiteral("SQLite_таблица → _SQLite_таблица")}},
        {"foreign.mdb",
         [](test::OldBytes& bytes) {
             bytes.Put(bytes.Row(u"Товары", 1) + 2, bytes.U32(bytes.Row(u"Товары", 0) + 2));
         },
         "SELECT Код FROM Товары ORDER BY 1",
         {QStringLiteral("1"), QStringLiteral("1"), QStringLiteral("3"), QStringLiteral("4")}},
        {"foreign.mdb",
         [](test::OldBytes& bytes) { bytes.Add(bytes.Trailer(u"Товары", 0, 0), -1); },
         "SELECT Код FROM Товары ORDER BY 1",
         {QStringLiteral("NULL"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4")}},
        {"foreign.mdb",
         [](test::OldBytes& bytes) { bytes.Put(bytes.Row(u"Товары", 0) + 2 + 20, -657434.75); },
         "SELECT Завезён FROM Товары WHERE Код = 1",
         {QStringLiteral("-657434.75")}},
        {"v1-old.mdb",
         [](test::OldBytes& bytes) {
             // A mark at the start would say that the text is compressed; so it is, but for the mark.
             const QByteArray marked("\xFF\xFE\0\xFF\xFE\0"
                                     "2233445566",
                                     16);
             for (qsizetype i = 0; i < marked.size(); ++i)
                 bytes.Put(bytes.Row(u"a02", 0) + 2 + 10 + i, marked[i]);
             bytes.Put<std::uint16_t>(bytes.Row(u"a02", 1) + 2 + 10, 0xFFFE);
         },
         "SELECT substr(hex(CAST(a02cval AS BLOB)), 1, 4), length(a02cval) > 5 FROM a02 ORDER BY a02rcid "
         "LIMIT 2",
         {QStringLiteral("FFFE|1"), QStringLiteral("FEFF|1")}},
        {"v1-old.mdb",
         [](test::OldBytes& bytes) { bytes.AddColumn(u"a01", QStringLiteral("Новый")); },
         "SELECT count(*), count(Новый), count(a01clid), max(length(a01last)) FROM a01",
         {QStringLiteral("11|0|11|50")}},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.sql);
        test::OldBytes bytes(row.file);
        row.change(bytes);
        const QString path = Path(QStringLiteral("book.mdb"));
        test::WriteBytes(path, bytes.Bytes());
        const Report report = Conversion(path, NoRules()).Run();
        EXPECT_EQ(test::ReadRows(path, QString::fromUtf8(row.sql)), row.rows);
        EXPECT_EQ(report.renamed, row.renamed);
        EXPECT_EQ(report.notCopied, QStringList());
    }
}

TEST_F(OldFormatConversion, ACopyThatDiffersIsTold) {
    const engine::jet4::Reader reader(test::OldFile(QStringLiteral("v1-old.mdb")));
    engine::jet4::CopiedTable table{*reader.Find(u"a02"), {.name = QStringLiteral("a02")}};
    for (const engine::jet4::Column& column : table.source.columns)
        table.made.columns.push_back({column, column.name});
    for (const char* change :
         {"", "UPDATE a02 SET a02cval = 'x' WHERE a02rcid = 2", "DELETE FROM a02",
          "UPDATE a02 SET a02code = a02code + 1", "INSERT INTO a02 (a02clid) VALUES (1)"}) {
        const engine::HiddenFile file(Path(QString()), QString());
        const QString& path = file.File();
        engine::jet4::RowCopy(path, reader, path).CopyAll({table});
        sqlite3* db = nullptr;
        sqlite3_open(path.toUtf8().constData(), &db);
        EXPECT_EQ(sqlite3_exec(db, change, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
        sqlite3_close(db);
        EXPECT_EQ(test::FailureOf([&] { engine::jet4::RowCopy(path, reader, path).CompareAll({table}); }),
                  *change ? engine::DiskOrNetworkFailure : 0)
            << change;
    }
}

#ifdef Q_OS_UNIX
// Another program that has the old file open may not have written all of it yet.
TEST_F(OldFormatConversion, WaitsForOtherPrograms) {
    const QString path = Copy("v1-old.mdb");
    const QString users = Path(QStringLiteral("v1-old.ldb"));
    test::WriteBytes(users, {});
    const auto take = [](int file) {
        struct flock lock {};
        lock.l_type = F_RDLCK;
        return ::fcntl(file, F_OFD_SETLK, &lock) == 0;
    };
    const auto takeWhole = [](int file) { return ::flock(file, LOCK_SH) == 0; };
    for (const QString& held : {path, users}) {
        for (const std::function<bool(int)>& lock : {std::function<bool(int)>(take), {takeWhole}}) {
            SCOPED_TRACE(held.toStdString());
            Conversion early(path, NoRules());
            QFile file(held);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            ASSERT_TRUE(lock(file.handle()));
            EXPECT_EQ(test::FailureOf([&] { Conversion(path, NoRules()); }), engine::FileInUse);
            EXPECT_EQ(test::FailureOf([&] { early.Run(); }), engine::FileInUse);
        }
    }
    EXPECT_EQ(Conversion(path, NoRules()).Run().kept, Path(QStringLiteral("v1-old.jet4.mdb")));
}

TEST_F(OldFormatConversion, ANameWithoutRoomForThatOfTheKeptFileIsRefused) {
    const QString path = Path(QString(248, u'x') + QStringLiteral(".mdb"));
    ASSERT_TRUE(QFile::copy(test::OldFile(QStringLiteral("v1-old.mdb")), path));
    EXPECT_EQ(test::FailureOf([&] { Conversion(path, NoRules()); }, QStringLiteral("xxx.jet4.mdb")),
              engine::InvalidPath);
}
#endif

TEST_F(OldFormatConversion, RefusalsAndFaultsLeaveTheFolderAsItWas) {
    const QString path = Copy("v1-old.mdb");
    const QByteArray before = test::ReadBytes(path);
    const QStringList files = Files();
    const auto expectUntouched = [&] {
        EXPECT_EQ(test::ReadBytes(path), before);
        EXPECT_EQ(Files(), files);
    };

    engine::jet4::Rules stranger = NoRules();
    stranger.requiredTables = {QStringLiteral("a01"), QStringLiteral("missing")};
    EXPECT_EQ(test::FailureOf([&] { Conversion(path, stranger); }), engine::UnrecognisedFormat);
    expectUntouched();

    engine::jet4::Rules severe = NoRules();
    severe.furtherTables = [](const auto&) { return QStringList{QStringLiteral("missing")}; };
    EXPECT_EQ(test::FailureOf([&] { Conversion(path, severe); }), engine::CannotOpenDatabase);
    expectUntouched();

    // The other program writes to the file while it is converted.
    Conversion late(path, NoRules());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        file.setFileTime(QDateTime::currentDateTime().addSecs(60), QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(test::FailureOf([&] { late.Run(); }), engine::FileInUse);
    expectUntouched();

    class FullDisk : public runtime::Disk {
        std::error_code Sync(const QString&) override {
            return std::make_error_code(std::errc::no_space_on_device);
        }
    } full;
    EXPECT_EQ(test::FailureOf([&] { Conversion(path, NoRules()).Run(full); }), engine::DiskFull);
    expectUntouched();
}
