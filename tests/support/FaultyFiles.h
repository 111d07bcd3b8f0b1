#pragma once

#include <sqlite3.h>

#include <functional>

namespace test {

/// A layer under SQLite, by SQLite's own mechanism, and under the program's own disk, that lets calls to the
/// file system fail, or the power of the machine. While it lives it is the default for new connections.
class FaultyFiles {
public:
    enum class Call {
        Open,
        Read,
        Write,
        Truncate,
        Sync,
        Delete,
        SyncFolder,
        Rename,
        Link
    }; ///< the last two are not judged here

    /// What of the writes that no sync has followed is on the disk when the power comes back.
    enum class Remains {
        Nothing,
        FirstSectors, ///< the first 512 bytes of each
        EverySecond,
    };

    /// The judge's answer that cuts the power: with this call nothing reaches the disk any more, and every
    /// call fails.
    static constexpr int PowerOff = -1;

    /// Asked before each call; a code other than SQLITE_OK is its result, and the call is not made.
    /// SyncFolder comes behind a removal that has been made.
    explicit FaultyFiles(std::function<int(Call)> judge);
    ~FaultyFiles();
    FaultyFiles(const FaultyFiles&) = delete;
    FaultyFiles& operator=(const FaultyFiles&) = delete;

    /// Behind a power failure: gives each file the bytes that the disk has kept, or takes away one that had
    /// not reached it. No connection may be open.
    static void PowerOn(Remains remains);
};

} // namespace test
