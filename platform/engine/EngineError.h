#pragma once

#include "platform/runtime/Failure.h"

namespace engine {

/// A failure of the engine: its number, under DAO's numbering, and its description, in which %1 and %2 stand
/// for arguments.
struct EngineError {
    int number;
    const char16_t* text;

    constexpr operator int() const { return number; }
};

// clang-format off: one a line
inline constexpr EngineError InvalidArgument{3001, u"Недопустимый аргумент."},
    TooManyTransactions{3003, u"Не удалось начать транзакцию; слишком много вложенных транзакций."},
    TableExists{3010, u"Таблица '%1' уже существует."}, NoCurrentRecord{3021, u"Текущая запись отсутствует."},
    DuplicateKey{
        3022, u"Изменения не были успешно внесены из-за повторяющихся значений в индексе, ключевых полях или "
              u"связях. Измените данные в поле или полях, содержащих повторяющиеся значения, удалите индекс "
              u"или переопределите его, чтобы разрешить повторяющиеся значения, и повторите попытку."},
    FileNotFound{3024, u"Не удается найти файл '%1'."}, DiskFull{3026, u"Недостаточно места на диске."},
    ReadOnly{3027, u"Обновление невозможно. База данных или объект доступны только для чтения."},
    PasswordNeeded{3031, u"Недопустимый пароль."},
    NoTransaction{3034, u"Попытка завершить или отменить транзакцию, которая не была начата."},
    ResourcesExceeded{3035, u"Превышены ресурсы системы."},
    OlderFormat{3041, u"Невозможно открыть базу данных, созданную в предыдущей версии приложения."},
    DiskOrNetworkFailure{3043, u"Ошибка диска или сети."},
    InvalidPath{3044, u"'%1' не является допустимым путем. Убедитесь, что имя пути указано правильно и "
                      u"установлено подключение к серверу, на котором находится файл."},
    FileInUse{3045, u"Не удается использовать '%1'; файл уже используется."},
    CannotOpenDatabase{3049, u"Не удается открыть базу данных '%1'. Возможно, она не распознается "
                             u"приложением или файл поврежден."},
    CannotOpenFile{3051, u"Не удается открыть файл '%1'. Он уже открыт другим пользователем в монопольном "
                         u"режиме либо отсутствует разрешение на просмотр его данных."},
    NullInKey{3058, u"Индекс или ключ не может содержать пустое значение (Null)."},
    TooFewParameters{3061, u"Слишком мало параметров. Требуется %1."},
    CannotExecuteSelect{3065, u"Невозможно выполнить запрос на выборку."},
    UnknownNameInFind{3070, u"Не удается распознать '%1' как допустимое имя поля или выражение."},
    ExpressionTooComplex{3071, u"Выражение введено неправильно или слишком сложно для вычисления."},
    NotUpdatable{3073, u"В операции должен использоваться обновляемый запрос."},
    SyntaxInExpression{3075, u"%1 в выражении запроса '%2'."}, SyntaxInCriteria{3077, u"%1 в выражении."},
    UnknownTable{3078, u"Не удается найти входную таблицу или запрос '%1'. Убедитесь, что таблица или запрос "
                       u"существует и что имя указано правильно."},
    AmbiguousName{3079, u"Указанное поле '%1' может ссылаться на несколько таблиц, перечисленных в "
                        u"предложении FROM инструкции SQL."},
    JoinFieldNotIncluded{
        3082, u"Операция JOIN '%1' ссылается на поле, не включенное в одну из объединяемых таблиц."},
    UndefinedFunction{3085, u"Неопределенная функция '%1' в выражении."},
    OrderByConflictsWithDistinct{3093, u"Предложение ORDER BY (%1) конфликтует с DISTINCT."},
    AggregateInExpression{3095, u"Недопустимо использование статистической функции в выражении (%1)."},
    AggregateInWhere{3096, u"Недопустимо использование статистической функции в предложении WHERE (%1)."},
    AggregateInOrderBy{3097,
                       u"Недопустимо использование статистической функции в предложении ORDER BY (%1)."},
    AggregateInGroupBy{3098,
                       u"Недопустимо использование статистической функции в предложении GROUP BY (%1)."},
    AggregateInJoin{3099, u"Недопустимо использование статистической функции в операции JOIN (%1)."},
    CannotGroupAsterisk{3121, u"Невозможно сгруппировать поля, выбранные с помощью '*'."},
    NotInAggregate{3122, u"Попытка выполнить запрос, который не включает указанное выражение '%1' как часть "
                         u"статистической функции."},
    UnknownInsertColumn{3127, u"Инструкция INSERT INTO содержит следующее неизвестное имя поля: '%1'. "
                              u"Убедитесь, что имя введено правильно, и повторите операцию."},
    SyntaxInDelete{3130, u"Ошибка синтаксиса в инструкции DELETE."},
    SyntaxInFrom{3131, u"Ошибка синтаксиса в предложении FROM."},
    SyntaxInGroupBy{3132, u"Ошибка синтаксиса в предложении GROUP BY."},
    SyntaxInHaving{3133, u"Ошибка синтаксиса в предложении HAVING."},
    SyntaxInInsert{3134, u"Ошибка синтаксиса в инструкции INSERT INTO."},
    SyntaxInJoin{3135, u"Ошибка синтаксиса в операции JOIN."},
    MissingSemicolon{3137, u"Отсутствует точка с запятой (;) в конце инструкции SQL."},
    SyntaxInOrderBy{3138, u"Ошибка синтаксиса в предложении ORDER BY."},
    SyntaxInParameters{3139, u"Ошибка синтаксиса в предложении PARAMETER."},
    ReservedWord{3141, u"Инструкция SELECT содержит зарезервированное слово или имя аргумента, которое "
                       u"введено неправильно или отсутствует, либо содержит ошибку пунктуации."},
    TextBehindEnd{3142, u"Обнаружены символы за пределами инструкции SQL."},
    SyntaxInTransform{3143, u"Ошибка синтаксиса в инструкции TRANSFORM."},
    SyntaxInUpdate{3144, u"Ошибка синтаксиса в инструкции UPDATE."},
    SyntaxInWhere{3145, u"Ошибка синтаксиса в предложении WHERE."},
    ValueTooLong{
        3163,
        u"Размер поля слишком мал для добавляемых данных. Попробуйте вставить или добавить меньше данных."},
    RecordDeleted{3167, u"Запись удалена."},
    ColumnDefinedTwice{3191, u"Невозможно определить поле более одного раза."},
    UnknownTargetTable{3192, u"Не удается найти выходную таблицу '%1'."},
    DatabaseExists{3204, u"База данных уже существует."},
    TableInUse{3211, u"Невозможно заблокировать таблицу '%1', так как она используется другим пользователем "
                     u"или процессом."},
    RowLocked{3218, u"Обновление невозможно; запись заблокирована."},
    InvalidOperation{3219, u"Недопустимая операция."},
    ItemNotFound{3265, u"Элемент не найден в данном семействе."},
    ColumnInIndex{3280,
                  u"Невозможно удалить поле, которое входит в индекс или необходимо для работы базы данных."},
    PrimaryKeyExists{3283, u"Ключевое поле уже существует."},
    SyntaxInConstraint{3289, u"Ошибка синтаксиса в предложении CONSTRAINT."},
    SyntaxInCreateTable{3290, u"Ошибка синтаксиса в инструкции CREATE TABLE."},
    SyntaxInCreateIndex{3291, u"Ошибка синтаксиса в инструкции CREATE INDEX."},
    SyntaxInColumnDefinition{3292, u"Ошибка синтаксиса в определении поля."},
    SyntaxInAlterTable{3293, u"Ошибка синтаксиса в инструкции ALTER TABLE."},
    SyntaxInDrop{3295, u"Ошибка синтаксиса в инструкции DROP TABLE или DROP INDEX."},
    SubqueryColumns{3306, u"Подчиненный запрос без EXISTS должен возвращать одно поле."},
    UnionColumnsDiffer{3307, u"Число столбцов в запросах на объединение не совпадает."},
    InvalidTop{3308, u"Недопустимый аргумент TOP в запросе на выборку."},
    NullNotAllowed{3314, u"Поле '%1' не может содержать значение Null, так как свойство Required этого поля "
                         u"имеет значение True. Введите значение в это поле."},
    EmptyTextNotAllowed{3315, u"Поле '%1' не может быть пустой строкой."},
    SyntaxInUnion{3319, u"Ошибка синтаксиса в запросе на объединение."},
    UnrecognisedFormat{3343, u"Нераспознаваемый формат базы данных '%1'."},
    InsertColumnsDiffer{3346, u"Число значений запроса и число полей назначения не совпадают."},
    NumberOutOfRange{3349, u"Переполнение числового поля."},
    SubqueryRows{3354, u"Подчиненный запрос без EXISTS должен возвращать не более одной записи."},
    QueryTooComplex{3360, u"Запрос слишком сложен."},
    TableOrConstraintNotFound{3371, u"Не удается найти таблицу или ограничение."},
    IndexNotFound{3372, u"Таблица '%1' не содержит индекс '%2'."},
    IndexExistsInTable{3375, u"Таблица '%1' уже содержит индекс с именем '%2'."},
    TableNotFound{3376, u"Таблица '%1' не существует."},
    ColumnExists{3380, u"Поле '%2' уже существует в таблице '%1'."},
    ColumnNotFound{3381, u"Таблица '%1' не содержит поле '%2'."},
    ColumnTooWide{3382, u"Слишком большой размер поля '%1'."},
    ObjectClosed{3420, u"Объект неправильно задан или больше не существует."},
    TypeMismatchInCriteria{3464, u"Несоответствие типов данных в выражении условия отбора."};
// clang-format on

/// The description with its arguments.
QString EngineText(const EngineError& error, const QString& first = {}, const QString& second = {});

[[noreturn]] void RaiseEngine(const EngineError& error, const QString& first = {},
                              const QString& second = {});

/// A commit that is in the file although the disk failed behind it (number 3043): everybody reads it, only a
/// power failure could still take it back, until the next commit. So whoever tries again must not begin anew.
class UnsyncedCommit final : public runtime::Failure {
public:
    UnsyncedCommit();
};

} // namespace engine
