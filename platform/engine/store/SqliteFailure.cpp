#include "platform/engine/store/SqliteFailure.h"

#include "platform/engine/EngineError.h"

#include <QStringView>
#include <sqlite3.h>

namespace engine {

namespace {

constexpr int cancelledByUser = 32001;

runtime::Failure Engine(const EngineError& error, const QString& first = {}, const QString& second = {}) {
    return {error, EngineText(error, first, second)};
}

// The constraints of our tables are named after the column and what it was declared as.
runtime::Failure FromCheck(QStringView name, const QString& table) {
    const auto field = [&](QStringView note) {
        return table + u'.' + name.chopped(note.size() + 1).toString();
    };
    if (name.endsWith(noteNoEmptyText))
        return Engine(EmptyTextNotAllowed, field(noteNoEmptyText));
    if (name.endsWith(noteRequired))
        return Engine(NullNotAllowed, field(noteRequired));
    if (name.endsWith(u')') || name.endsWith(u" GUID")) // "column TEXT(50)"
        return Engine(ValueTooLong);
    return Engine(NumberOutOfRange);
}

runtime::Failure FromConstraint(int code, const QString& message, const QString& table) {
    const qsizetype colon = message.indexOf(QLatin1String(": "));
    const QString subject = colon < 0 ? QString() : message.mid(colon + 2);
    switch (code) {
    case SQLITE_CONSTRAINT_CHECK:
        return FromCheck(subject, table);
    case SQLITE_CONSTRAINT_NOTNULL:
        return Engine(NullNotAllowed, subject);
    case SQLITE_CONSTRAINT_DATATYPE:
        return Engine(TypeMismatchInCriteria);
    default:
        return Engine(DuplicateKey);
    }
}

// SQLite refuses with this code what is wrong with a text or with a value; the translator has ruled out most
// of it.
runtime::Failure FromError(const QString& message, Doing doing, const QString& table) {
    if (message.contains(QLatin1String("integer overflow")))
        return {runtime::Overflow, runtime::RuntimeText(runtime::Overflow)};
    if (doing == Doing::Define && message.contains(QLatin1String("already"))) // of a kind that nobody sees
        return Engine(TableExists, table);
    if (doing == Doing::Define)
        return Engine(SyntaxInCreateTable);
    for (const char* limit : {"too many", "too large", "overflow", "too big", "at most"})
        if (message.contains(QLatin1String(limit)))
            return Engine(QueryTooComplex);
    return Engine(ExpressionTooComplex);
}

runtime::Failure FromBusy(Doing doing, const QString& path, const QString& table) {
    switch (doing) {
    case Doing::Write:
    case Doing::Copy:
        return Engine(RowLocked);
    case Doing::Define:
        return Engine(TableInUse, table);
    default:
        return Engine(FileInUse, path);
    }
}

} // namespace

runtime::Failure FailureFrom(sqlite3* db, int code, Doing doing, const QString& path, const QString& table) {
    const auto message = [db] { return QString::fromUtf8(sqlite3_errmsg(db)); };
    switch (code & 0xff) {
    case SQLITE_ERROR:
        if (doing == Doing::Open) // of a newer kind, or it needs what no book of ours does
            return Engine(CannotOpenDatabase, path);
        return FromError(message(), doing, table);
    case SQLITE_CONSTRAINT:
        if (doing == Doing::Copy) // into a table that is made for the rows
            return Engine(CannotOpenDatabase, path);
        return FromConstraint(code, message(), table);
    case SQLITE_MISMATCH:
        return Engine(TypeMismatchInCriteria);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
        return FromBusy(doing, path, table);
    case SQLITE_READONLY:
        if (code == SQLITE_READONLY_DBMOVED)
            return Engine(FileNotFound, path);
        if (doing == Doing::Open)
            return Engine(CannotOpenFile, path);
        return doing == Doing::Write || doing == Doing::Copy ? Engine(NotUpdatable) : Engine(ReadOnly);
    case SQLITE_FULL:
        return Engine(DiskFull);
    case SQLITE_NOMEM:
        return MemoryFailure();
    case SQLITE_INTERRUPT:
        return {cancelledByUser, runtime::RuntimeText(cancelledByUser)};
    case SQLITE_TOOBIG:
        return Engine(QueryTooComplex);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
        return Engine(CannotOpenDatabase, path);
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return Engine(CannotOpenFile, path);
    case SQLITE_SCHEMA:
        return Engine(TableInUse, table);
    default: // I/O errors, and what only a broken disk or a broken library can cause
        return Engine(DiskOrNetworkFailure);
    }
}

runtime::Failure MemoryFailure() {
    return {runtime::OutOfMemory, runtime::RuntimeText(runtime::OutOfMemory)};
}

} // namespace engine
