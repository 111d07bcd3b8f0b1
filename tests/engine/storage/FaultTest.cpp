// Every call to the file system and every allocation fails once, and once for good. Whatever happens: a
// failure with a sensible number, no crash, a file that is sound afterwards, statements whole or not there at
// all, and everything that a commit had reported.

#include "platform/engine/EngineError.h"
#include "tests/engine/EngineTest.h"
#include "tests/support/FaultSweep.h"
#include "tests/support/FullRun.h"

#include <QDateTime>
#include <QFile>
#include <QSet>

#include <iostream>

namespace {

/// What a user does to a book, with a record of what the engine has promised.
class Session {
public:
    explicit Session(const QString& path)
        : m_path(path) {}

    /// Goes on behind each failure, as the windows do.
    void Run() {
        const auto workspace = engine::DBEngine::CreateWorkspace({}, {}, {});
        std::shared_ptr<engine::Database> book;
        if (!Try([&] { book = workspace->OpenDatabase(m_path); }))
            return;
        for (int card = 1; card <= 12; ++card) {
            Insert(*book, card);
            if (card % 4 == 0)
                Commit();
        }
        Transaction(*workspace, *book);
        Try([&] { book->TableDefs(QStringLiteral("a01")).Fields(1).SetAllowZeroLength(true); });
        Insert(*book, 13);
        Commit();
        Try([&] {
            test::Rows(book->OpenRecordset(QStringLiteral("SELECT * FROM a01, a02 WHERE a01clid = a02clid")));
        });
        if (!Try([&] { book->Close(); }))
            Try([&] { book->Close(); });
    }

    QList<int> failures;
    QSet<int> promised;

private:
    template <class Work>
    bool Try(Work work) {
        const int failure = test::FailureOf(work);
        if (failure != 0)
            failures += failure;
        return failure == 0;
    }

    bool Run(engine::Database& book, const char* statement, int card = 0) {
        return Try([&] {
            book.Execute(QString::fromUtf8(statement).replace(QStringLiteral("%1"), QString::number(card)),
                         engine::dbFailOnError);
        });
    }

    void Insert(engine::Database& book, int card) {
        // Three rows by one statement.
        if (Run(book, "INSERT INTO a01 (a01clid, a01last) VALUES (%1, STRING(50, 'ж'))", card) &&
            Run(book, "INSERT INTO a02 (a02clid, a02code, a02cval) SELECT %1, k, 'x' FROM three", card))
            m_pending += card;
    }

    void Commit() {
        if (Try([] { engine::DBEngine::Commit(); }))
            promised.unite(m_pending);
        m_pending.clear();
    }

    void Transaction(engine::Workspace& workspace, engine::Database& book) {
        m_pending.clear();
        if (!Try([&] { workspace.BeginTrans(); }))
            return;
        Run(book, "ALTER TABLE a01 ADD COLUMN a01bith TEXT(20)");
        Insert(book, 100);
        if (Try([&] { workspace.CommitTrans(); }))
            promised.unite(m_pending);
        else
            EXPECT_EQ(test::FailureOf([&] { workspace.Rollback(); }), 0);
        m_pending.clear();
    }

    QString m_path;
    QSet<int> m_pending;
};

class Faults : public test::EngineTest {
protected:
    Faults() {
        MakeCards();
        Check(R"(
            CREATE TABLE three (k SHORT NOT NULL PRIMARY KEY)
            INSERT INTO three VALUES (1) ; INSERT INTO three VALUES (2) ; INSERT INTO three VALUES (3) -> 1
        )");
        database->Close();
    }

    void CheckFile(const Session& session, const QString& copy) {
        database = workspace->OpenDatabase(copy); // puts right what was left half done
        ASSERT_EQ(test::Integrity(copy), QStringLiteral("ok"));
        const QStringList cards =
            Result(QStringLiteral("SELECT a01clid FROM a01")).split(QStringLiteral(" / "));
        for (const int card : session.promised)
            EXPECT_TRUE(cards.contains(QString::number(card))) << card;
        Check("SELECT a02clid FROM a02 GROUP BY a02clid HAVING COUNT(*) <> 3 ->");
        database->Close();
    }

    QString Copy() const {
        QString copy = folder.Path(QStringLiteral("copy.mdb"));
        QFile::remove(copy);
        QFile::remove(copy + QStringLiteral("-journal"));
        QFile::copy(path, copy);
        return copy;
    }

    void Survive(test::Fault& fault) {
        const QString copy = Copy();
        Session session(copy);
        {
            const test::FaultyFiles faulty([&](test::FaultyFiles::Call call) { return fault.Judge(call); });
            session.Run();
            if (fault.CutsPower())
                test::FaultyFiles::PowerOn(*fault.Kind().remains);
        }
        for (const int failure : session.failures)
            EXPECT_EQ(failure, fault.Kind().number);
        CheckFile(session, copy);
    }
};

} // namespace

TEST_F(Faults, OfTheDisk) {
    test::SweepFaults("engine", 6, test::DiskFaults(), [this](test::Fault& fault) { Survive(fault); });
}

// Such a commit is in the file: it is told for what it is, once, and leaves nothing to be undone.
TEST_F(Faults, ACommitThatLacksTheSyncOfItsFolderStands) {
    const QString copy = Copy();
    bool fails = false;
    const test::FaultyFiles faulty([&fails](test::FaultyFiles::Call call) {
        return fails && call == test::FaultyFiles::Call::SyncFolder ? SQLITE_IOERR_DIR_FSYNC : SQLITE_OK;
    });
    database = workspace->OpenDatabase(copy);
    Check("INSERT INTO a01 (a01clid) VALUES (1)");
    fails = true;
    EXPECT_THROW(engine::DBEngine::Commit(), engine::UnsyncedCommit);
    fails = false;
    EXPECT_EQ(test::FailureOf([] { engine::DBEngine::Commit(); }), 0);
    workspace->BeginTrans();
    Check("INSERT INTO a01 (a01clid) VALUES (2)");
    fails = true;
    EXPECT_THROW(workspace->CommitTrans(), engine::UnsyncedCommit);
    fails = false;
    workspace->Rollback(); // as everybody does behind a failure
    database->Close();
    EXPECT_EQ(test::ReadRows(copy, QStringLiteral("SELECT a01clid FROM a01 ORDER BY 1")).join(u' '),
              QStringLiteral("1 2"));
}

TEST_F(Faults, WhatTheyHaveLeftDoesNotMeetANewFile) {
    const QString copy = Copy();
    {
        const test::FaultyFiles faulty([](test::FaultyFiles::Call call) {
            return call == test::FaultyFiles::Call::Delete ? test::FaultyFiles::PowerOff : SQLITE_OK;
        });
        Session(copy).Run();
        test::FaultyFiles::PowerOn(test::FaultyFiles::Remains::Nothing);
    }
    const QString journal = copy + QStringLiteral("-journal");
    ASSERT_TRUE(QFile::exists(journal));
    QFile::remove(copy);
    const QDateTime now = QDateTime::currentDateTime();
    const struct {
        QString path;
        QDateTime written;
        bool stays;
    } others[] = {
        {folder.Path(QStringLiteral(".zavelik-0123456789abcdef.new")), now.addDays(-2), false},
        {folder.Path(QStringLiteral(".zavelik-0123456789abcdef.new-journal")), now.addDays(-2), false},
        {folder.Path(QStringLiteral(".zavelik-fedcba9876543210.new")), now.addSecs(-3600), true},
        {folder.Path(QStringLiteral(".zavelik-notes")), now.addDays(-2), true},
    };
    for (const auto& other : others) {
        QFile file(other.path);
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        ASSERT_TRUE(file.setFileTime(other.written, QFileDevice::FileModificationTime));
    }

    const auto book = workspace->CreateDatabase(copy, {});
    EXPECT_EQ(book->TableNames(), QStringList());
    book->Close();
    EXPECT_EQ(test::Integrity(copy), QStringLiteral("ok"));
    EXPECT_FALSE(QFile::exists(journal));
    for (const auto& other : others)
        EXPECT_EQ(QFile::exists(other.path), other.stays) << other.path.toStdString();
}

namespace {

sqlite3_mem_methods realMemory;
std::int64_t allocationsLeft = -1; ///< the one that makes it 0 fails; below 0 none does

bool Refuse() {
    return allocationsLeft > 0 && --allocationsLeft == 0;
}

/// Memory whose allocations can fail; SQLite must not be in use when it comes and goes.
class FaultyMemory {
public:
    FaultyMemory() {
        sqlite3_shutdown();
        sqlite3_config(SQLITE_CONFIG_GETMALLOC, &realMemory);
        sqlite3_mem_methods faulty = realMemory;
        faulty.xMalloc = [](int size) { return Refuse() ? nullptr : realMemory.xMalloc(size); };
        faulty.xRealloc = [](void* old, int size) {
            return Refuse() ? nullptr : realMemory.xRealloc(old, size);
        };
        sqlite3_config(SQLITE_CONFIG_MALLOC, &faulty);
    }
    ~FaultyMemory() {
        sqlite3_shutdown();
        sqlite3_config(SQLITE_CONFIG_MALLOC, &realMemory);
    }
    FaultyMemory(const FaultyMemory&) = delete;
    FaultyMemory& operator=(const FaultyMemory&) = delete;
};

} // namespace

TEST_F(Faults, OfMemory) {
    const FaultyMemory memory;
    const test::FaultyFiles quick([](test::FaultyFiles::Call) { return SQLITE_OK; }); // waits for no disk
    bool hit = true;
    int places = 0;
    for (std::int64_t place = 1; hit; ++places) {
        SCOPED_TRACE(place);
        const QString copy = Copy();
        Session session(copy);
        allocationsLeft = place;
        session.Run();
        hit = allocationsLeft == 0;
        allocationsLeft = -1;
        for (const int failure : session.failures)
            EXPECT_EQ(failure, runtime::OutOfMemory);
        CheckFile(session, copy);
        if (!test::IsFullRun())
            place += place < 400 ? 7 : 41;
        else
            ++place;
    }
    EXPECT_GT(places, 50);
    std::cout << "FIGURE allocations refused: engine: " << places - 1 << std::endl;
}

TEST_F(Faults, OfMemoryInADefinition) {
    const FaultyMemory memory;
    const test::FaultyFiles quick([](test::FaultyFiles::Call) { return SQLITE_OK; });
    const QString copy = Copy();
    database = workspace->OpenDatabase(copy);
    engine::TableField field = database->TableDefs(QStringLiteral("a01")).Fields(1);
    bool hit = true;
    int expected = 0;
    int place = 0;
    while (hit) {
        SCOPED_TRACE(++place);
        // The statement is in one group with the definition: both are there, or a loss is told.
        Run(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, 'ж')").arg(place));
        allocationsLeft = place;
        const int failure = test::FailureOf([&] { field.SetAllowZeroLength(true); });
        hit = allocationsLeft == 0;
        allocationsLeft = -1;
        EXPECT_TRUE(failure == 0 || (hit && failure == runtime::OutOfMemory)) << failure;
        EXPECT_EQ(field.AllowZeroLength(), failure == 0);
        if (test::FailureOf([] { engine::DBEngine::Commit(); }) == 0)
            ++expected;
        ASSERT_EQ(Result(QStringLiteral("SELECT COUNT(*) FROM a01")), QString::number(expected));
        Check("INSERT INTO a01 (a01clid, a01frst) VALUES (100000, '') -> #3315"); // rules hold as before
        if (failure == 0)
            field.SetAllowZeroLength(false);
        engine::DBEngine::Commit();
        place += test::IsFullRun() ? 0 : 4;
    }
    EXPECT_GT(place, 100);
    database->Close();
    EXPECT_EQ(test::Integrity(copy), QStringLiteral("ok"));
}
