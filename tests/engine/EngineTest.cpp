#include "tests/engine/EngineTest.h"

#include "platform/runtime/Failure.h"

#include <QRegularExpression>
#include <sqlite3.h>

namespace {

QString Unescaped(QString text) {
    static const QRegularExpression character(QStringLiteral("\\{([0-9A-F]{4})\\}"));
    for (auto found = character.match(text); found.hasMatch(); found = character.match(text))
        text.replace(found.capturedStart(), found.capturedLength(),
                     QChar(static_cast<char16_t>(found.captured(1).toUInt(nullptr, 16))));
    return text;
}

/// Takes the word away from the start of the statement.
bool Take(QString& statement, const QString& word) {
    const bool found = statement.startsWith(word + u' ');
    if (found)
        statement.remove(0, word.size() + 1);
    return found;
}

bool IsAction(const QString& statement) {
    static const QRegularExpression verb(QStringLiteral("^(INSERT|UPDATE|DELETE|CREATE|ALTER|DROP)\\b"));
    return verb.match(statement).hasMatch();
}

bool Agrees(const QString& result, const QString& expected) {
    if (!expected.startsWith(u'#'))
        return result == expected;
    return expected.contains(u' ') ? result.startsWith(expected) : result.startsWith(expected + u' ');
}

} // namespace

QStringList test::Rows(engine::Recordset set) {
    QStringList rows;
    for (; !set.EndOfFile(); set.MoveNext()) {
        QStringList values;
        for (int column = 0; column < set.FieldsCount(); ++column) {
            const engine::Value value = set.Fields(column).Value();
            values += value.IsNull() ? QStringLiteral("NULL") : value.Text();
        }
        rows += values.join(u'|');
    }
    return rows;
}

QList<std::pair<QString, QString>> test::Lines(const char* script) {
    QList<std::pair<QString, QString>> lines;
    for (const QString& line : QString::fromUtf8(script).split(u'\n')) {
        const QString text = line.trimmed();
        if (text.isEmpty() || text.startsWith(QStringLiteral("--")))
            continue;
        const qsizetype arrow = text.lastIndexOf(QStringLiteral("->"));
        lines.append({arrow < 0 ? text : Unescaped(text.left(arrow).trimmed()),
                      arrow < 0 ? QString() : Unescaped(text.mid(arrow + 2).trimmed())});
        if (arrow < 0)
            lines.last().second = QString(u'*');
    }
    return lines;
}

test::EngineTest::EngineTest()
    : workspace(engine::DBEngine::CreateWorkspace(QStringLiteral("test"), QStringLiteral("admin"), {}))
    , path(folder.Path(QStringLiteral("Книга.mdb")))
    , database(workspace->CreateDatabase(path, QString::fromUtf16(engine::dbLangGeneral))) {
}

QString test::EngineTest::Result(const QString& statement) const {
    QString text = statement;
    const bool loose = Take(text, QStringLiteral("loose"));
    const bool names = Take(text, QStringLiteral("names"));
    const bool types = Take(text, QStringLiteral("types"));
    const bool open = Take(text, QStringLiteral("open"));
    try {
        if (loose || Take(text, QStringLiteral("run")) || (!open && IsAction(text))) {
            database->Execute(text, loose ? 0 : engine::dbFailOnError);
            return QString::number(database->RecordsAffected());
        }
        engine::Recordset set = database->OpenRecordset(text);
        if (!names && !types)
            return Rows(std::move(set)).join(QStringLiteral(" / "));
        QStringList columns;
        for (int column = 0; column < set.FieldsCount(); ++column)
            columns += names ? set.Fields(column).Name()
                             : QString::number(static_cast<int>(set.Fields(column).Type()));
        return columns.join(u'|');
    } catch (const runtime::Failure& failure) {
        EXPECT_FALSE(failure.description().isEmpty()) << statement.toStdString();
        return u'#' + QString::number(failure.number()) + u' ' + failure.description();
    }
}

void test::EngineTest::Check(const char* script, const char* before) const {
    for (const auto& [statements, expected] : Lines(script)) {
        for (const QString& statement : statements.split(QStringLiteral(" ; "))) {
            const QString result = Result(QString::fromUtf8(before) + statement);
            EXPECT_TRUE(expected == u'*' ? !result.startsWith(u'#') : Agrees(result, expected))
                << before << statement.toStdString() << "\n  gives    " << result.toStdString()
                << "\n  expected " << expected.toStdString();
        }
    }
}

int test::EngineTest::FailureOfRun(const QString& statement) const {
    const QString result = Result(QStringLiteral("run ") + statement);
    return result.startsWith(u'#') ? result.section(u' ', 0, 0).mid(1).toInt() : 0;
}

void test::EngineTest::AllowEmpty(const QString& table, const QStringList& columns) const {
    for (const QString& column : columns)
        database->TableDefs(table).Fields(column).SetAllowZeroLength(true);
}

void test::EngineTest::Reopen() {
    database->Close();
    database = workspace->OpenDatabase(path);
}

void test::EngineTest::RunPlainly(const QByteArray& statements) const {
    sqlite3* other = nullptr;
    sqlite3_open(path.toUtf8().constData(), &other);
    EXPECT_EQ(sqlite3_exec(other, statements.constData(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(other);
    sqlite3_close(other);
}

void test::EngineTest::MakeCards() const {
    Check(R"(
        CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY, a01last TEXT(50), a01frst TEXT(50))
        CREATE TABLE a02 (a02rcid COUNTER NOT NULL PRIMARY KEY, a02clid INTEGER NOT NULL, a02code SHORT NOT NULL, a02cval TEXT(50) NOT NULL)
    )");
}

test::BookTest::BookTest() {
    Check(R"(
        CREATE TABLE a01 (a01clid INTEGER NOT NULL PRIMARY KEY, a01last TEXT(50), a01frst TEXT(50), a01midl TEXT(50), a01memo TEXT(100), a01bith TEXT(20))
        CREATE TABLE a02 (a02rcid COUNTER NOT NULL PRIMARY KEY, a02clid INTEGER NOT NULL, a02code SHORT NOT NULL, a02cval TEXT(50) NOT NULL)
        CREATE TABLE t01 (t01ctid COUNTER NOT NULL PRIMARY KEY, t01type BYTE NOT NULL, t01code SHORT NOT NULL, t01cval TEXT(50) NOT NULL UNIQUE)
        CREATE TABLE t02 (t02rcid COUNTER NOT NULL PRIMARY KEY, t02cval TEXT(50) NOT NULL UNIQUE)
        CREATE TABLE t03 (t03rcid COUNTER NOT NULL PRIMARY KEY, t03code INTEGER NOT NULL, t03cval TEXT(50) NOT NULL, t03numb INTEGER NOT NULL)
        CREATE TABLE v00 (v00vrid BYTE NOT NULL PRIMARY KEY)
        CREATE TABLE [n 01] (id LONG CONSTRAINT pk PRIMARY KEY, dbl DOUBLE, day DATETIME, bit YESNO, txt TEXT(10))
    )");
    AllowEmpty(QStringLiteral("a01"),
               {QStringLiteral("a01last"), QStringLiteral("a01frst"), QStringLiteral("a01midl"),
                QStringLiteral("a01memo"), QStringLiteral("a01bith")});
    Check(R"(
        INSERT INTO a01 VALUES (1, 'Иванов', 'Иван', 'Иванович', 'друг', '05.12.1980')
        INSERT INTO a01 VALUES (2, 'Петров', 'Пётр', 'Петрович', NULL, '31.01.1975')
        INSERT INTO a01 VALUES (3, 'Сидорова', 'Анна', NULL, '', NULL)
        INSERT INTO a01 VALUES (4, 'Ёлкин', 'Олег', '', 'коллега', '29.02.1980')
        INSERT INTO a01 VALUES (5, 'иванов', 'Борис', NULL, NULL, NULL)
        INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 1, '4951234567')
        INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (1, 2, '79161112233')
        INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (2, 1, '8121234')
        INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (2, 1, '8125678')
        INSERT INTO a02 (a02clid, a02code, a02cval) VALUES (4, 3, '555')
        INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 1, 'Домашний телефон')
        INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 2, 'Мобильный телефон')
        INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 3, 'Рабочий телефон')
        INSERT INTO t01 (t01type, t01code, t01cval) VALUES (0, 4, 'Основной телефон')
        INSERT INTO t02 (t02cval) VALUES ('МОСКОВСКАЯ ОБЛАСТЬ')
        INSERT INTO t02 (t02cval) VALUES ('КАРЕЛИЯ')
        INSERT INTO t02 (t02cval) VALUES ('АЛТАЙ')
        INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (1, 'МОСКВА', 495)
        INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (1, 'ХИМКИ', 495)
        INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (2, 'ПЕТРОЗАВОДСК', 814)
        INSERT INTO t03 (t03code, t03cval, t03numb) VALUES (3, 'БАРНАУЛ', 385)
        INSERT INTO v00 (v00vrid) VALUES (3)
        INSERT INTO [n 01] VALUES (1, 1.5, #1/31/2020#, TRUE, '10')
        INSERT INTO [n 01] VALUES (2, 2.5, #12/31/2019 18:30#, FALSE, '9')
        INSERT INTO [n 01] VALUES (3, NULL, NULL, FALSE, NULL)
        INSERT INTO [n 01] VALUES (4, -2.5, #2/29/2020#, TRUE, '-')
    )");
}
