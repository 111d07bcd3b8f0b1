// Mistakes in statements: the number, and the word that the description names.
#include "platform/runtime/Failure.h"
#include "tests/engine/sql/DialectFixture.h"

using namespace Qt::StringLiterals;

namespace {

using DialectFailureTest = DialectFixture;

const char16_t missingOperator[] = u"#3075 Ошибка синтаксиса (пропущен оператор) в выражении запроса ";

QString Missing(const char16_t* expression) {
    return u"%1'%2'."_s.arg(QString::fromUtf16(missingOperator), QString::fromUtf16(expression));
}

TEST_F(DialectFailureTest, MissingOperators) {
    static const DialectCase cases[] = {
        {u"SELECT * FROM a01 WHERE a01last = 'O'Neil'", u"a01last = 'O'Neil'"},
        {u"SELECT * FROM a01 WHERE a01last = 'O'Neil' AND a01clid = 1",
         u"a01last = 'O'Neil' AND a01clid = 1"},
        {u"SELECT * FROM a01 WHERE a01clid = ", u"a01clid ="},
        {u"SELECT * FROM a01 WHERE a01clid = 1 2 ORDER BY a01clid", u"a01clid = 1 2"},
        {u"SELECT a01clid a01last, a01frst FROM a01", u"a01clid a01last"},
        {u"SELECT a01last || 'x' FROM a01", u"a01last || 'x'"},
        {u"SELECT 1 -- a remark", u"1 -- a remark"},
        {u"SELECT /* a remark */ 1", u"/* a remark */ 1"},
        {u"SELECT CASE WHEN 1 THEN 2 END", u"CASE WHEN 1 THEN 2 END"},
        {u"SELECT COUNT(DISTINCT a01last) FROM a01", u"COUNT(DISTINCT a01last)"},
        {u"SELECT * FROM a01 WHERE a01clid = 1 LIMIT 5", u"a01clid = 1 LIMIT 5"},
        {u"SELECT * FROM a01 ORDER BY a01clid LIMIT 5", u"a01clid LIMIT 5"},
        {u"SELECT * FROM a01 INNER JOIN a02 ON a01clid = a02clid INNER JOIN t01 ON a02code = t01code",
         u"a01clid = a02clid INNER JOIN t01 ON a02code = t01code"},
        {u"INSERT INTO a01 (a01clid, a01last) VALUES (9, 'O'Neil')", u"'O'Neil')"},
        {u"INSERT INTO a01 (a01clid, a01last) VALUES (9 9, 'a')", u"9 9, 'a')"},
        {u"UPDATE a01 SET a01last = 'O'Neil' WHERE a01clid = 1", u"'O'Neil' WHERE a01clid = 1"},
        {u"DELETE FROM a01 WHERE a01last LIKE 'a' 'b'", u"a01last LIKE 'a' 'b'"},
    };
    for (const DialectCase& one : cases) {
        const QString sql = QString::fromUtf16(one.statement);
        const QString expected = Missing(one.result);
        EXPECT_EQ(Open(sql).toStdString(), expected.toStdString());
        EXPECT_EQ(Execute(sql).toStdString(), expected.toStdString());
    }
}

TEST_F(DialectFailureTest, WrongExpressions) {
    static const DialectCase cases[] = {
        {u"SELECT * FROM a01 WHERE a01last = 'abc",
         u"#3075 Ошибка синтаксиса в строке в выражении запроса 'a01last = 'abc'."},
        {u"SELECT #13/32/2006#", u"#3075 Ошибка синтаксиса в дате в выражении запроса '#13/32/2006#'."},
        {u"SELECT 1E999", u"#3075 Ошибка синтаксиса в числе в выражении запроса '1E999'."},
        {u"SELECT * FROM a01 WHERE (a01clid = 1",
         u"#3075 Отсутствует ), ] или элемент в выражении запроса '(a01clid = 1'."},
        {u"SELECT (a01clid FROM a01", u"#3075 Отсутствует ), ] или элемент в выражении запроса '(a01clid'."},
        {u"SELECT a01clid FROM a01 WHERE a01clid IN (1,2 ORDER BY a01clid",
         u"#3075 Отсутствует ), ] или элемент в выражении запроса 'a01clid IN (1,2'."},
        {u"SELECT LEFT(a01last, 2 FROM a01",
         u"#3075 Отсутствует ), ] или элемент в выражении запроса 'LEFT(a01last, 2'."},
        {u"SELECT * FROM a01 WHERE [a01clid = 1",
         u"#3075 Отсутствует ), ] или элемент в выражении запроса '[a01clid = 1'."},
        {u"SELECT * FROM a01 WHERE a01clid = 1)", u"#3075 Лишняя ) в выражении запроса 'a01clid = 1)'."},
        {u"SELECT * FROM a01 WHERE a01clid = 1, 2",
         u"#3075 Ошибка синтаксиса (запятая) в выражении запроса 'a01clid = 1, 2'."},
        {u"SELECT * FROM a01 WHERE a01clid IN 5",
         u"#3075 Оператор In без () в выражении запроса 'a01clid IN 5'."},
        {u"SELECT * FROM a01 WHERE a01clid BETWEEN 1, 5",
         u"#3075 Оператор Between без And в выражении запроса "},
        {u"SELECT * FROM a01 WHERE a01clid IS 5",
         u"#3075 Недопустимое использование оператора Is в выражении запроса "},
        {u"SELECT a01..a01clid FROM a01",
         u"#3075 Недопустимое использование '.', '!' или '()' в выражении запроса "},
        {u"SELECT * FROM a01 WHERE a01clid != 5", u"#3075 "},
        {u"SELECT LEFT('abc')",
         u"#3075 Функция использована с неверным числом аргументов в выражении запроса 'LEFT('abc')'."},
        {u"SELECT IIF(1, 2)",
         u"#3075 Функция использована с неверным числом аргументов в выражении запроса 'IIF(1, 2)'."},
        {u"SELECT SWITCH(1, 2, 3)", u"#3075 Функция использована с неверным числом аргументов"},
        {u"SELECT MAX(a01clid, 2) FROM a01", u"#3075 Функция использована с неверным числом аргументов"},
    };
    CheckOpen(cases);
}

TEST_F(DialectFailureTest, WrongClauses) {
    static const DialectCase cases[] = {
        {u"", u"#3078 Не удается найти входную таблицу или запрос ''."},
        {u"   ", u"#3078 Не удается найти входную таблицу или запрос '   '."},
        {u";", u"#3078 "},
        {u"hello", u"#3078 Не удается найти входную таблицу или запрос 'hello'."},
        {u"SELEC * FROM a01", u"#3078 Не удается найти входную таблицу или запрос 'SELEC * FROM a01'."},
        {u"PRAGMA encoding", u"#3078 Не удается найти входную таблицу или запрос 'PRAGMA encoding'."},
        {u"ATTACH 'x.db' AS y", u"#3078 "},
        {u"VACUUM", u"#3078 "},
        {u"EXPLAIN SELECT 1", u"#3078 "},
        {u"WITH q AS (SELECT 1) SELECT * FROM q", u"#3078 "},
        {u"BEGIN", u"#3078 "},
        {u"SELECT", u"#3141 "},
        {u"SELECT FROM a01", u"#3141 "},
        {u"SELECT a01clid, FROM a01", u"#3141 "},
        {u"SELECT , a01clid FROM a01", u"#3141 "},
        {u"SELECT a01clid AS FROM a01", u"#3141 "},
        {u"SELECT *", u"#3141 "},
        {u"SELECT * FROM", u"#3131 "},
        {u"SELECT * FROM a01, ", u"#3131 "},
        {u"SELECT * FROM a01 LIMIT 5", u"#3131 "},
        {u"SELECT * FROM a01 JOIN a02 ON a01clid = a02clid", u"#3131 "},
        {u"SELECT * FROM a01 CROSS JOIN a02", u"#3131 "},
        {u"SELECT * FROM a01 NATURAL JOIN a02", u"#3131 "},
        {u"SELECT * FROM a01 FULL JOIN a02 ON a01clid = a02clid", u"#3131 "},
        {u"SELECT * FROM a01 INNER JOIN a02", u"#3135 "},
        {u"SELECT * FROM a01 INNER JOIN a02 USING (a01clid)", u"#3131 "},
        {u"SELECT * FROM json_each('[1]')", u"#3131 "},
        {u"SELECT * FROM a01 WHERE", u"#3145 "},
        {u"SELECT * FROM a01 WHERE ORDER BY a01clid", u"#3145 "},
        {u"SELECT a01clid FROM a01 GROUP a01clid", u"#3132 "},
        {u"SELECT COUNT(*) FROM a01 HAVING", u"#3133 "},
        {u"SELECT * FROM a01 ORDER a01clid", u"#3138 "},
        {u"SELECT * FROM a01 ORDER BY", u"#3138 "},
        {u"SELECT * FROM a01 ORDER BY 77", u"#3138 "},
        {u"SELECT * FROM a01 ORDER BY 0", u"#3138 "},
        {u"SELECT 1 UNION SELECT 2 ORDER BY 0", u"#3138 "},
        {u"SELECT TOP a01clid FROM a01", u"#3308 "},
        {u"SELECT TOP 0 * FROM a01", u"#3308 "},
        {u"SELECT TOP 101 PERCENT * FROM a01", u"#3308 "},
        {u"SELECT 1 UNION 2", u"#3319 "},
        {u"SELECT 1 UNION SELECT 1, 2", u"#3307 "},
        {u"SELECT * FROM a01; SELECT 1", u"#3142 "},
        {u"SELECT * FROM a01;;", u"#3142 "},
        {u"PARAMETERS p; SELECT 1", u"#3139 "},
        {u"TRANSFORM COUNT(*) PIVOT a01last", u"#3143 "},
    };
    CheckOpen(cases);
}

TEST_F(DialectFailureTest, UnknownAndAmbiguousNames) {
    static const DialectCase cases[] = {
        {u"SELECT * FROM b99", u"#3078 Не удается найти входную таблицу или запрос 'b99'."},
        {u"SELECT * FROM sqlite_master", u"#3078 "},
        {u"SELECT * FROM sqlite_sequence", u"#3078 "},
        {u"SELECT * FROM MSysObjects", u"#3078 "},
        {u"SELECT q FROM a01", u"#3061 Слишком мало параметров. Требуется 1."},
        {u"SELECT q, w, Q FROM a01 WHERE e = 1 ORDER BY r", u"#3061 Слишком мало параметров. Требуется 4."},
        {u"SELECT rowid FROM a01", u"#3061 Слишком мало параметров. Требуется 1."},
        {u"SELECT DATE FROM a01", u"#3061 Слишком мало параметров. Требуется 1."},
        {u"SELECT a01.a01clid FROM a01 AS x", u"#3061 "},
        {u"SELECT a01clid AS n FROM a01 WHERE n = 1", u"#3061 Слишком мало параметров. Требуется 1."},
        {u"SELECT a01clid AS n FROM a01 ORDER BY n", u"#3061 "},
        {u"SELECT a01clid AS n, COUNT(*) FROM a01 GROUP BY n", u"#3061 "},
        {u"PARAMETERS p LONG; SELECT * FROM a01 WHERE a01clid = p",
         u"#3061 Слишком мало параметров. Требуется 1."},
        {u"SELECT a01clid FROM a01, a01 AS x",
         u"#3079 Указанное поле 'a01clid' может ссылаться на несколько таблиц"},
        {u"SELECT x.* FROM a01", u"#3070 Не удается распознать 'x.*' "},
        {u"SELECT * FROM a01, a02 INNER JOIN t01 ON t01code = a01clid", u"#3082 Операция JOIN 'a01clid' "},
        {u"SELECT foo(1)", u"#3085 Неопределенная функция 'foo' в выражении."},
        {u"SELECT NZ(1)", u"#3085 Неопределенная функция 'NZ' в выражении."},
        {u"SELECT COALESCE(1, 2)", u"#3085 Неопределенная функция 'COALESCE' в выражении."},
        {u"SELECT REPLACE('a', 'b', 'c')", u"#3085 "},
        {u"SELECT zv_add(1, 2)", u"#3085 "},
        {u"SELECT load_extension('x')", u"#3085 "},
    };
    CheckOpen(cases);
}

TEST_F(DialectFailureTest, Aggregates) {
    static const DialectCase cases[] = {
        {u"SELECT a01last, COUNT(*) FROM a01",
         u"#3122 Попытка выполнить запрос, который не включает указанное выражение 'a01last' "},
        {u"SELECT a01last & 'y' FROM a01 GROUP BY a01last & 'x'", u"#3122 "},
        {u"SELECT COUNT(*) FROM a01 GROUP BY a01last ORDER BY a01clid", u"#3122 "},
        {u"SELECT COUNT(*) FROM a01 HAVING a01clid > 1", u"#3122 "},
        {u"SELECT * FROM a01 GROUP BY a01last", u"#3121 "},
        {u"SELECT a01last FROM a01 WHERE COUNT(*) > 1",
         u"#3096 Недопустимо использование статистической функции в предложении WHERE (COUNT(*))."},
        {u"SELECT a01last FROM a01 ORDER BY COUNT(*)", u"#3097 "},
        {u"SELECT COUNT(*) FROM a01 GROUP BY MAX(a01clid)", u"#3098 "},
        {u"SELECT a01clid FROM a01 INNER JOIN a02 ON MAX(a01clid) = a02clid", u"#3099 "},
        {u"SELECT SUM(COUNT(*)) FROM a01", u"#3095 "},
        {u"SELECT DISTINCT a01last FROM a01 ORDER BY a01clid",
         u"#3093 Предложение ORDER BY (a01clid) конфликтует с DISTINCT."},
        {u"SELECT a01clid FROM a01 WHERE a01clid IN (SELECT TOP 1 a02clid FROM a02 ORDER BY a01last, "
         u"a02clid)",
         u"#3071 "},
        {u"SELECT * FROM a01 WHERE a01clid = (SELECT a02clid, a02code FROM a02)", u"#3306 "},
        {u"SELECT * FROM a01 WHERE a01clid IN (SELECT * FROM a02)", u"#3306 "},
        {u"SELECT (SELECT a01clid FROM a01)", u"#3354 "},
    };
    CheckOpen(cases);
}

TEST_F(DialectFailureTest, Types) {
    static const DialectCase cases[] = {
        {u"SELECT * FROM a01 WHERE a01clid = '1'", u"#3464 "},
        {u"SELECT * FROM a01 WHERE a01last = 1", u"#3464 "},
        {u"SELECT * FROM a01 WHERE a01last IN (1, 2)", u"#3464 "},
        {u"SELECT * FROM a01 WHERE a01clid BETWEEN 'a' AND 'b'", u"#3464 "},
        {u"SELECT * FROM a01, a02 WHERE a01clid = a02cval", u"#3464 "},
        {u"SELECT * FROM a01 WHERE a01clid IN (SELECT a02cval FROM a02)", u"#3464 "},
        {u"SELECT SUM(a01last) FROM a01", u"#3464 "},
        {u"SELECT a01last + 1 FROM a01", u"#3464 "},
        {u"SELECT a01last * 2 FROM a01", u"#3464 "},
        {u"SELECT 1 / 0", u"#11 "},
        {u"SELECT a01clid \\ 0 FROM a01", u"#11 "},
        {u"SELECT 1 MOD 0", u"#11 "},
        {u"SELECT SQR(-1)", u"#5 "},
        {u"SELECT 9E300 * 9E300", u"#6 "},
        {u"SELECT NOT 'x'", u"#3464 "},
        {u"SELECT CINT(70000)", u"#6 "},
        {u"SELECT CLNG('abc')", u"#13 "},
        {u"SELECT CSTR(NULL)", u"#94 "},
        // A pattern is read with the statement: also where no row comes to it, or a like statement has run.
        {u"SELECT * FROM a01 WHERE a01last LIKE '[а-'", u"#93 "},
        {u"SELECT a01clid FROM a01 WHERE 1 = 2 AND a01last LIKE '[1]'", u""},
        {u"SELECT a01clid FROM a01 WHERE 1 = 2 AND a01last LIKE '[1'", u"#93 "},
        {u"SELECT a01clid FROM a01 WHERE 1 = 2 AND a01last LIKE ('1')", u""},
        {u"SELECT a01clid FROM a01 WHERE 1 = 2 AND a01last LIKE ('[')", u"#93 "},
        {u"SELECT q FROM a01 WHERE a01last LIKE '[я-а]'", u"#93 "},
        {u"SELECT a01clid FROM a01 WHERE 1 = 2 AND a01last LIKE '[' & ']'", u""},
        {u"SELECT DISTINCT a01last FROM a01 WHERE 1 = 2 AND a01last LIKE '['", u"#93 "},
        {u"SELECT * FROM a01 WHERE q = 1 AND a01clid = '1'", u"#3061 "}, // names are looked up first
    };
    CheckOpen(cases);
}

TEST_F(DialectFailureTest, ActionStatements) {
    static const DialectCase cases[] = {
        {u"INSERT INTO a01", u"#3134 "},
        {u"INSERT a01 VALUES (1)", u"#3134 "},
        {u"INSERT INTO a01 (a01clid) VALUES (9", u"#3134 "},
        {u"INSERT INTO a01 (a01clid) VALUES ((9", u"#3134 "},
        {u"INSERT INTO a01 (a01clid) VALUES ()", u"#3134 "},
        {u"INSERT INTO a01 (a01clid) VALUES (9), (10)", u"#3137 "},
        {u"INSERT INTO a01 (a01clid) VALUES (9); DELETE FROM a01", u"#3142 "},
        {u"INSERT INTO a01 (q) VALUES (9)",
         u"#3127 Инструкция INSERT INTO содержит следующее неизвестное имя поля: 'q'."},
        {u"INSERT INTO b99 (q) VALUES (9)", u"#3192 Не удается найти выходную таблицу 'b99'."},
        {u"INSERT INTO a01 (a01clid, a01last) VALUES (9)", u"#3346 "},
        {u"INSERT INTO a01 (a01clid) SELECT a02clid, a02code FROM a02", u"#3346 "},
        {u"INSERT INTO a01 (a01clid, a01last) VALUES (9, q)", u"#3061 Слишком мало параметров. Требуется 1."},
        {u"UPDATE a01", u"#3144 "},
        {u"UPDATE a01 SET", u"#3144 "},
        {u"UPDATE a01 SET a01last", u"#3144 "},
        {u"UPDATE a01 SET q = 1", u"#3061 "},
        {u"UPDATE a01 SET a01last = q, a01frst = w WHERE e = 1",
         u"#3061 Слишком мало параметров. Требуется 3."},
        {u"UPDATE b99 SET q = 1", u"#3078 "},
        {u"DELETE", u"#3130 "},
        {u"DELETE a01", u"#3130 "},
        {u"DELETE FROM b99", u"#3078 "},
        {u"DELETE FROM a01 WHERE q = 1", u"#3061 "},
        {u"SELECT * FROM a01", u"rows"},
        {u"CREATE TABLE a01 (x INTEGER)", u"#3010 Таблица 'a01' уже существует."},
        {u"CREATE TABLE x1", u"#3290 "},
        {u"CREATE TABLE x1 (x INTEGER", u"#3290 "},
        {u"CREATE TABLE x1 (x INTEGER DEFAULT 5)", u"#3290 "},
        {u"CREATE TABLE x1 (x)", u"#3292 "},
        {u"CREATE TABLE x1 (x DECIMAL)", u"#3292 "},
        {u"CREATE TABLE x1 (x COUNTER(1, 1))", u"#3290 "},
        {u"CREATE TABLE x1 (x INTEGER NOT NULL NOT NULL)", u"#3292 "},
        {u"CREATE TABLE x1 (x INTEGER, x TEXT)", u"#3191 "},
        {u"CREATE TABLE x1 (x TEXT(256))", u"#3382 Слишком большой размер поля 'x'."},
        {u"CREATE TABLE x1 (x INTEGER PRIMARY KEY, y INTEGER PRIMARY KEY)", u"#3283 "},
        {u"CREATE TABLE x1 (x INTEGER, CONSTRAINT c CHECK (x > 1))", u"#3289 "},
        {u"CREATE TABLE x1 (x INTEGER, CONSTRAINT c UNIQUE (y))",
         u"#3381 Таблица 'x1' не содержит поле 'y'."},
        {u"CREATE VIEW x1 AS SELECT 1", u"#3290 "},
        {u"CREATE TRIGGER x1 BEFORE INSERT ON a01 BEGIN SELECT 1; END", u"#3290 "},
        {u"CREATE INDEX i a01 (a01last)", u"#3291 "},
        {u"CREATE INDEX i ON a01 (q)", u"#3381 "},
        {u"ALTER TABLE b99 ADD COLUMN x INTEGER", u"#3371 "},
        {u"ALTER TABLE a01 ADD COLUMN a01last TEXT(5)",
         u"#3380 Поле 'a01last' уже существует в таблице 'a01'."},
        {u"ALTER TABLE a01 DROP COLUMN q", u"#3381 Таблица 'a01' не содержит поле 'q'."},
        {u"ALTER TABLE a01 RENAME TO q", u"#3293 "},
        {u"DROP TABLE b99", u"#3376 Таблица 'b99' не существует."},
        {u"DROP TABLE sqlite_master", u"#3376 "},
        {u"DROP INDEX i ON a01", u"#3372 Таблица 'a01' не содержит индекс 'i'."},
        {u"DROP VIEW a01", u"#3295 "},
    };
    for (const DialectCase& one : cases) {
        const QString sql = QString::fromUtf16(one.statement);
        if (sql.startsWith(QStringLiteral("SELECT"))) {
            EXPECT_TRUE(Execute(sql).startsWith(QStringLiteral("#3065 ")));
            continue;
        }
        EXPECT_TRUE(Execute(sql).startsWith(QString::fromUtf16(one.result)))
            << sql.toStdString() << "\n  gives " << Execute(sql).toStdString();
    }
}

/// A statement that returns no rows is refused by OpenRecordset, and changes nothing; its syntax is checked
/// first.
TEST_F(DialectFailureTest, OpenedActionStatements) {
    static const DialectCase cases[] = {
        {u"DELETE FROM a01", u"#3219 "},
        {u"INSERT INTO a01 (a01clid) VALUES (9)", u"#3219 "},
        {u"UPDATE a01 SET a01last = 'x'", u"#3219 "},
        {u"SELECT * INTO q FROM a01", u"#3219 "},
        {u"DROP TABLE a01", u"#3219 "},
        {u"CREATE TABLE q (x INTEGER)", u"#3219 "},
        {u"DELETE FROM a01 WHERE", u"#3145 "},
        {u"UPDATE a01 SET q = 1", u"#3061 "},
        {u"SELECT COUNT(*), MAX(a01last) FROM a01", u"5|Сидорова"},
        {u"SELECT * FROM q", u"#3078 "},
    };
    CheckOpen(cases);
}

TEST_F(DialectFailureTest, Criteria) {
    static const DialectCase cases[] = {
        {u"", u"#3077 Ошибка синтаксиса (пропущен оператор) в выражении."},
        {u"a01clid = ", u"#3077 Ошибка синтаксиса (пропущен оператор) в выражении."},
        {u"a01last = 'O'Neil'", u"#3077 Ошибка синтаксиса (пропущен оператор) в выражении."},
        {u"a01last = 'x", u"#3077 Ошибка синтаксиса в строке в выражении."},
        {u"(a01clid = 1", u"#3077 Отсутствует ), ] или элемент в выражении."},
        {u"a01clid = 1; DELETE FROM a01", u"#3077 "},
        {u"a01clid IN (SELECT 1)", u"#3077 "},
        {u"LEFT(a01last) = 'x'", u"#3077 Функция использована с неверным числом аргументов в выражении."},
        {u"q = 1", u"#3070 Не удается распознать 'q' "},
        {u"a01clid = '1'", u"#3464 "},
        {u"foo(1)", u"#3085 "},
    };
    engine::Recordset set = m_database->OpenRecordset(QStringLiteral("SELECT * FROM a01"));
    for (const DialectCase& one : cases) {
        QString result = QStringLiteral("no failure");
        try {
            set.FindFirst(QString::fromUtf16(one.statement));
        } catch (const runtime::Failure& failure) {
            result = u'#' + QString::number(failure.number()) + u' ' + failure.description();
        }
        EXPECT_TRUE(result.startsWith(QString::fromUtf16(one.result)))
            << QString::fromUtf16(one.statement).toStdString() << "\n  gives " << result.toStdString();
    }
}

/// Texts nested without end are refused, wherever the nesting stands, and wide ones are not.
TEST_F(DialectFailureTest, DeepAndWideStatements) {
    const auto repeated = [](const char* text, int times) {
        return QString::fromLatin1(text).repeated(times);
    };
    for (const int depth : {1000, 100000}) {
        const QString deep[] = {
            u"SELECT "_s + repeated("(", depth) + u'1' + repeated(")", depth),
            u"SELECT "_s + repeated("NOT ", depth) + u'1',
            u"SELECT "_s + repeated("-", depth) + u'1',
            u"SELECT 1"_s + repeated("+1", depth),
            u"SELECT "_s + repeated("LEFT(", depth) + u"'x'"_s + repeated(",1)", depth),
            u"SELECT "_s + repeated("IIF(1=1,", depth) + u'1' + repeated(",2)", depth),
            u"SELECT * FROM "_s + repeated("(SELECT * FROM ", depth) + u"a01"_s + repeated(") AS q", depth),
            u"SELECT * FROM "_s + repeated("(", depth) + u"a01"_s + repeated(")", depth),
            u"SELECT * FROM a01 WHERE a01clid IN "_s + repeated("(SELECT 1 FROM a01 WHERE 1 IN ", depth) +
                u"(1)"_s + repeated(")", depth),
            u"SELECT 1"_s + repeated(" UNION SELECT 1", depth),
        };
        for (const QString& sql : deep)
            EXPECT_TRUE(Open(sql).startsWith(QStringLiteral("#3360 "))) << sql.left(60).toStdString();
    }
    QString list = QStringLiteral("1");
    for (int i = 2; i <= 32767; ++i)
        list += QStringLiteral(", %1").arg(i);
    EXPECT_EQ(Open(u"SELECT COUNT(*) FROM a01 WHERE a01clid in ("_s + list + u')'), QStringLiteral("5"));
    EXPECT_TRUE(Open(u"SELECT '"_s + QString(1'000'001, u'x') + u'\'').startsWith(QStringLiteral("#3360 ")));
    // Aliases that double each other would grow without end.
    QString aliases = QStringLiteral("SELECT 1 AS x0");
    for (int i = 0; i < 40; ++i)
        aliases += QStringLiteral(", x%1 + x%1 AS x%2").arg(i).arg(i + 1);
    EXPECT_TRUE(Open(aliases).startsWith(QStringLiteral("#3360 ")));
}

} // namespace
