#pragma once

#include "database/Schema.h"
#include "platform/engine/dao/DBEngine.h"

namespace test {

/// A book as the first, second or third version made it: a card, its phone, no cities.
inline void MakeBook(const QString& path, int version) {
    const auto book = engine::DBEngine::CreateWorkspace({}, {}, {})->CreateDatabase(path, {});
    QStringList statements{schema::CreateA01(version > 1), schema::CreateA02(), schema::CreateT01(),
                           schema::CreateV00()};
    if (version > 1)
        statements += {schema::CreateT02(), schema::CreateT03()};
    if (version > 2)
        statements += schema::CreateA03();
    statements += {QStringLiteral("INSERT INTO v00 (v00vrid) VALUES (%1)").arg(version),
                   QStringLiteral("INSERT INTO a01 (a01clid, a01last) VALUES (7, 'Иванов')"),
                   QStringLiteral("INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (7, 2, '495')")};
    for (const QString& statement : statements)
        book->Execute(statement, engine::dbFailOnError);
    const engine::TableDef cards = book->TableDefs(QStringLiteral("a01"));
    for (const QString& column : schema::EmptyTextColumns()) {
        if (version > 2 || column != u"a01bith")
            cards.Fields(column).SetAllowZeroLength(true);
    }
    book->Close();
}

} // namespace test
