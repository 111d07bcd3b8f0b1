#pragma once

#include "platform/runtime/Failure.h"

#include <QStringView>

struct sqlite3;

namespace engine {

/// What was being done when SQLite failed: one code means different numbers.
enum class Doing { Open, Read, Write, Define, Copy };

/// The one table from SQLite's codes to the engine's failures. SQLite's own text never gets into it.
/// `path` is the file; `table` the one that a statement changes or a definition is about.
runtime::Failure FailureFrom(sqlite3* db, int code, Doing doing, const QString& path,
                             const QString& table = {});

/// There is no memory for what is to be done.
runtime::Failure MemoryFailure();

/// What a column was declared as beside its SQLite type; the name of the constraint that enforces it, behind
/// the column's name and a blank.
inline constexpr QStringView noteNoEmptyText = u"AllowZeroLength False";
inline constexpr QStringView noteRequired = u"Required";

} // namespace engine
