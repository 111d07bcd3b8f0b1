// The dialect's functions as one list, and their way into SQLite.

#include "platform/engine/functions/Call.h"

#include <QByteArray>
#include <QHash>

#include <array>

namespace engine::functions {

namespace {

void CallScalar(sqlite3_context* context, int count, sqlite3_value** values) {
    const auto* function = static_cast<const ScalarFunction*>(sqlite3_user_data(context));
    try {
        SetResult(context, function->call(Arguments(context, count, values)));
    } catch (...) { // no exception may pass through SQLite
        SetFailure(context);
    }
}

void Register(sqlite3* db, std::span<const ScalarFunction> functions) {
    for (const ScalarFunction& function : functions) {
        const QByteArray name = "zv_" + QByteArray(function.info.name).toLower();
        const int flags =
            SQLITE_UTF16 | SQLITE_DIRECTONLY | (function.deterministic ? SQLITE_DETERMINISTIC : 0);
        for (int count = function.info.minArguments; count <= function.info.maxArguments; ++count)
            CheckRegistered(sqlite3_create_function_v2(db, name.constData(), count, flags,
                                                       const_cast<ScalarFunction*>(&function), CallScalar,
                                                       nullptr, nullptr, nullptr));
    }
}

std::array<std::span<const ScalarFunction>, 3> DialectFunctions() {
    return {TextFunctions(), NumberFunctions(), DateFunctions()};
}

} // namespace

const FunctionInfo* FindFunction(QStringView name) {
    static const QHash<QString, const FunctionInfo*> byName = [] {
        QHash<QString, const FunctionInfo*> made;
        for (const auto functions : DialectFunctions()) {
            for (const ScalarFunction& function : functions)
                made.insert(QString::fromLatin1(function.info.name), &function.info);
        }
        return made;
    }();
    // LEFT$ and its like are the same functions.
    return byName.value((name.endsWith(u'$') ? name.chopped(1) : name).toString().toUpper());
}

void RegisterFunctions(sqlite3* db) {
    for (const auto functions : DialectFunctions())
        Register(db, functions);
    Register(db, OperatorFunctions());
    RegisterAggregates(db);
}

} // namespace engine::functions
