// Mistakes in statements: the number, and the word that the description names.
#include "tests/engine/EngineTest.h"

using namespace Qt::StringLiterals;

using Mistake = test::BookTest;

// The expression that is told, the same whether the statement is opened or executed.
TEST_F(Mistake, MissingOperators) {
    for (const auto& [statement, expression] : test::Lines(R"(
        SELECT * FROM a01 WHERE a01last = 'O'Neil' AND a01clid = 1 -> a01last = 'O'Neil' AND a01clid = 1
        SELECT * FROM a01 WHERE a01clid = -> a01clid =
        SELECT * FROM a01 WHERE a01clid = 1 2 ORDER BY a01clid -> a01clid = 1 2
        SELECT a01clid a01last, a01frst FROM a01 -> a01clid a01last
        SELECT COUNT(DISTINCT a01last) FROM a01 -> COUNT(DISTINCT a01last)
        SELECT * FROM a01 INNER JOIN a02 ON a01clid = a02clid INNER JOIN t01 ON a02code = t01code -> a01clid = a02clid INNER JOIN t01 ON a02code = t01code
        INSERT INTO a01 (a01clid, a01last) VALUES (9, 'O'Neil') -> 'O'Neil')
        UPDATE a01 SET a01last = 'O'Neil' WHERE a01clid = 1 -> 'O'Neil' WHERE a01clid = 1
    )")) {
        for (const QString& way : {u"open "_s, u"run "_s})
            EXPECT_EQ(
                Result(way + statement),
                u"#3075 Ошибка синтаксиса (пропущен оператор) в выражении запроса '%1'."_s.arg(expression));
    }
}

TEST_F(Mistake, InQueries) {
    Check(R"(
        SELECT * FROM a01 WHERE a01last = 'abc -> #3075 Ошибка синтаксиса в строке в выражении запроса 'a01last = 'abc'.
        SELECT #13/32/2006# -> #3075 Ошибка синтаксиса в дате в выражении запроса '#13/32/2006#'.
        SELECT * FROM a01 WHERE (a01clid = 1 -> #3075 Отсутствует ), ] или элемент в выражении запроса '(a01clid = 1'.
        SELECT * FROM a01 WHERE a01clid = 1) -> #3075 Лишняя ) в выражении запроса 'a01clid = 1)'.
        SELECT * FROM a01 WHERE a01clid = 1, 2 -> #3075 Ошибка синтаксиса (запятая) в выражении запроса 'a01clid = 1, 2'.
        SELECT * FROM a01 WHERE a01clid IN 5 -> #3075 Оператор In без () в выражении запроса 'a01clid IN 5'.
        SELECT * FROM a01 WHERE a01clid BETWEEN 1, 5 -> #3075 Оператор Between без And в выражении запроса
        SELECT a01..a01clid FROM a01 -> #3075 Недопустимое использование '.', '!' или '()' в выражении запроса
        SELECT IIF(1, 2) -> #3075 Функция использована с неверным числом аргументов в выражении запроса 'IIF(1, 2)'.
        open {0020} -> #3078 Не удается найти входную таблицу или запрос ' '.
        SELEC * FROM a01 -> #3078 Не удается найти входную таблицу или запрос 'SELEC * FROM a01'.
        hello ; PRAGMA encoding ; ATTACH 'x.db' AS y ; VACUUM ; EXPLAIN SELECT 1 ; WITH q AS (SELECT 1) SELECT * FROM q ; BEGIN -> #3078
        SELECT ; SELECT FROM a01 ; SELECT a01clid, FROM a01 ; SELECT , a01clid FROM a01 ; SELECT a01clid AS FROM a01 ; SELECT * -> #3141
        SELECT * FROM ; SELECT * FROM a01, ; SELECT * FROM a01 LIMIT 5 ; SELECT * FROM json_each('[1]') -> #3131
        SELECT * FROM a01 JOIN a02 ON a01clid = a02clid ; SELECT * FROM a01 CROSS JOIN a02 ; SELECT * FROM a01 NATURAL JOIN a02 -> #3131
        SELECT * FROM a01 INNER JOIN a02 -> #3135
        SELECT * FROM a01 WHERE ; SELECT * FROM a01 WHERE ORDER BY a01clid -> #3145
        SELECT * FROM a01 ORDER a01clid ; SELECT * FROM a01 ORDER BY ; SELECT * FROM a01 ORDER BY 77 ; SELECT * FROM a01 ORDER BY 0 -> #3138
        SELECT TOP a01clid FROM a01 ; SELECT TOP 0 * FROM a01 ; SELECT TOP 101 PERCENT * FROM a01 -> #3308
        SELECT 1 UNION 2 -> #3319
        SELECT 1 UNION SELECT 1, 2 -> #3307
        SELECT * FROM a01; SELECT 1 ; SELECT * FROM a01;; -> #3142
    )");
}

TEST_F(Mistake, InNamesAndGroups) {
    Check(R"(
        SELECT * FROM b99 -> #3078 Не удается найти входную таблицу или запрос 'b99'.
        SELECT * FROM sqlite_master ; SELECT * FROM sqlite_sequence ; SELECT * FROM MSysObjects -> #3078
        SELECT q FROM a01 ; SELECT rowid FROM a01 ; SELECT DATE FROM a01 -> #3061 Слишком мало параметров. Требуется 1.
        SELECT q, w, Q FROM a01 WHERE e = 1 ORDER BY r -> #3061 Слишком мало параметров. Требуется 4.
        SELECT a01clid FROM a01, a01 AS x -> #3079 Указанное поле 'a01clid' может ссылаться на несколько таблиц
        SELECT x.* FROM a01 -> #3070 Не удается распознать 'x.*'
        SELECT * FROM a01, a02 INNER JOIN t01 ON t01code = a01clid -> #3082 Операция JOIN 'a01clid'
        SELECT foo(1) -> #3085 Неопределенная функция 'foo' в выражении.
        SELECT NZ(1) ; SELECT COALESCE(1, 2) ; SELECT REPLACE('a', 'b', 'c') ; SELECT zv_add(1, 2) ; SELECT load_extension('x') -> #3085
        SELECT a01last, COUNT(*) FROM a01 -> #3122 Попытка выполнить запрос, который не включает указанное выражение 'a01last'
        SELECT * FROM a01 GROUP BY a01last -> #3121
        SELECT a01last FROM a01 WHERE COUNT(*) > 1 -> #3096 Недопустимо использование статистической функции в предложении WHERE (COUNT(*)).
        SELECT a01last FROM a01 ORDER BY COUNT(*) -> #3097
        SELECT DISTINCT a01last FROM a01 ORDER BY a01clid -> #3093 Предложение ORDER BY (a01clid) конфликтует с DISTINCT.
        SELECT * FROM a01 WHERE a01clid = (SELECT a02clid, a02code FROM a02) ; SELECT * FROM a01 WHERE a01clid IN (SELECT * FROM a02) -> #3306
        SELECT (SELECT a01clid FROM a01) -> #3354
    )");
}

TEST_F(Mistake, InTypes) {
    Check(R"(
        a01clid = '1' ; a01last = 1 ; a01last IN (1, 2) ; a01clid BETWEEN 'a' AND 'b' ; a01clid IN (SELECT a02cval FROM a02) -> #3464
        a01last + 1 ; a01last * 2 ; a01clid = (SELECT SUM(a02cval) FROM a02) -> #3464
        a01clid \ 0 -> #11
        -- A pattern is read with the statement: also where no row comes to it, or a like statement has run.
        a01last LIKE '[а-' ; 1 = 2 AND a01last LIKE '[1' ; 1 = 2 AND a01last LIKE ('[') ; q = 1 AND a01last LIKE '[я-а]' -> #93
    )",
          "SELECT * FROM a01 WHERE ");
}

TEST_F(Mistake, InActions) {
    Check(R"(
        INSERT INTO a01 ; INSERT a01 VALUES (1) ; INSERT INTO a01 (a01clid) VALUES (9 ; INSERT INTO a01 (a01clid) VALUES ((9 -> #3134
        INSERT INTO a01 (a01clid) VALUES (9), (10) -> #3137
        INSERT INTO a01 (a01clid) VALUES (9); DELETE FROM a01 -> #3142
        INSERT INTO a01 (q) VALUES (9) ; loose INSERT INTO a01 (q) VALUES (9) -> #3127 Инструкция INSERT INTO содержит следующее неизвестное имя поля: 'q'.
        INSERT INTO b99 (q) VALUES (9) -> #3192 Не удается найти выходную таблицу 'b99'.
        INSERT INTO a01 (a01clid, a01last) VALUES (9) ; INSERT INTO a01 (a01clid) SELECT a02clid, a02code FROM a02 -> #3346
        INSERT INTO a01 (a01clid, a01last) VALUES (9, q) ; loose UPDATE a01 SET a01last = q -> #3061 Слишком мало параметров. Требуется 1.
        UPDATE a01 ; UPDATE a01 SET ; UPDATE a01 SET a01last -> #3144
        DELETE ; DELETE a01 -> #3130
        DELETE FROM a01 WHERE ; open DELETE FROM a01 WHERE -> #3145
        run SELECT * FROM a01 -> #3065
        open DELETE FROM a01 ; open INSERT INTO a01 (a01clid) VALUES (9) ; open UPDATE a01 SET a01last = 'x' -> #3219
        open SELECT * INTO q FROM a01 ; open DROP TABLE a01 ; open CREATE TABLE q (x INTEGER) -> #3219
        SELECT COUNT(*), MAX(a01last) FROM a01 -> 5|Сидорова
        SELECT * FROM q -> #3078
    )");
}

TEST_F(Mistake, InDefinitions) {
    Check(R"(
        CREATE TABLE a01 (x INTEGER) -> #3010 Таблица 'a01' уже существует.
        CREATE TABLE x1 ; CREATE TABLE x1 (x INTEGER ; CREATE TABLE x1 (x INTEGER DEFAULT 5) ; CREATE TABLE x1 (x COUNTER(1, 1)) -> #3290
        CREATE TABLE x1 (x) ; CREATE TABLE x1 (x DECIMAL) ; CREATE TABLE x1 (x INTEGER NOT NULL NOT NULL) -> #3292
        CREATE TABLE x1 (x INTEGER, X TEXT) -> #3191
        CREATE TABLE x1 (x TEXT(256)) ; CREATE TABLE x1 (x BINARY(511)) -> #3382 Слишком большой размер поля 'x'.
        CREATE TABLE x1 (x INTEGER PRIMARY KEY, y INTEGER PRIMARY KEY) -> #3283
        CREATE TABLE x1 (x INTEGER, CONSTRAINT c CHECK (x > 1)) ; CREATE TABLE x1 (x SHORT CONSTRAINT [a.b] UNIQUE) -> #3289
        CREATE TABLE x1 (x INTEGER, CONSTRAINT c UNIQUE (y)) -> #3381 Таблица 'x1' не содержит поле 'y'.
        CREATE INDEX i a01 (a01last) -> #3291
        ALTER TABLE b99 ADD COLUMN x INTEGER -> #3371
        ALTER TABLE a01 ADD COLUMN A01LAST TEXT(5) -> #3380 Поле 'A01LAST' уже существует в таблице 'a01'.
        DROP TABLE b99 -> #3376 Таблица 'b99' не существует.
        DROP INDEX i ON a01 -> #3372 Таблица 'a01' не содержит индекс 'i'.
    )");
}

// Texts nested without end are refused, wherever the nesting stands.
TEST_F(Mistake, DeepStatements) {
    const auto times = [](const char* text) { return QString::fromLatin1(text).repeated(30000); };
    for (const QString& statement : {
             u"SELECT "_s + times("(") + u'1' + times(")"),
             u"SELECT "_s + times("NOT ") + u'1',
             u"SELECT 1"_s + times("+1"),
             u"SELECT * FROM "_s + times("(SELECT * FROM ") + u"a01"_s + times(") AS q"),
             u"SELECT 1"_s + times(" UNION SELECT 1"),
             u"SELECT '%1'"_s.arg(QString(1'000'001, u'x')),
         })
        EXPECT_EQ(Result(statement).section(u' ', 0, 0), u"#3360"_s) << statement.left(60).toStdString();
}
