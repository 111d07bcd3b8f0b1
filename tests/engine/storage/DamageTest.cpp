// Files that carry our mark and are not what they seem: opened, read and written they give answers or
// failures, and a file that is refused stays as it was.
#include "tests/engine/storage/StorageTest.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>
#include <sqlite3.h>

#include <map>
#include <set>

namespace {

constexpr qsizetype pageSize = 4096;

class Damage : public test::Storage {
protected:
    /// A book with every kind of page: trees of two levels of a table and of an index, a text over several
    /// pages, free pages.
    QByteArray Sound() {
        Run(QStringLiteral("CREATE TABLE gone (g LONGTEXT)"));
        MakeCards();
        Run(QStringLiteral("CREATE TABLE u (k TEXT(50) NOT NULL UNIQUE)"));
        Run(QStringLiteral("CREATE TABLE notes (n LONGTEXT)"));
        for (int id = 0; id < 90; ++id) {
            const QString text = QString::number(id) + QString(40, u'я');
            Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, '%2')").arg(id).arg(text));
            Run(QStringLiteral("INSERT INTO u VALUES ('%1')").arg(text));
        }
        for (const char* table : {"gone", "notes"})
            Run(QStringLiteral("INSERT INTO %1 VALUES ('%2')")
                    .arg(QLatin1String(table), QString(6000, u'з')));
        Run(QStringLiteral("DROP TABLE gone"));
        database->Close();
        return test::ReadBytes(path);
    }

    /// Whatever the program does with a book. True if the file could be opened.
    bool Use(const QByteArray& bytes) {
        test::WriteBytes(path, bytes);
        const QDateTime stamp = QFileInfo(path).lastModified();
        const int failure = test::FailureOf([&] { database = workspace->OpenDatabase(path); });
        if (failure != 0) {
            EXPECT_TRUE(failure == 3343 || failure == 3049) << failure;
            EXPECT_TRUE(test::ReadBytes(path) == bytes && QFileInfo(path).lastModified() == stamp)
                << "written to";
            return false;
        }
        for (const char* sql : {"SELECT * FROM a01", "SELECT * FROM u ORDER BY k", "SELECT * FROM notes"})
            Note(test::FailureOf([&] { Ask(QString::fromLatin1(sql)); }));
        for (const char* sql :
             {"INSERT INTO u VALUES ('5')", "UPDATE a01 SET a01frst = 'Иван'", "DELETE FROM notes"})
            Note(FailureOfRun(QString::fromUtf8(sql)));
        Note(test::FailureOf([] { engine::DBEngine::Commit(); }));
        test::FailureOf([&] { database->Close(); });
        database.reset();
        return true;
    }

    void Note(int failure) {
        static const std::set<int> sensible{0, 3022, 3049, 3061, 3073, 3078, 3192, 3163, 3314, 3315, 3349};
        EXPECT_TRUE(sensible.contains(failure)) << failure;
    }
};

QByteArray Patched(QByteArray bytes, qsizetype at, const QByteArray& with) {
    return bytes.replace(at, with.size(), with);
}

QByteArray BigEndian(quint32 number) {
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

/// So many columns of which each takes the one before twice.
QByteArray Doubling(int count) {
    QByteArray columns;
    for (int i = 1; i <= count; ++i)
        columns += ", c" + QByteArray::number(i) + " INT AS (c" + QByteArray::number(i - 1) + " + c" +
                   QByteArray::number(i - 1) + ')';
    return columns;
}

} // namespace

TEST_F(Damage, EveryByteOfTheHeader) {
    const QByteArray sound = Sound();
    int opened = 0;
    for (qsizetype at = 0; at < 100; ++at) {
        for (const int value : {0, 2, 0xff}) {
            SCOPED_TRACE(testing::Message() << at << '=' << value);
            opened += Use(Patched(sound, at, QByteArray(1, static_cast<char>(value)))) ? 1 : 0;
        }
    }
    EXPECT_GT(opened, 0); // counters and the like do not matter
}

TEST_F(Damage, EveryKindOfPage) {
    const QByteArray sound = Sound();
    const auto pages = static_cast<quint32>(sound.size() / pageSize);
    const auto freePages = qFromBigEndian<quint32>(sound.constData() + 36);
    EXPECT_GT(freePages, 1U);
    std::map<int, int> kinds;
    for (quint32 page = 1; page <= pages; ++page) {
        SCOPED_TRACE(page);
        const qsizetype start = (page - 1) * pageSize;
        const qsizetype head = page == 1 ? start + 100 : start;
        ++kinds[sound[head]];
        const QByteArray other = sound.sliced(page == 2 ? 2 * pageSize : pageSize, pageSize);
        const QByteArray cases[] = {
            Patched(sound, head, QByteArray(start + pageSize - head, '\0')),
            Patched(sound, head, QByteArray(start + pageSize - head, '\xff')),
            Patched(sound, head, other.first(start + pageSize - head)),
            Patched(sound, head, QByteArray(1, static_cast<char>(sound[head] ^ 8))), // leaf for branch
            Patched(sound, head + 1, "\x0f\xff"),                                    // free block
            Patched(sound, head + 3, "\x7f\xff"),                                    // count of cells
            Patched(sound, head + 5, QByteArray(2, '\0')),                           // start of cells
            Patched(sound, head + 8, BigEndian(page)),                               // a loop
            Patched(sound, head + 8, BigEndian(pages + 1)),                          // behind the end
            Patched(sound, head + 12, QByteArray(8, '\x01')),
            Patched(sound, start, BigEndian(page)),
            Patched(sound, start + pageSize / 2, QByteArray(16, '\xff')),
            Patched(sound, start + pageSize - 40, QByteArray(30, '\x7f')),
        };
        for (const QByteArray& bytes : cases)
            Use(bytes);
    }
    for (const int kind : {2, 5, 10, 13}) // branches and leaves of indexes and of tables
        EXPECT_GT(kinds[kind], 0) << kind;
    EXPECT_GT(kinds[0], 0); // free, or the rest of a long text
}

TEST_F(Damage, CutFiles) {
    const QByteArray sound = Sound();
    for (qsizetype size = 0; size < sound.size(); size += size < 200 ? 10 : pageSize / 2 - 7) {
        SCOPED_TRACE(size);
        EXPECT_FALSE(Use(sound.first(size)));
    }
    EXPECT_TRUE(Use(sound + QByteArray(10, 'x'))); // half a page behind the end was never begun
}

// What a strange file brings along beside rows does nothing: no code of it runs, and none keeps the program
// busy.
TEST_F(Damage, CodeInAFileIsDead) {
    constexpr const char* ourTable = "DROP TABLE a01; CREATE TABLE a01 ";
    const struct {
        const char* what;
        QByteArray before;
        QByteArray sql;
        int opening;
        int inserting;
        int reading;
    } cases[] = {
        {"trigger", "", "CREATE TRIGGER t AFTER INSERT ON a01 BEGIN DELETE FROM u; END", 0, 0, 0},
        {"trigger of an update", "",
         "CREATE TRIGGER t BEFORE UPDATE ON a01 BEGIN SELECT RAISE(FAIL, 'x'); END", 0, 0, 0},
        {"view for a table", "DROP TABLE a01;", "CREATE VIEW a01 AS SELECT 1 AS a01clid, 'x' AS a01last", 0,
         3192, 3078},
        {"view with a trigger", "DROP TABLE a01; CREATE VIEW a01 AS SELECT 1 AS a01clid;",
         "CREATE TRIGGER t INSTEAD OF INSERT ON a01 BEGIN DELETE FROM u; END", 0, 3192, 3078},
        {"virtual table", "DROP TABLE a01;", "CREATE VIRTUAL TABLE a01 USING fts5(a01clid, a01last)", 0, 3192,
         3078},
        {"virtual table in other words",
         "DROP TABLE a01; CREATE VIRTUAL TABLE a01 USING fts5(a01clid, a01last); PRAGMA writable_schema = "
         "ON;",
         "UPDATE sqlite_schema SET sql = 'CREATE /**/ ' || substr(sql, 8) WHERE name = 'a01'", 0, 3192, 3078},
        {"huge check", ourTable, "(a01clid INT CHECK (length(zeroblob(900000000)) > 0), a01last)", 0, 3360,
         0},
        {"columns that double", ourTable, "(a01clid INT, a01last, c0 INT AS (a01clid)" + Doubling(60) + ")",
         3343, 0, 0},
        {"function of ours", ourTable, "(a01clid INT CHECK (zv_space(a01clid) > ''), a01last)", 3049, 0, 0},
        {"unknown function", ourTable, "(a01clid INT CHECK (nobody(a01clid)), a01last)", 0, 3071, 0},
        {"unknown collation", "", "CREATE INDEX i ON a01 (a01frst COLLATE nobody)", 3049, 0, 0},
        {"foreign key", ourTable, "(a01clid INT REFERENCES u ON DELETE CASCADE, a01last)", 0, 0, 0},
        {"table without row numbers", ourTable, "(a01clid INT PRIMARY KEY, a01last) WITHOUT ROWID", 0, 0,
         3071},
    };
    const QByteArray sound = Sound();
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        test::WriteBytes(path, sound);
        sqlite3* other = nullptr;
        sqlite3_open(path.toUtf8().constData(), &other);
        const auto always = [](void*, int, const void*, int, const void*) { return 0; };
        sqlite3_create_collation(other, "nobody", SQLITE_UTF8, nullptr, always);
        sqlite3_create_collation(other, "ZV_FOLD", SQLITE_UTF8, nullptr, always);
        const auto number = [](sqlite3_context* context, int, sqlite3_value**) {
            sqlite3_result_int(context, 1);
        };
        for (const char* name : {"nobody", "zv_space"})
            sqlite3_create_function_v2(other, name, -1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, number,
                                       nullptr, nullptr, nullptr);
        EXPECT_EQ(sqlite3_exec(other, (row.before + row.sql).constData(), nullptr, nullptr, nullptr),
                  SQLITE_OK)
            << sqlite3_errmsg(other);
        sqlite3_close(other);

        const QByteArray bytes = test::ReadBytes(path);
        EXPECT_EQ(test::FailureOf([&] { database = workspace->OpenDatabase(path); }), row.opening);
        if (row.opening != 0) {
            EXPECT_TRUE(test::ReadBytes(path) == bytes) << "written to";
            continue;
        }
        EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (900, 'x')")),
                  row.inserting);
        EXPECT_EQ(test::FailureOf([&] { Ask(QStringLiteral("SELECT * FROM a01")); }), row.reading);
        EXPECT_EQ(FailureOfRun(QStringLiteral("UPDATE a01 SET a01last = 'y' WHERE a01clid = 900")),
                  row.reading == 3078 ? 3078 : 0);
        EXPECT_EQ(AskOne(QStringLiteral("SELECT COUNT(*) FROM u")), QStringLiteral("90"));
        database->Close();
    }
}
