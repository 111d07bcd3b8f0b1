#include "database/Schema.h"

#include "database/General.h"
#include "platform/engine/dao/DBEngine.h"
#include "platform/forms/MsgBox.h"

namespace schema {

QString CreateA01(bool withBirthday) {
    const QString texts =
        QStringLiteral(" a01last TEXT(50) , a01frst TEXT(50) , a01midl TEXT(50) , a01memo TEXT(100)");
    return QStringLiteral("CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY,") + texts +
           (withBirthday ? QStringLiteral(", a01bith TEXT(20) )") : QStringLiteral(" )"));
}

QString CreateA02() {
    return QStringLiteral("CREATE TABLE a02 (a02rcid COUNTER NOT NULL PRIMARY KEY,"
                          " a02clid INTEGER NOT NULL, a02code SHORT NOT NULL, a02cval TEXT(50) NOT NULL)");
}

QString CreateT01() {
    return QStringLiteral(
        "CREATE TABLE t01 (t01ctid COUNTER NOT NULL PRIMARY KEY,"
        " t01type BYTE NOT NULL, t01code SHORT NOT NULL, t01cval TEXT(50) NOT NULL UNIQUE)");
}

QString CreateV00() {
    return QStringLiteral("CREATE TABLE v00 (v00vrid BYTE NOT NULL PRIMARY KEY)");
}

QString CreateT02() {
    return QStringLiteral("CREATE TABLE t02 (t02rcid COUNTER NOT NULL PRIMARY KEY,"
                          " t02cval TEXT(50) NOT NULL UNIQUE)");
}

QString CreateT03() {
    return QStringLiteral("CREATE TABLE t03 (t03rcid COUNTER NOT NULL PRIMARY KEY,"
                          " t03code INTEGER NOT NULL, t03cval TEXT(50) NOT NULL, t03numb INTEGER NOT NULL)");
}

QString CreateA03() {
    return QStringLiteral("CREATE TABLE a03 (a03evid COUNTER NOT NULL PRIMARY KEY,"
                          " a03evnm TEXT(50) NOT NULL, a03evdt TEXT(20) NOT NULL, a03evpr INTEGER NOT NULL)");
}

void KeepLookUps() {
    engine::DBEngine::SetLookUps(
        {{QStringLiteral("a01"),
          {QStringLiteral("a01last"), QStringLiteral("a01frst"), QStringLiteral("a01midl")}},
         {QStringLiteral("a02"), {QStringLiteral("a02clid"), QStringLiteral("a02code")}}});
}

QStringList EmptyTextColumns() {
    return {QStringLiteral("a01last"), QStringLiteral("a01frst"), QStringLiteral("a01midl"),
            QStringLiteral("a01memo"), QStringLiteral("a01bith")};
}

} // namespace schema

namespace {

void CreateTelefonTypes(engine::Database& db) {
    db.Execute(schema::CreateT01(), engine::dbFailOnError);
    for (const QString& row :
         {QStringLiteral("(0, 1, 'Домашний телефон')"), QStringLiteral("(0, 2, 'Мобильный телефон')"),
          QStringLiteral("(0, 3, 'Рабочий телефон')"), QStringLiteral("(0, 4, 'Основной телефон')")})
        db.Execute(QStringLiteral("INSERT INTO t01 (t01type, t01code, t01cval) VALUES ") + row,
                   engine::dbFailOnError);
}

void CreateVersion(engine::Database& db) {
    db.Execute(schema::CreateV00(), engine::dbFailOnError);
    db.Execute(QStringLiteral("INSERT INTO v00 (v00vrid) VALUES (") + QString::number(General::nBaseVersion) +
                   u')',
               engine::dbFailOnError);
}

/// The texts of a card may be empty, those of the other tables may not.
void AllowEmptyTextsInCards(engine::Database& db) {
    const engine::TableDef cards = db.TableDefs(QStringLiteral("a01"));
    for (const QString& column : schema::EmptyTextColumns())
        cards.Fields(column).SetAllowZeroLength(true);
}

} // namespace

bool General::ApplySQLToCreateDB(engine::Database& db) {
    return forms::Attempt(QStringLiteral("General функция ApplySQLToCreateDB:"), [&] {
        db.Execute(schema::CreateA01(), engine::dbFailOnError);
        CreateTelefonTypes(db);
        db.Execute(schema::CreateA02(), engine::dbFailOnError);
        CreateVersion(db);
        db.Execute(schema::CreateT02(), engine::dbFailOnError);
        db.Execute(schema::CreateT03(), engine::dbFailOnError);
        db.Execute(schema::CreateA03(), engine::dbFailOnError);
        AllowEmptyTextsInCards(db);
        return FillRegions(db) && FillCity(db);
    });
}
