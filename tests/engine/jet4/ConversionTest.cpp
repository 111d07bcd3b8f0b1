#include "platform/engine/jet4/Conversion.h"

#include "platform/engine/EngineError.h"
#include "platform/engine/dao/DBEngine.h"
#include "platform/engine/store/NewFile.h"
#include "tests/engine/jet4/OldFiles.h"
#include "tests/support/System.h"
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

/// Fails at one of its steps; may know no links, as some file systems.
class FaultyDisk : public runtime::Disk {
public:
    FaultyDisk(int step, bool links)
        : m_left(step)
        , m_links(links) {}

    std::error_code Sync(const QString& path) override { return Fails() ? Full() : Disk::Sync(path); }
    std::error_code Link(const QString& path, const QString& name) override {
        if (!m_links)
            return std::make_error_code(std::errc::operation_not_supported);
        return Fails() ? Full() : Disk::Link(path, name);
    }
    std::error_code Rename(const QString& path, const QString& name) override {
        return Fails() ? Full() : Disk::Rename(path, name);
    }
    std::error_code Remove(const QString& path) override { return Fails() ? Full() : Disk::Remove(path); }

    bool Failed() const { return m_left <= 0; }

private:
    bool Fails() { return --m_left == 0; }
    static std::error_code Full() { return std::make_error_code(std::errc::no_space_on_device); }

    int m_left;
    bool m_links;
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
            // Money and dates are texts there.
            const engine::Value value = set.Fields(i).Value();
            if (const auto* date = value.As<QDateTime>())
                values.append(date->toString(QStringLiteral("yyyy-MM-ddTHH:mm")));
            else if (value.IsNull())
                values.append(QJsonValue::Null);
            else if (const auto* truth = value.As<bool>())
                values.append(*truth);
            else if (value.As<QString>())
                values.append(value.Text());
            else if (set.Fields(i).Type() == engine::DataType::Currency)
                values.append(QString::number(value.Number(), 'f', 2));
            else
                values.append(value.Number());
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
        }
        database->Close();
    }
}

// What the format allows and the new file has no like of comes over all the same; money is exact, and
// generated numbers go on behind the greatest.
TEST_F(OldFormatConversion, NothingIsLostThatTheNewFileHasNoLikeOf) {
    test::OldBytes old("foreign.mdb");
    const auto rename = [&old](const char16_t* column, const char16_t* name) {
        old.Rename(u"Orders", QString::fromUtf16(column), QString::fromUtf16(name));
    };
    rename(u"OrderId", u"rowid");
    rename(u"Customer", u"a\xFFFFz");
    rename(u"Note", u"a_z");
    old.Replace(old.CatalogRow(u"Пустая таблица"), QStringLiteral("Пустая таблица"),
                QStringLiteral("SQLite_таблица"));
    QByteArray bytes = old.Bytes();
    // 560.99, and what no fraction of 64 bits holds.
    bytes.replace(QByteArray::fromHex("ac99550000000000"), QByteArray::fromHex("feffffffffffff7f"));
    const QString path = Path(QStringLiteral("book.mdb"));
    test::WriteBytes(path, bytes);
    EXPECT_EQ(Conversion(path, NoRules()).Run().renamed,
              (QStringList{QStringLiteral("Orders.a\uFFFFz → a_z_2"),
                           QStringLiteral("SQLite_таблица → _SQLite_таблица")}));
    const auto database = engine::DBEngine::Workspaces(0)->OpenDatabase(path);
    database->Execute(QStringLiteral("INSERT INTO [Товары] ([Название]) VALUES ('')"), engine::dbFailOnError);
    EXPECT_EQ(database->OpenRecordset(QStringLiteral("SELECT MAX([Цена]) FROM [Товары]")).Fields(0).Text(),
              QStringLiteral("922337203685477,5806"));
    database->Close();
    const std::pair<const char*, const char*> rows[] = {
        {"SELECT rowid, a_z_2 FROM Orders ORDER BY 1", "10|Ромашка 11|Василёк"},
        {"SELECT Код FROM Товары ORDER BY 1", "1 2 3 4 5"},
    };
    for (const auto& [sql, expected] : rows)
        EXPECT_EQ(test::ReadRows(path, QString::fromUtf8(sql)).join(u' '), QString::fromUtf8(expected))
            << sql;
}

TEST_F(OldFormatConversion, ACopyThatDiffersIsTold) {
    test::OldBytes old("v1-old.mdb");
    old.Put<std::int16_t>(old.Row(u"a02", 0) + 2 + 8, -5);
    const engine::jet4::Reader reader(old.Bytes(), QString());
    engine::jet4::CopiedTable table{*reader.Find(u"a02"), {.name = QStringLiteral("a02")}};
    for (const engine::jet4::Column& column : table.source.columns)
        table.made.columns.push_back({static_cast<const engine::SizedType&>(column), column.name});
    for (const char* change :
         {"", "UPDATE a02 SET a02cval = 'x' WHERE a02rcid = 2", "INSERT INTO a02 (a02clid) VALUES (1)"}) {
        const engine::HiddenFile file(Path(QString()), QString());
        const QString& path = file.File();
        engine::jet4::RowCopy(path, reader, path).CopyAll({table});
        EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT min(a02code) FROM a02")), QStringList{"-5"});
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
    for (const QString& held : {path, users}) {
        SCOPED_TRACE(held.toStdString());
        Conversion early(path, NoRules());
        QFile file(held);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        struct flock lock {};
        lock.l_type = F_RDLCK;
        ASSERT_EQ(::fcntl(file.handle(), F_OFD_SETLK, &lock), 0);
        EXPECT_EQ(test::FailureOf([&] { Conversion(path, NoRules()); }), engine::FileInUse);
        EXPECT_EQ(test::FailureOf([&] { early.Run(); }), engine::FileInUse);
    }
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

    // No fault loses the old file, and none before the names have changed leaves a trace.
    const QString kept = Path(QStringLiteral("v1-old.jet4.mdb"));
    int faults = 0;
    for (const bool links : {true, false}) {
        bool failed = true;
        for (int step = 1; failed; ++step) {
            SCOPED_TRACE(testing::Message() << "links " << links << " step " << step);
            test::WriteBytes(path, before);
            QFile::remove(kept);
            FaultyDisk disk(step, links);
            const int number = test::FailureOf([&] { Conversion(path, NoRules()).Run(disk); });
            failed = disk.Failed();
            faults += number != 0;
            EXPECT_TRUE(number == 0 || number == engine::DiskFull) << number;
            EXPECT_TRUE(failed || number == 0);
            if (number != 0 && test::ReadBytes(path) == before)
                EXPECT_EQ(Files(), files);
            else
                EXPECT_EQ(test::ReadBytes(kept), before);
        }
    }
    EXPECT_GT(faults, 6);
}

TEST_F(OldFormatConversion, KeepsThePlaceBehindALinkAndTheRightsOfTheFile) {
    const QString path = Copy("v1-old.mdb");
    const auto kept = [this](int place) { return Path(QStringLiteral("v1-old.jet4-%1.mdb").arg(place)); };
    // What has the name of the kept file already stays.
    test::WriteBytes(Path(QStringLiteral("v1-old.jet4.mdb")), "somebody's");
    test::LinkByName(path, kept(2));
    // After a power failure between the two names the next try takes up the same second name.
    ASSERT_TRUE(test::LinkFile(path, kept(3)));
    test::WriteBytes(path + QStringLiteral("-journal"), "stale"); // would be played into the new one
    QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup);
    EXPECT_EQ(Conversion(kept(2), NoRules()).Run().kept, kept(3));
    EXPECT_EQ(QFileInfo(kept(2)).symLinkTarget(), path);
    EXPECT_FALSE(Conversion::IsNeeded(path));
    EXPECT_EQ(test::ReadBytes(Path(QStringLiteral("v1-old.jet4.mdb"))), "somebody's");
    EXPECT_FALSE(QFile::exists(path + QStringLiteral("-journal")));
    EXPECT_EQ(QFile::permissions(path) & (QFile::ReadGroup | QFile::ReadOther), QFile::ReadGroup);
}
