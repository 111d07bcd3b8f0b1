#include "tests/engine/storage/StorageTest.h"

#include <QElapsedTimer>
#include <sqlite3.h>

#include <sys/wait.h>
#include <unistd.h>

namespace {

class Sharing : public test::Storage {
protected:
    Sharing() { MakeCards(); }
};

// What a window does to save a new card: a number above all others, the card, its phones, then the box of
// success.
int SaveCards(const QString& path, int cards) {
    const auto book = engine::DBEngine::CreateWorkspace({}, {}, {})->OpenDatabase(path);
    int saved = 0;
    while (saved < cards) {
        const int failure = test::FailureOf([&] {
            const auto last =
                book->OpenRecordset(QStringLiteral("SELECT MAX(a01clid) FROM a01")).Fields(0).Value();
            const QString number = QString::number(last.IsNull() ? 1 : last.Long() + 1);
            book->Execute(
                QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (%1, 'Иванов')").arg(number),
                engine::dbFailOnError);
            for (const int code : {1, 2})
                book->Execute(
                    QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, %2, 'x')")
                        .arg(number, QString::number(code)),
                    engine::dbFailOnError);
            engine::DBEngine::Commit();
        });
        if (failure == 0)
            ++saved;
        else if (failure != engine::DuplicateKey)
            return failure;
    }
    book->Close();
    return 0;
}

} // namespace

// The number of a card can be taken by the other program in between; the engine then says so, and nothing is
// lost.
TEST_F(Sharing, TwoProgramsSaveCardsAtTheSameTime) {
    constexpr int cards = 150;
    database->Close();
    std::vector<pid_t> programs;
    for (int program = 0; program < 2; ++program) {
        programs.push_back(fork());
        ASSERT_GE(programs.back(), 0);
        if (programs.back() == 0)
            _exit(SaveCards(path, cards) == 0 ? 0 : 1);
    }
    for (const pid_t program : programs) {
        int status = 0;
        waitpid(program, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    database = workspace->OpenDatabase(path);
    EXPECT_EQ(AskOne(QStringLiteral("SELECT COUNT(*) FROM a01")), QString::number(2 * cards));
    EXPECT_EQ(AskOne(QStringLiteral("SELECT MAX(a01clid) FROM a01")), QString::number(2 * cards));
    EXPECT_EQ(Ask(QStringLiteral("SELECT a02clid FROM a02 GROUP BY a02clid HAVING COUNT(*) <> 2")),
              QStringList());
    EXPECT_EQ(test::Integrity(path), QStringLiteral("ok"));
}

TEST_F(Sharing, ATableThatAnotherMakesIsFoundAtOnce) {
    engine::DBEngine::Commit();
    const auto other = workspace->OpenDatabase(path);
    Ask(QStringLiteral("SELECT * FROM a01"));
    other->Execute(QStringLiteral("CREATE TABLE extra (x TEXT(5))"), engine::dbFailOnError);
    other->Execute(QStringLiteral("ALTER TABLE a01 ADD COLUMN a01bith TEXT(20)"), engine::dbFailOnError);
    engine::DBEngine::Commit();
    EXPECT_EQ(test::FailureOf([&] { Ask(QStringLiteral("SELECT * FROM extra")); }), 0);
    EXPECT_EQ(FailureOfRun(QStringLiteral("INSERT INTO a01 (a01clid, a01bith) VALUES (1, '05.12.2006')")), 0);
    EXPECT_EQ(Ask(QStringLiteral("SELECT * FROM a01")),
              QStringList{QStringLiteral("1|NULL|NULL|05.12.2006")});
}

// Somebody who reads for long does not stop a run; the group is made durable when the reader has gone.
TEST_F(Sharing, AReaderDelaysTheCommitAndNothingElse) {
    database->Close(); // SQLite's connections do not live through a fork
    int pipes[2];
    ASSERT_EQ(::pipe(pipes), 0);
    const pid_t reader = fork();
    ASSERT_GE(reader, 0);
    if (reader == 0) {
        sqlite3* book = nullptr;
        sqlite3_open(path.toUtf8().constData(), &book);
        sqlite3_exec(book, "BEGIN; SELECT * FROM a01", nullptr, nullptr, nullptr);
        const bool told = ::write(pipes[1], "r", 1) == 1;
        ::usleep(2'000'000);
        _exit(told ? 0 : 1);
    }
    char byte = 0;
    EXPECT_EQ(::read(pipes[0], &byte, 1), 1); // the reader holds its lock
    database = workspace->OpenDatabase(path);
    QElapsedTimer clock;
    clock.start();
    int cards = 0;
    while (clock.elapsed() < 500)
        Run(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (%1)").arg(++cards));
    EXPECT_LT(clock.elapsed(), 1500);
    EXPECT_EQ(test::FailureOf([] { engine::DBEngine::Commit(); }), 0); // waits for the reader
    int status = 0;
    waitpid(reader, &status, 0);
    EXPECT_EQ(test::ReadRows(path, QStringLiteral("SELECT COUNT(*) FROM a01")),
              QStringList{QString::number(cards)});
}
