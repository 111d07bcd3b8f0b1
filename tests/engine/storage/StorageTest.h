#pragma once

#include "platform/engine/EngineError.h"
#include "platform/engine/dao/DBEngine.h"
#include "tests/support/TestBook.h"

namespace test {

inline QStringList Rows(engine::Recordset set) {
    QStringList rows;
    for (; !set.EndOfFile(); set.MoveNext()) {
        QStringList values;
        for (int column = 0; column < set.FieldsCount(); ++column) {
            const auto value = set.Fields(column).Value();
            values += value.IsNull() ? QStringLiteral("NULL") : value.Text();
        }
        rows += values.join(u'|');
    }
    return rows;
}

/// A new database in a workspace of its own.
class Storage : public ::testing::Test {
protected:
    Storage()
        : workspace(engine::DBEngine::CreateWorkspace(QStringLiteral("test"), QStringLiteral("admin"), {}))
        , path(folder.Path(QStringLiteral("Книга.mdb")))
        , database(workspace->CreateDatabase(path, QString::fromUtf16(engine::dbLangGeneral))) {}

    void Run(const QString& sql) { database->Execute(sql, engine::dbFailOnError); }
    int FailureOfRun(const QString& sql) {
        return FailureOf([&] { Run(sql); });
    }
    QStringList Ask(const QString& sql) { return Rows(database->OpenRecordset(sql)); }
    QString AskOne(const QString& sql) { return Ask(sql).value(0); }
    void Reopen() {
        database->Close();
        database = workspace->OpenDatabase(path);
    }

    void MakeCards() {
        Run(QStringLiteral(
            "CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY, a01last TEXT(50) , a01frst TEXT(50))"));
        Run(QStringLiteral(
            "CREATE TABLE a02 (a02rcid COUNTER NOT NULL PRIMARY KEY, a02clid INTEGER NOT NULL, a02code "
            "SHORT NOT NULL, a02cval TEXT(50) NOT NULL)"));
    }

    TestFolder folder;
    std::shared_ptr<engine::Workspace> workspace;
    QString path;
    std::shared_ptr<engine::Database> database;
};

} // namespace test
