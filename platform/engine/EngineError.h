#pragma once

#include "platform/runtime/Failure.h"

namespace engine {

/// The engine's numbers, under DAO's numbering. The descriptions stand in EngineError.cpp, one table.
enum EngineError : int {
    InvalidArgument = 3001,
    TooManyTransactions = 3003,
    TableExists = 3010,
    NoCurrentRecord = 3021,
    DuplicateKey = 3022,
    FileNotFound = 3024,
    DiskFull = 3026,
    ReadOnly = 3027,
    PasswordNeeded = 3031,
    NoTransaction = 3034,
    ResourcesExceeded = 3035,
    OlderFormat = 3041,
    DiskOrNetworkFailure = 3043,
    InvalidPath = 3044,
    FileInUse = 3045,
    CannotOpenDatabase = 3049,
    CannotOpenFile = 3051,
    NullInKey = 3058,
    TooFewParameters = 3061,
    CannotExecuteSelect = 3065,
    UnknownNameInFind = 3070,
    ExpressionTooComplex = 3071,
    NotUpdatable = 3073,
    SyntaxInExpression = 3075,
    SyntaxInCriteria = 3077,
    UnknownTable = 3078,
    AmbiguousName = 3079,
    JoinFieldNotIncluded = 3082,
    UndefinedFunction = 3085,
    OrderByConflictsWithDistinct = 3093,
    AggregateInExpression = 3095,
    AggregateInWhere = 3096,
    AggregateInOrderBy = 3097,
    AggregateInGroupBy = 3098,
    AggregateInJoin = 3099,
    CannotGroupAsterisk = 3121,
    NotInAggregate = 3122,
    UnknownInsertColumn = 3127,
    SyntaxInDelete = 3130,
    SyntaxInFrom = 3131,
    SyntaxInGroupBy = 3132,
    SyntaxInHaving = 3133,
    SyntaxInInsert = 3134,
    SyntaxInJoin = 3135,
    MissingSemicolon = 3137,
    SyntaxInOrderBy = 3138,
    SyntaxInParameters = 3139,
    ReservedWord = 3141,
    TextBehindEnd = 3142,
    SyntaxInTransform = 3143,
    SyntaxInUpdate = 3144,
    SyntaxInWhere = 3145,
    ValueTooLong = 3163,
    RecordDeleted = 3167,
    ColumnDefinedTwice = 3191,
    UnknownTargetTable = 3192,
    DatabaseExists = 3204,
    TableInUse = 3211,
    RowLocked = 3218,
    InvalidOperation = 3219,
    ItemNotFound = 3265,
    ColumnInIndex = 3280,
    PrimaryKeyExists = 3283,
    SyntaxInConstraint = 3289,
    SyntaxInCreateTable = 3290,
    SyntaxInCreateIndex = 3291,
    SyntaxInColumnDefinition = 3292,
    SyntaxInAlterTable = 3293,
    SyntaxInDrop = 3295,
    SubqueryColumns = 3306,
    UnionColumnsDiffer = 3307,
    InvalidTop = 3308,
    NullNotAllowed = 3314,
    EmptyTextNotAllowed = 3315,
    SyntaxInUnion = 3319,
    UnrecognisedFormat = 3343,
    InsertColumnsDiffer = 3346,
    NumberOutOfRange = 3349,
    SubqueryRows = 3354,
    QueryTooComplex = 3360,
    TableOrConstraintNotFound = 3371,
    IndexNotFound = 3372,
    IndexExistsInTable = 3375,
    TableNotFound = 3376,
    ColumnExists = 3380,
    ColumnNotFound = 3381,
    ColumnTooWide = 3382,
    ObjectClosed = 3420,
    TypeMismatchInCriteria = 3464,
};

/// The description of an engine number, %1 and %2 replaced by the arguments.
QString EngineText(int number, const QString& first = {}, const QString& second = {});

/// Throws the failure of that number.
[[noreturn]] void RaiseEngine(int number, const QString& first = {}, const QString& second = {});

/// A commit that is in the file although the disk failed behind it (number 3043): everybody reads it, only a
/// power failure could still take it back, until the next commit. So whoever tries again must not begin anew.
class UnsyncedCommit final : public runtime::Failure {
public:
    UnsyncedCommit();
};

} // namespace engine
