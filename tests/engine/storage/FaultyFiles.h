#pragma once

#include <sqlite3.h>

#include <functional>

namespace test {

/// A layer under SQLite, by SQLite's own mechanism, that lets calls to the file system fail. While it lives
/// it is the default for new connections.
class FaultyFiles {
public:
    enum class Call { Open, Read, Write, Truncate, Sync, Delete };

    /// Asked before each call; a code other than SQLITE_OK is its result, and the call is not made.
    explicit FaultyFiles(std::function<int(Call)> judge);
    ~FaultyFiles();
    FaultyFiles(const FaultyFiles&) = delete;
    FaultyFiles& operator=(const FaultyFiles&) = delete;
};

} // namespace test
