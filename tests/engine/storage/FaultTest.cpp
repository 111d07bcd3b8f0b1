// Faults of the machine under the engine: every allocation fails once. Whatever happens: a failure with a
// sensible number, no crash, a file that is sound afterwards, statements whole or not there at all, and
// everything that a commit had reported. The sweeps over faults of the disk stand in tests/reliability.

#include "platform/engine/EngineError.h"
#include "tests/engine/EngineTest.h"
#include "tests/support/FaultyFiles.h"
#include "tests/support/FullRun.h"

#include <QFile>
#include <QSet>

#include <iostream>

namespace {

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

    QString Copy() const {
        QString copy = folder.Path(QStringLiteral("copy.mdb"));
        QFile::remove(copy);
        QFile::remove(copy + QStringLiteral("-journal"));
        QFile::copy(path, copy);
        return copy;
    }
};

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

/// What a user does to a book, going on behind each failure, as the windows do. Gives the cards that a commit
/// has reported.
QSet<int> Use(const QString& path) {
    QSet<int> promised;
    QSet<int> pending;
    const auto attempt = [](const std::function<void()>& work) {
        const int failure = test::FailureOf(work);
        EXPECT_TRUE(failure == 0 || failure == runtime::OutOfMemory) << failure;
        return failure == 0;
    };
    const auto commit = [&](const std::function<void()>& work) {
        const bool done = attempt(work);
        if (done)
            promised.unite(pending);
        pending.clear();
        return done;
    };
    const auto workspace = engine::DBEngine::CreateWorkspace({}, {}, {});
    std::shared_ptr<engine::Database> book;
    if (!attempt([&] { book = workspace->OpenDatabase(path); }))
        return promised;
    const auto run = [&book](const char* statement, int card) {
        book->Execute(QString::fromUtf8(statement).arg(card), engine::dbFailOnError);
    };
    for (int card = 1; card <= 9; ++card) {
        const bool alone = card == 9 && attempt([&] { workspace->BeginTrans(); });
        if (attempt([&] {
                run("INSERT INTO a01 (a01clid, a01last) VALUES (%1, STRING(50, 'ж'))", card);
                run("INSERT INTO a02 (a02clid, a02code, a02cval) SELECT %1, k, 'x' FROM three", card);
            }))
            pending += card;
        if (alone || card == 8)
            attempt([&] { book->TableDefs(QStringLiteral("a01")).Fields(1).SetAllowZeroLength(card == 8); });
        if (card % 4 == 0)
            commit(engine::DBEngine::Commit);
        if (alone && !commit([&] { workspace->CommitTrans(); }))
            workspace->Rollback();
    }
    attempt([&] { test::Rows(book->OpenRecordset(QStringLiteral("SELECT * FROM a01, a02"))); });
    if (!attempt([&] { book->Close(); }))
        attempt([&] { book->Close(); });
    return promised;
}

} // namespace

TEST_F(Faults, OfMemory) {
    const FaultyMemory memory;
    const test::FaultyFiles quick([](test::FaultyFiles::Call) { return SQLITE_OK; }); // waits for no disk
    int places = 0;
    bool hit = true;
    for (std::int64_t place = 1; hit; ++places) {
        SCOPED_TRACE(place);
        const QString copy = Copy();
        allocationsLeft = place;
        const QSet<int> promised = Use(copy);
        hit = allocationsLeft == 0;
        allocationsLeft = -1;
        database = workspace->OpenDatabase(copy); // puts right what was left half done
        ASSERT_EQ(test::Integrity(copy), QStringLiteral("ok"));
        const QStringList cards =
            Result(QStringLiteral("SELECT a01clid FROM a01")).split(QStringLiteral(" / "));
        for (const int card : promised)
            EXPECT_TRUE(cards.contains(QString::number(card))) << card;
        Check("SELECT a02clid FROM a02 GROUP BY a02clid HAVING COUNT(*) <> 3 ->");
        database->Close();
        place += test::IsFullRun() ? 1 : place < 400 ? 11 : 67;
    }
    EXPECT_GT(places, 50);
    std::cout << "FIGURE allocations refused: engine: " << places - 1 << std::endl;
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
