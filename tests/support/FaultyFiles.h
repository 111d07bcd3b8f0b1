#pragma once

#include <sqlite3.h>

#include <functional>

namespace test {

/// A layer under SQLite, by SQLite's own mechanism, and under the program's own disk, that lets calls to the
/// file system fail, or the power of the machine. While it lives it is the default for new connections.
class FaultyFiles {
public:
    enum class Call { Open, Read, Write, Truncate, Sync, Delete, SyncFolder };

    /// The judge's answers that end the world with this call: nothing reaches the files any more, and every
    /// call fails. Of a killed program everything stays that it has written.
    static constexpr int PowerOff = -1;
    static constexpr int Killed = -2;

    /// Asked before each call; a code other than SQLITE_OK is its result, and the call is not made.
    /// SyncFolder comes behind a removal that is made in any case. Names are given under Delete here.
    explicit FaultyFiles(std::function<int(Call)> judge);
    ~FaultyFiles();
    FaultyFiles(const FaultyFiles&) = delete;
    FaultyFiles& operator=(const FaultyFiles&) = delete;

    /// Behind a power failure: takes away what no sync has followed. No connection may be open.
    static void PowerOn();
};

} // namespace test
