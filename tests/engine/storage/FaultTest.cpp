// Every call to the file system and every allocation fails once, and once for good. Whatever happens: a
// failure with a sensible number, no crash, a file that is sound afterwards, statements whole or not there at
// all, and everything that a commit had reported.

#include "tests/engine/storage/FaultyFiles.h"
#include "tests/engine/storage/StorageTest.h"

#include <QFile>
#include <QSet>

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

class Fault : public test::Storage {
protected:
    Fault() {
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

    /// Runs the session with the fault at its first, second, ... call, until none is hit. How many were.
    int Sweep(const std::function<int(test::FaultyFiles::Call)>& codeOf, bool lasting) {
        const QString copy = folder.Path(QStringLiteral("copy.mdb"));
        for (int place = 1;; ++place) {
            SCOPED_TRACE(place);
            QFile::remove(copy);
            QFile::remove(copy + QStringLiteral("-journal"));
            QFile::copy(path, copy);
            Session session(copy);
            int calls = 0;
            bool hit = false;
            {
                const test::FaultyFiles faulty([&](test::FaultyFiles::Call call) {
                    const int code = codeOf(call);
                    if (code == SQLITE_OK || ++calls < place || (calls > place && !lasting))
                        return SQLITE_OK;
                    hit = true;
                    return code;
                });
                session.Run();
            }
            for (const int failure : session.failures)
                EXPECT_TRUE(QList<int>({3026, 3043, 3049, 3051, 3218}).contains(failure)) << failure;
            CheckFile(session, copy);
            if (HasFatalFailure() || !hit)
                return place - 1;
        }
    }
};

using Call = test::FaultyFiles::Call;

} // namespace

TEST_F(Fault, OfTheDisk) {
    const auto full = [](Call call) { return call == Call::Write ? SQLITE_FULL : SQLITE_OK; };
    const auto write = [](Call call) {
        return call == Call::Write      ? SQLITE_IOERR_WRITE
               : call == Call::Truncate ? SQLITE_IOERR_TRUNCATE
                                        : SQLITE_OK;
    };
    const auto sync = [](Call call) {
        return call == Call::Sync     ? SQLITE_IOERR_FSYNC
               : call == Call::Delete ? SQLITE_IOERR_DELETE
                                      : SQLITE_OK;
    };
    const auto open = [](Call call) { return call == Call::Open ? SQLITE_CANTOPEN : SQLITE_OK; };
    const auto read = [](Call call) { return call == Call::Read ? SQLITE_IOERR_READ : SQLITE_OK; };
    for (const auto& codeOf : std::initializer_list<std::function<int(Call)>>{full, write, sync, open, read})
        for (const bool lasting : {false, true})
            EXPECT_GT(Sweep(codeOf, lasting), 3);
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

TEST_F(Fault, OfMemory) {
    const FaultyMemory memory;
    const QString copy = folder.Path(QStringLiteral("copy.mdb"));
    bool hit = true;
    int places = 0;
    for (std::int64_t place = 1; hit; place += place < 400 ? 7 : 41) {
        SCOPED_TRACE(place);
        QFile::remove(copy);
        QFile::copy(path, copy);
        Session session(copy);
        allocationsLeft = place;
        session.Run();
        hit = allocationsLeft == 0;
        allocationsLeft = -1;
        ++places;
        for (const int failure : session.failures)
            EXPECT_EQ(failure, runtime::OutOfMemory);
        CheckFile(session, copy);
    }
    EXPECT_GT(places, 50);
}
