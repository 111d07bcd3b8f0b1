#pragma once

#include "platform/runtime/Disk.h"

#include <QString>

namespace engine {

/// The names under which a replaced file is kept, in order: `Book.jet4.mdb`, `Book.jet4-2.mdb` and so on.
/// Place counts from 1. Folder and name as `path` gives them.
QString KeptName(const QString& path, int place);

/// The first of these names that no file bears; a name of the file itself, left by a replacement that was cut
/// off, counts as free.
QString FreeKeptName(const QString& path);

/// Puts a finished file in the place of the one at `path`, which is kept under a free name beside it; returns
/// that path. At every moment the old file stands whole under one of its two names, and no other than the old
/// or the finished file stands at `path`. Journals that others have left at that name go first. Failures
/// 3051, 3026, 3043: the old file is at its place, the finished one still where it was. Only if taking back a
/// half-done change fails too is the old file found under its second name.
QString ReplaceKeeping(runtime::Disk& disk, const QString& finished, const QString& path);

} // namespace engine
