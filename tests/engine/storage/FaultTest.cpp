// Every call to the file system and every allocation fails once, and once for good. Whatever happens: a
// failure with a sensible number, no crash, a file that is sound afterwards, statements whole or not there at
// all, and everything that a commit had reported.

#include "tests/engine/storage/StorageTest.h"
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
        Try([&] {
            book->TableDefs(QStringLiteral("a01")).Fields(QStringLiteral("a01last")).SetAllowZeroLength(true);
        });
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

    void Insert(engine::Database& book, int card) {
        const QString number = QString::number(card);
        const bool done = Try([&] {
            book.Execute(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, '%2')")
                             .arg(number, QString(50, u'ж')),
                         engine::dbFailOnError);
            // Three rows by one statement.
            book.Execute(
                QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) SELECT %1, k, 'x' FROM three")
                    .arg(number),
                engine::dbFailOnError);
        });
        if (done)
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
        Try([&] {
            book.Execute(QStringLiteral("ALTER TABLE a01 ADD COLUMN a01bith TEXT(20)"),
                         engine::dbFailOnError);
        });
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

class Faults : public test::Storage {
protected:
    Faults() {
        MakeCards();
        Run(QStringLiteral("CREATE TABLE three (k SHORT NOT NULL PRIMARY KEY)"));
        for (int k = 1; k <= 3; ++k)
            Run(QStringLiteral("INSERT INTO three (k) VALUES (%1)").arg(k));
        database->Close();
    }

    void CheckFile(const Session& session, const QString& copy) {
        const auto book = workspace->OpenDatabase(copy); // puts right what was left half done
        ASSERT_EQ(test::Integrity(copy), QStringLiteral("ok"));
        QSet<int> cards;
        for (const QString& card : test::Rows(book->OpenRecordset(QStringLiteral("SELECT a01clid FROM a01"))))
            cards += card.toInt();
        for (const int card : session.promised)
            EXPECT_TRUE(cards.contains(card)) << card;
        const QStringList counts =
            test::Rows(book->OpenRecordset(QStringLiteral("SELECT COUNT(*) FROM a02 GROUP BY a02clid")));
        for (const QString& count : counts)
            EXPECT_EQ(count, QStringLiteral("3"));
        book->Close();
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
    test::SweepFaults("engine", 20, test::DiskFaults(), [this](test::Fault& fault) { Survive(fault); });
}

// Such a commit is in the file: it is told for what it is, once, and leaves nothing to be undone.
TEST_F(Faults, ACommitThatLacksTheSyncOfItsFolderStands) {
    const QString copy = Copy();
    bool fails = false;
    const test::FaultyFiles faulty([&fails](test::FaultyFiles::Call call) {
        return fails && call == test::FaultyFiles::Call::SyncFolder ? SQLITE_IOERR_DIR_FSYNC : SQLITE_OK;
    });
    const auto book = workspace->OpenDatabase(copy);
    const auto insert = [&book](int card) {
        book->Execute(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (%1)").arg(card),
                      engine::dbFailOnError);
    };
    insert(1);
    fails = true;
    EXPECT_THROW(engine::DBEngine::Commit(), engine::UnsyncedCommit);
    fails = false;
    EXPECT_EQ(test::FailureOf([] { engine::DBEngine::Commit(); }), 0);
    workspace->BeginTrans();
    insert(2);
    fails = true;
    EXPECT_THROW(workspace->CommitTrans(), engine::UnsyncedCommit);
    fails = false;
    workspace->Rollback(); // as everybody does behind a failure
    book->Close();
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
    const auto book = workspace->OpenDatabase(copy);
    engine::TableField field = book->TableDefs(QStringLiteral("a01")).Fields(QStringLiteral("a01last"));
    bool hit = true;
    int expected = 0;
    int place = 0;
    while (hit) {
        SCOPED_TRACE(++place);
        // The statement is in one group with the definition: both are there, or a loss is told.
        book->Execute(QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, 'ж')").arg(place),
                      engine::dbFailOnError);
        allocationsLeft = place;
        const int failure = test::FailureOf([&] { field.SetAllowZeroLength(true); });
        hit = allocationsLeft == 0;
        allocationsLeft = -1;
        EXPECT_TRUE(failure == 0 || (hit && failure == runtime::OutOfMemory)) << failure;
        EXPECT_EQ(field.AllowZeroLength(), failure == 0);
        if (test::FailureOf([] { engine::DBEngine::Commit(); }) == 0)
            ++expected;
        ASSERT_EQ(test::Rows(book->OpenRecordset(QStringLiteral("SELECT count(*) FROM a01"))),
                  QStringList(QString::number(expected)));
        const auto breakRule = [&] {
            book->Execute(QStringLiteral("INSERT INTO a01 (a01clid, a01frst) VALUES (100000, '')"),
                          engine::dbFailOnError);
        };
        EXPECT_EQ(test::FailureOf(breakRule), 3315) << "rules hold as before";
        if (failure == 0)
            field.SetAllowZeroLength(false);
        engine::DBEngine::Commit();
    }
    EXPECT_GT(place, 100);
    book->Close();
    EXPECT_EQ(test::Integrity(copy), QStringLiteral("ok"));
}
