#include "platform/engine/EngineError.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace engine {

namespace {

struct Entry {
    int number;
    const char16_t* text;
};

// In ascending order of the numbers.
constexpr auto entries = std::to_array<Entry>({
    {InvalidArgument, u"Недопустимый аргумент."},
    {TooManyTransactions, u"Не удалось начать транзакцию; слишком много вложенных транзакций."},
    {TableExists, u"Таблица '%1' уже существует."},
    {NoCurrentRecord, u"Текущая запись отсутствует."},
    {DuplicateKey,
     u"Изменения не были успешно внесены из-за повторяющихся значений в индексе, ключевых полях или связях. "
     u"Измените данные в поле или полях, содержащих повторяющиеся значения, удалите индекс или "
     u"переопределите его, чтобы разрешить повторяющиеся значения, и повторите попытку."},
    {FileNotFound, u"Не удается найти файл '%1'."},
    {DiskFull, u"Недостаточно места на диске."},
    {ReadOnly, u"Обновление невозможно. База данных или объект доступны только для чтения."},
    {PasswordNeeded, u"Недопустимый пароль."},
    {NoTransaction, u"Попытка завершить или отменить транзакцию, которая не была начата."},
    {ResourcesExceeded, u"Превышены ресурсы системы."},
    {OlderFormat, u"Невозможно открыть базу данных, созданную в предыдущей версии приложения."},
    {DiskOrNetworkFailure, u"Ошибка диска или сети."},
    {InvalidPath, u"'%1' не является допустимым путем. Убедитесь, что имя пути указано правильно и "
                  u"установлено подключение к серверу, на котором находится файл."},
    {FileInUse, u"Не удается использовать '%1'; файл уже используется."},
    {CannotOpenDatabase,
     u"Не удается открыть базу данных '%1'. Возможно, она не распознается приложением или файл поврежден."},
    {CannotOpenFile, u"Не удается открыть файл '%1'. Он уже открыт другим пользователем в монопольном режиме "
                     u"либо отсутствует разрешение на просмотр его данных."},
    {NullInKey, u"Индекс или ключ не может содержать пустое значение (Null)."},
    {TooFewParameters, u"Слишком мало параметров. Требуется %1."},
    {CannotExecuteSelect, u"Невозможно выполнить запрос на выборку."},
    {UnknownNameInFind, u"Не удается распознать '%1' как допустимое имя поля или выражение."},
    {ExpressionTooComplex, u"Выражение введено неправильно или слишком сложно для вычисления."},
    {NotUpdatable, u"В операции должен использоваться обновляемый запрос."},
    {SyntaxInExpression, u"%1 в выражении запроса '%2'."},
    {SyntaxInCriteria, u"%1 в выражении."},
    {UnknownTable, u"Не удается найти входную таблицу или запрос '%1'. Убедитесь, что таблица или запрос "
                   u"существует и что имя указано правильно."},
    {AmbiguousName, u"Указанное поле '%1' может ссылаться на несколько таблиц, перечисленных в предложении "
                    u"FROM инструкции SQL."},
    {JoinFieldNotIncluded,
     u"Операция JOIN '%1' ссылается на поле, не включенное в одну из объединяемых таблиц."},
    {UndefinedFunction, u"Неопределенная функция '%1' в выражении."},
    {OrderByConflictsWithDistinct, u"Предложение ORDER BY (%1) конфликтует с DISTINCT."},
    {AggregateInExpression, u"Недопустимо использование статистической функции в выражении (%1)."},
    {AggregateInWhere, u"Недопустимо использование статистической функции в предложении WHERE (%1)."},
    {AggregateInOrderBy, u"Недопустимо использование статистической функции в предложении ORDER BY (%1)."},
    {AggregateInGroupBy, u"Недопустимо использование статистической функции в предложении GROUP BY (%1)."},
    {AggregateInJoin, u"Недопустимо использование статистической функции в операции JOIN (%1)."},
    {CannotGroupAsterisk, u"Невозможно сгруппировать поля, выбранные с помощью '*'."},
    {NotInAggregate, u"Попытка выполнить запрос, который не включает указанное выражение '%1' как часть "
                     u"статистической функции."},
    {UnknownInsertColumn, u"Инструкция INSERT INTO содержит следующее неизвестное имя поля: '%1'. Убедитесь, "
                          u"что имя введено правильно, и повторите операцию."},
    {SyntaxInDelete, u"Ошибка синтаксиса в инструкции DELETE."},
    {SyntaxInFrom, u"Ошибка синтаксиса в предложении FROM."},
    {SyntaxInGroupBy, u"Ошибка синтаксиса в предложении GROUP BY."},
    {SyntaxInHaving, u"Ошибка синтаксиса в предложении HAVING."},
    {SyntaxInInsert, u"Ошибка синтаксиса в инструкции INSERT INTO."},
    {SyntaxInJoin, u"Ошибка синтаксиса в операции JOIN."},
    {MissingSemicolon, u"Отсутствует точка с запятой (;) в конце инструкции SQL."},
    {SyntaxInOrderBy, u"Ошибка синтаксиса в предложении ORDER BY."},
    {SyntaxInParameters, u"Ошибка синтаксиса в предложении PARAMETER."},
    {ReservedWord, u"Инструкция SELECT содержит зарезервированное слово или имя аргумента, которое введено "
                   u"неправильно или отсутствует, либо содержит ошибку пунктуации."},
    {TextBehindEnd, u"Обнаружены символы за пределами инструкции SQL."},
    {SyntaxInTransform, u"Ошибка синтаксиса в инструкции TRANSFORM."},
    {SyntaxInUpdate, u"Ошибка синтаксиса в инструкции UPDATE."},
    {SyntaxInWhere, u"Ошибка синтаксиса в предложении WHERE."},
    {ValueTooLong,
     u"Размер поля слишком мал для добавляемых данных. Попробуйте вставить или добавить меньше данных."},
    {RecordDeleted, u"Запись удалена."},
    {ColumnDefinedTwice, u"Невозможно определить поле более одного раза."},
    {UnknownTargetTable, u"Не удается найти выходную таблицу '%1'."},
    {DatabaseExists, u"База данных уже существует."},
    {TableInUse,
     u"Невозможно заблокировать таблицу '%1', так как она используется другим пользователем или процессом."},
    {RowLocked, u"Обновление невозможно; запись заблокирована."},
    {InvalidOperation, u"Недопустимая операция."},
    {ItemNotFound, u"Элемент не найден в данном семействе."},
    {ColumnInIndex,
     u"Невозможно удалить поле, которое входит в индекс или необходимо для работы базы данных."},
    {PrimaryKeyExists, u"Ключевое поле уже существует."},
    {SyntaxInConstraint, u"Ошибка синтаксиса в предложении CONSTRAINT."},
    {SyntaxInCreateTable, u"Ошибка синтаксиса в инструкции CREATE TABLE."},
    {SyntaxInCreateIndex, u"Ошибка синтаксиса в инструкции CREATE INDEX."},
    {SyntaxInColumnDefinition, u"Ошибка синтаксиса в определении поля."},
    {SyntaxInAlterTable, u"Ошибка синтаксиса в инструкции ALTER TABLE."},
    {SyntaxInDrop, u"Ошибка синтаксиса в инструкции DROP TABLE или DROP INDEX."},
    {SubqueryColumns, u"Подчиненный запрос без EXISTS должен возвращать одно поле."},
    {UnionColumnsDiffer, u"Число столбцов в запросах на объединение не совпадает."},
    {InvalidTop, u"Недопустимый аргумент TOP в запросе на выборку."},
    {NullNotAllowed, u"Поле '%1' не может содержать значение Null, так как свойство Required этого поля "
                     u"имеет значение True. Введите значение в это поле."},
    {EmptyTextNotAllowed, u"Поле '%1' не может быть пустой строкой."},
    {SyntaxInUnion, u"Ошибка синтаксиса в запросе на объединение."},
    {UnrecognisedFormat, u"Нераспознаваемый формат базы данных '%1'."},
    {InsertColumnsDiffer, u"Число значений запроса и число полей назначения не совпадают."},
    {NumberOutOfRange, u"Переполнение числового поля."},
    {SubqueryRows, u"Подчиненный запрос без EXISTS должен возвращать не более одной записи."},
    {QueryTooComplex, u"Запрос слишком сложен."},
    {TableOrConstraintNotFound, u"Не удается найти таблицу или ограничение."},
    {IndexNotFound, u"Таблица '%1' не содержит индекс '%2'."},
    {IndexExistsInTable, u"Таблица '%1' уже содержит индекс с именем '%2'."},
    {TableNotFound, u"Таблица '%1' не существует."},
    {ColumnExists, u"Поле '%2' уже существует в таблице '%1'."},
    {ColumnNotFound, u"Таблица '%1' не содержит поле '%2'."},
    {ColumnTooWide, u"Слишком большой размер поля '%1'."},
    {ObjectClosed, u"Объект неправильно задан или больше не существует."},
    {TypeMismatchInCriteria, u"Несоответствие типов данных в выражении условия отбора."},
});

static_assert(std::ranges::is_sorted(entries, {}, &Entry::number));

} // namespace

QString EngineText(int number, const QString& first, const QString& second) {
    const auto entry = std::ranges::lower_bound(entries, number, {}, &Entry::number);
    if (entry == entries.end() || entry->number != number)
        return runtime::RuntimeText(number);
    // Not QString::arg: a name may itself hold a place mark, and a text without marks is no mistake.
    return QString::fromUtf16(entry->text).split(u"%1"_s).replaceInStrings(u"%2"_s, second).join(first);
}

void RaiseEngine(int number, const QString& first, const QString& second) {
    throw runtime::Failure(number, EngineText(number, first, second));
}

UnsyncedCommit::UnsyncedCommit()
    : Failure(
          DiskOrNetworkFailure,
          EngineText(DiskOrNetworkFailure) +
              QStringLiteral(" Изменения внесены в файл, но диск не подтвердил, что они сохранятся при сбое "
                             "питания.")) {
}

} // namespace engine
