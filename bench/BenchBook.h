#pragma once

#include "database/General.h"
#include "database/Schema.h"
#include "platform/engine/dao/DBEngine.h"

#include <QString>
#include <QTemporaryDir>
#include <sqlite3.h>

#include <memory>

namespace bench {

/// Names of people as a Russian book has them: enough different ones that sorting and look-ups have work to
/// do.
inline QString LastName(int i) {
    static const QString stems[] = {
        QStringLiteral("Иванов"),   QStringLiteral("Ёлкин"),   QStringLiteral("Петров"),
        QStringLiteral("Сидоров"),  QStringLiteral("Щукин"),   QStringLiteral("Абрамов"),
        QStringLiteral("Кузнецов"), QStringLiteral("Яковлев"), QStringLiteral("Смирнов")};
    return stems[i % std::size(stems)] + QString::number((i * 7919) % 100003);
}
inline QString FirstName(int i) {
    static const QString names[] = {QStringLiteral("Анна"), QStringLiteral("Борис"), QStringLiteral("Вера"),
                                    QStringLiteral("Пётр"), QStringLiteral("Семён")};
    return names[i % std::size(names)];
}
inline QString MiddleName(int i) {
    static const QString names[] = {QStringLiteral("Иванович"), QStringLiteral("Петровна"),
                                    QStringLiteral("Сергеевич")};
    return names[i % std::size(names)];
}

/// A book of the program with that many cards, each with phones of the codes 1 to `phones`, in a folder of
/// its own.
class Book {
public:
    explicit Book(int cards, int phones = 0) {
        schema::KeepLookUps();
        workspace = engine::DBEngine::Workspaces(0);
        database = workspace->CreateDatabase(Path(), QString::fromUtf16(engine::dbLangGeneral));
        if (!General::ApplySQLToCreateDB(*database))
            qFatal("the book could not be created");
        workspace->BeginTrans();
        for (int i = 1; i <= cards; ++i) {
            database->Execute(QStringLiteral("INSERT INTO a01 (a01clid, a01last, a01frst, a01midl, a01memo, "
                                             "a01bith) VALUES (%1, '%2', '%3', '%4', '', '%5')")
                                  .arg(QString::number(i), LastName(i), FirstName(i), MiddleName(i),
                                       QStringLiteral("%1.%2.19%3")
                                           .arg(i % 28 + 1, 2, 10, QLatin1Char('0'))
                                           .arg(i % 12 + 1, 2, 10, QLatin1Char('0'))
                                           .arg(i % 70 + 30)),
                              engine::dbFailOnError);
            for (int code = 1; code <= phones; ++code)
                database->Execute(
                    QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (%1, %2, '8-9%3-%2')")
                        .arg(QString::number(i), QString::number(code), QString::number(100000 + i)),
                    engine::dbFailOnError);
        }
        workspace->CommitTrans();
    }

    QString Path() const { return m_folder.filePath(QStringLiteral("book.mdb")); }
    QString Beside(const QString& name) const { return m_folder.filePath(name); }

    std::shared_ptr<engine::Workspace> workspace;
    std::shared_ptr<engine::Database> database;

private:
    QTemporaryDir m_folder;
};

/// A plain SQLite connection with the durability of the program's own.
class Plain {
public:
    explicit Plain(const QString& path) {
        if (sqlite3_open(path.toUtf8().constData(), &m_db) != SQLITE_OK)
            qFatal("cannot open %s", qPrintable(path));
        Run("PRAGMA encoding = 'UTF-16'; PRAGMA journal_mode = DELETE; PRAGMA synchronous = EXTRA;");
    }
    ~Plain() { sqlite3_close(m_db); }
    Plain(const Plain&) = delete;
    Plain& operator=(const Plain&) = delete;

    void Run(const char* sql) {
        char* message = nullptr;
        if (sqlite3_exec(m_db, sql, nullptr, nullptr, &message) != SQLITE_OK)
            qFatal("%s: %s", sql, message);
    }
    sqlite3_stmt* Prepare(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(m_db, sql, -1, &statement, nullptr) != SQLITE_OK)
            qFatal("%s: %s", sql, sqlite3_errmsg(m_db));
        return statement;
    }
    sqlite3* Handle() const { return m_db; }

private:
    sqlite3* m_db = nullptr;
};

} // namespace bench
