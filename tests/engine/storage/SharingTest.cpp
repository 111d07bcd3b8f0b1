#include "tests/engine/storage/StorageTest.h"

#include <QElapsedTimer>
#include <sqlite3.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class Sharing : public test::Storage {
protected:
    Sharing() { MakeCards(); }
};

} // namespace

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

// A program that is killed keeps what it had made durable, whole, and nothing else.
TEST_F(Sharing, AKilledProgramKeepsWholeStatements) {
    database->Close();
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const auto mine = engine::DBEngine::CreateWorkspace({}, {}, {})->OpenDatabase(path);
        mine->Execute(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (1)"), engine::dbFailOnError);
        engine::DBEngine::Commit();
        mine->Execute(QStringLiteral("INSERT INTO a01 (a01clid) VALUES (2)"), engine::dbFailOnError);
        ::kill(getpid(), SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    database = workspace->OpenDatabase(path);
    EXPECT_EQ(Ask(QStringLiteral("SELECT a01clid FROM a01")), QStringList{QStringLiteral("1")});
}
