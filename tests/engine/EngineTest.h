#pragma once

#include "platform/engine/dao/DBEngine.h"
#include "tests/support/Expect.h"
#include "tests/support/TestBook.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

namespace test {

/// The rows of a set: values joined by "|", NULL as "NULL".
QStringList Rows(engine::Recordset set);

/// The lines of a script: what stands before " -> " and behind it. Blank lines and those that begin with "--"
/// are left out; {00A0} is the character of that number.
QList<std::pair<QString, QString>> Lines(const char* script);

/// A new database in a workspace of its own, and what statements on it give.
class EngineTest : public ::testing::Test {
protected:
    EngineTest();

    /// What a statement gives: its rows joined by " / ", the number of rows that it changes, or "#number
    /// description" for a failure. A word before the statement says how it is run: "open" and "run" whatever
    /// it is, "loose" passing over failing rows, "names" and "types" for those of the columns.
    QString Result(const QString& statement) const;
    /// Runs the statements of a script; the words come before each of them. Several statements of one line,
    /// parted by " ; ", all give the result behind; those without one have to succeed. Of a failure the
    /// number may stand alone, or with the start of the description.
    void Check(const char* script, const char* before = "") const;

    /// Runs one that has to succeed.
    void Run(const QString& statement) const { database->Execute(statement, engine::dbFailOnError); }
    int FailureOfRun(const QString& statement) const;
    void AllowEmpty(const QString& table, const QStringList& columns) const;
    void Reopen();
    /// Runs statements of SQLite on the file, as another program may.
    void RunPlainly(const QByteArray& statements) const;
    /// The tables a01 and a02 of a book, empty.
    void MakeCards() const;

    TestFolder folder;
    std::shared_ptr<engine::Workspace> workspace;
    QString path;
    std::shared_ptr<engine::Database> database;
};

/// A small book whose rows stand in EngineTest.cpp.
class BookTest : public EngineTest {
protected:
    BookTest();
};

} // namespace test
