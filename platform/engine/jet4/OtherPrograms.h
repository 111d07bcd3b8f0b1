#pragma once

#include <QString>

namespace engine::jet4 {

/// Failure 3045 if another program has the database open: it holds a lock on the file, or on the file of
/// users
/// (`Book.ldb`) beside it. What it has not written yet would be missing in a copy. A file of users that
/// nobody holds was left by a crash and says nothing.
void CheckNotInUse(const QString& path);

} // namespace engine::jet4
