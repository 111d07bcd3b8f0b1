#include "tests/engine/sql/DialectFixture.h"

#include "platform/runtime/Failure.h"

#include <QStringList>

namespace {

const char16_t* const statements[] = {
    (u"CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY, a01last TEXT(50), a01frst TEXT(50), a01midl "
     u"TEXT(50), a01memo TEXT(100), a01bith TEXT(20))"),
    (u"CREATE TABLE a02 (a02rcid COUNTER NOT NULL PRIMARY KEY, a02clid INTEGER NOT NULL, a02code SHORT NOT "
     u"NULL, a02cval TEXT(50) NOT NULL)"),
    (u"CREATE TABLE t01 (t01ctid COUNTER NOT NULL PRIMARY KEY, t01type BYTE NOT NULL, t01code SHORT NOT "
     u"NULL, t01cval TEXT(50) NOT NULL UNIQUE)"),
    u"CREATE TABLE t02 (t02rcid COUNTER NOT NULL PRIMARY KEY, t02cval TEXT(50) NOT NULL UNIQUE)",
    (u"CREATE TABLE t03 (t03rcid COUNTER NOT NULL PRIMARY KEY, t03code INTEGER NOT NULL, t03cval TEXT(50) "
     u"NOT NULL, t03numb INTEGER NOT NULL)"),
    u"CREATE TABLE v00 (v00vrid BYTE NOT NULL PRIMARY KEY)",
    (u"CREATE TABLE [n 01] (id LONG CONSTRAINT pk PRIMARY KEY, dbl DOUBLE, day DATETIME, bit YESNO, txt "
     u"TEXT(10))"),
    u"INSERT INTO a01 VALUES (1, 'Иванов', 'Иван', 'Иванович', 'друг', '05.12.1980')",
    u"INSERT INTO a01 VALUES (2, 'Петров', 'Пётр', 'Петрович', NULL, '31.01.1975')",
    u"INSERT INTO a01 VALUES (3, 'Сидорова', 'Анна', NULL, '', NULL)",
    u"INSERT INTO a01 VALUES (4, 'Ёлкин', 'Олег', '', 'коллега', '29.02.1980')",
    u"INSERT INTO a01 VALUES (5, 'иванов', 'Борис', NULL, NULL, NULL)",
    u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, '4951234567')",
    u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 2, '79161112233')",
    u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (2, 1, '8121234')",
    u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (2, 1, '8125678')",
    u"INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (4, 3, '555')",
    u"INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 1, 'Домашний телефон')",
    u"INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 2, 'Мобильный телефон')",
    u"INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 3, 'Рабочий телефон')",
    u"INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 4, 'Основной телефон')",
    u"INSERT INTO t02 (t02cval) VALUES ('МОСКОВСКАЯ ОБЛАСТЬ')",
    u"INSERT INTO t02 (t02cval) VALUES ('КАРЕЛИЯ')",
    u"INSERT INTO t02 (t02cval) VALUES ('АЛТАЙ')",
    u"INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (1, 'МОСКВА', 495)",
    u"INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (1, 'ХИМКИ', 495)",
    u"INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (2, 'ПЕТРОЗАВОДСК', 814)",
    u"INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (3, 'БАРНАУЛ', 385)",
    u"INSERT INTO v00 (v00vrid) VALUES (3)",
    u"INSERT INTO [n 01] VALUES (1, 1.5, #1/31/2020#, TRUE, '10')",
    u"INSERT INTO [n 01] VALUES (2, 2.5, #12/31/2019 18:30#, FALSE, '9')",
    u"INSERT INTO [n 01] VALUES (3, NULL, NULL, FALSE, NULL)",
    u"INSERT INTO [n 01] VALUES (4, -2.5, #2/29/2020#, TRUE, '-')",
};

QString FailureText(const runtime::Failure& failure) {
    return u'#' + QString::number(failure.number()) + u' ' + failure.description();
}

/// A failure may be told by its number and the start of its description.
bool Agrees(const QString& result, const QString& expected) {
    return result == expected || (expected.startsWith(u'#') && result.startsWith(expected));
}

} // namespace

void DialectFixture::SetUp() {
    m_database = engine::DBEngine::Workspaces(0)->CreateDatabase(
        m_folder.filePath(QStringLiteral("dialect.mdb")), QString::fromUtf16(engine::dbLangGeneral));
    bool filled = false;
    for (const char16_t* statement : statements) {
        const QString sql = QString::fromUtf16(statement);
        if (!filled && sql.startsWith(QStringLiteral("INSERT"))) {
            for (const char* column : {"a01last", "a01frst", "a01midl", "a01memo", "a01bith"}) {
                m_database->TableDefs(QStringLiteral("a01"))
                    .Fields(QString::fromLatin1(column))
                    .SetAllowZeroLength(true);
            }
            filled = true;
        }
        m_database->Execute(sql, engine::dbFailOnError);
    }
}

void DialectFixture::TearDown() {
    if (m_database->IsOpen())
        m_database->Close();
}

QString DialectFixture::Open(const QString& sql) const {
    try {
        QStringList rows;
        engine::Recordset set = m_database->OpenRecordset(sql);
        for (; !set.EndOfFile(); set.MoveNext()) {
            QStringList values;
            for (int i = 0; i < set.FieldsCount(); ++i) {
                const engine::Value value = set.Fields(i).Value();
                values += value.IsNull() ? QStringLiteral("NULL") : value.Text();
            }
            rows += values.join(u'|');
        }
        return rows.join(QStringLiteral(" / "));
    } catch (const runtime::Failure& failure) {
        return FailureText(failure);
    }
}

QString DialectFixture::Execute(const QString& sql, int options) const {
    try {
        m_database->Execute(sql, options);
        return QStringLiteral("rows=%1").arg(m_database->RecordsAffected());
    } catch (const runtime::Failure& failure) {
        return FailureText(failure);
    }
}

QString DialectFixture::Names(const QString& sql) const {
    try {
        engine::Recordset set = m_database->OpenRecordset(sql);
        QStringList names;
        for (int i = 0; i < set.FieldsCount(); ++i)
            names += set.Fields(i).Name();
        return names.join(u'|');
    } catch (const runtime::Failure& failure) {
        return FailureText(failure);
    }
}

void DialectFixture::CheckOpen(std::span<const DialectCase> cases) const {
    for (const DialectCase& one : cases) {
        const QString sql = QString::fromUtf16(one.statement);
        const QString result = Open(sql);
        EXPECT_TRUE(Agrees(result, QString::fromUtf16(one.result)))
            << sql.toStdString() << "\n  gives    " << result.toStdString() << "\n  expected "
            << QString::fromUtf16(one.result).toStdString();
    }
}

void DialectFixture::CheckExecute(std::span<const DialectCase> cases) const {
    for (const DialectCase& one : cases) {
        const QString sql = QString::fromUtf16(one.statement);
        // A query in a table of action statements looks at what they have done.
        const QString result = sql.startsWith(QStringLiteral("SELECT ")) ? Open(sql) : Execute(sql);
        EXPECT_TRUE(Agrees(result, QString::fromUtf16(one.result)))
            << sql.toStdString() << "\n  gives    " << result.toStdString() << "\n  expected "
            << QString::fromUtf16(one.result).toStdString();
    }
}
