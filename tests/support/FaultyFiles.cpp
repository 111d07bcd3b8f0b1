#include "tests/support/FaultyFiles.h"

#include "platform/runtime/Disk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace test {

namespace {

constexpr std::size_t sectorSize = 512;

std::function<int(FaultyFiles::Call)> judgeOfCalls;
sqlite3_vfs* realLayer = nullptr;
sqlite3_vfs faultyLayer;
bool powerIsOff = false;

/// A change that the disk may not have taken yet; without bytes a change of the size.
struct Change {
    std::size_t at = 0;
    std::string bytes;
};

/// What the disk holds of a file, and what it has been told since.
struct OnDisk {
    bool exists = false;
    bool removed = false; ///< but the folder has not been given to the disk: it may come back
    std::string bytes;
    std::vector<Change> changes;
};

std::map<std::string, OnDisk> disk;

/// A file that has been renamed while its folder has not been given to the disk.
struct Renaming {
    std::string from;
    std::string to;
    OnDisk renamed;
    OnDisk replaced;
};

std::vector<Renaming> renamings;

void Apply(const Change& change, std::string& bytes) {
    if (change.bytes.empty()) {
        bytes.resize(change.at);
        return;
    }
    bytes.resize(std::max(bytes.size(), change.at + change.bytes.size()));
    bytes.replace(change.at, change.bytes.size(), change.bytes);
}

void Sync(OnDisk& file) {
    for (const Change& change : file.changes)
        Apply(change, file.bytes);
    file.changes.clear();
    file.exists = true;
    file.removed = false;
}

int Judge(FaultyFiles::Call call) {
    if (!powerIsOff && judgeOfCalls) {
        const int code = judgeOfCalls(call);
        if (code != FaultyFiles::PowerOff)
            return code;
        powerIsOff = true;
    }
    return powerIsOff ? SQLITE_IOERR : SQLITE_OK;
}

/// Our file; SQLite gives the room for it, with the real one right behind.
struct File : sqlite3_file {
    OnDisk* onDisk; ///< null for a nameless one
    sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_file* Real(sqlite3_file* file) {
    return static_cast<File*>(file)->Real();
}

/// A method of the real file.
template <auto Method, class... Arguments>
int PassOn(sqlite3_file* file, Arguments... arguments) {
    return (Real(file)->pMethods->*Method)(Real(file), arguments...);
}

void Note(sqlite3_file* file, sqlite3_int64 at, const void* from, int size) {
    if (OnDisk* onDisk = static_cast<File*>(file)->onDisk)
        onDisk->changes.push_back(
            {static_cast<std::size_t>(at),
             std::string(static_cast<const char*>(from), static_cast<std::size_t>(size))});
}

using Call = FaultyFiles::Call;
using Methods = sqlite3_io_methods;

int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 at) {
    const int code = Judge(Call::Read);
    return code != SQLITE_OK ? code : PassOn<&Methods::xRead>(file, to, size, at);
}
int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
    const int code = Judge(Call::Write);
    if (code != SQLITE_OK)
        return code;
    Note(file, at, from, size);
    return PassOn<&Methods::xWrite>(file, from, size, at);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    const int code = Judge(Call::Truncate);
    if (code != SQLITE_OK)
        return code;
    Note(file, size, "", 0);
    return PassOn<&Methods::xTruncate>(file, size);
}
// The wait for the real disk is spared: what it would hold is known.
int Sync(sqlite3_file* file, int) {
    const int code = Judge(Call::Sync);
    if (OnDisk* onDisk = static_cast<File*>(file)->onDisk; onDisk && code == SQLITE_OK)
        Sync(*onDisk);
    return code;
}

const Methods methods = [] {
    Methods own = {};
    own.iVersion = 1;
    own.xClose = PassOn<&Methods::xClose>;
    own.xRead = Read;
    own.xWrite = Write;
    own.xTruncate = Truncate;
    own.xSync = Sync;
    own.xFileSize = PassOn<&Methods::xFileSize, sqlite3_int64*>;
    own.xLock = PassOn<&Methods::xLock, int>;
    own.xUnlock = PassOn<&Methods::xUnlock, int>;
    own.xCheckReservedLock = PassOn<&Methods::xCheckReservedLock, int*>;
    own.xFileControl = PassOn<&Methods::xFileControl, int, void*>;
    own.xSectorSize = PassOn<&Methods::xSectorSize>;
    own.xDeviceCharacteristics = PassOn<&Methods::xDeviceCharacteristics>;
    return own;
}();

/// A file that was there before its first opening counts as safe on the disk.
OnDisk& FindOnDisk(const char* name) {
    const auto [place, isNew] = disk.try_emplace(name);
    if (isNew) {
        std::ifstream file(name, std::ios::binary);
        place->second.exists = file.is_open();
        place->second.bytes.assign(std::istreambuf_iterator<char>(file), {});
    }
    return place->second;
}

int Open(sqlite3_vfs*, const char* name, sqlite3_file* room, int flags, int* outFlags) {
    auto* file = new (room) File;
    file->pMethods = nullptr;
    file->onDisk = nullptr;
    if (const int code = Judge(Call::Open); code != SQLITE_OK)
        return code;
    if (name != nullptr) {
        file->onDisk = &FindOnDisk(name);
        if (file->onDisk->removed) // a new one of that name
            *file->onDisk = {};
    }
    const int code = realLayer->xOpen(realLayer, name, file->Real(), flags, outFlags);
    if (file->Real()->pMethods != nullptr)
        file->pMethods = &methods;
    return code;
}

int Delete(sqlite3_vfs*, const char* name, int syncFolder) {
    if (const int code = Judge(Call::Delete); code != SQLITE_OK)
        return code;
    OnDisk& onDisk = FindOnDisk(name);
    onDisk.changes.clear();
    const int code = syncFolder != 0 ? Judge(Call::SyncFolder) : SQLITE_OK;
    if (syncFolder != 0 && code == SQLITE_OK) {
        onDisk = {};
        renamings.clear();
    } else {
        onDisk.removed = true;
    }
    const int removal = realLayer->xDelete(realLayer, name, 0);
    return removal != SQLITE_OK ? removal : code;
}

std::error_code ErrorOf(int code) {
    switch (code) {
    case SQLITE_OK:
        return {};
    case SQLITE_FULL:
        return std::make_error_code(std::errc::no_space_on_device);
    case SQLITE_CANTOPEN:
        return std::make_error_code(std::errc::permission_denied);
    default:
        return std::make_error_code(std::errc::io_error);
    }
}

/// As SQLite names the file.
std::string KeyOf(const QString& path) {
    return QDir::toNativeSeparators(path).toStdString();
}

/// The same faults for the files that the program makes without SQLite.
class FaultyDisk final : public runtime::Disk {
    std::error_code Write(const QString& path, const QByteArray& bytes) override {
        for (const Call call : {Call::Open, Call::Write, Call::Sync})
            if (const auto error = ErrorOf(Judge(call)))
                return error;
        disk[KeyOf(path)] = {true, false, bytes.toStdString(), {}};
        return Disk::Write(path, bytes);
    }
    std::error_code Sync(const QString& path) override {
        const bool folder = QFileInfo(path).isDir();
        if (const auto error = ErrorOf(Judge(folder ? Call::SyncFolder : Call::Sync)))
            return error;
        if (folder)
            renamings.clear();
        else
            test::Sync(FindOnDisk(KeyOf(path).c_str()));
        return {};
    }
    std::error_code Name(const QString& path, const QString& name) override {
        return runtime::Stands(name) ? std::make_error_code(std::errc::file_exists) : Rename(path, name);
    }
    std::error_code Rename(const QString& path, const QString& name) override {
        if (const auto error = ErrorOf(Judge(Call::Delete)))
            return error;
        const std::string from = KeyOf(path);
        const std::string to = KeyOf(name);
        renamings.push_back({from, to, FindOnDisk(from.c_str()), FindOnDisk(to.c_str())});
        disk[to] = std::exchange(disk[from], {});
        return Disk::Rename(path, name);
    }
    // A clean-up that always succeeds while there is power.
    std::error_code Remove(const QString& path) override {
        if (powerIsOff)
            return {};
        disk[KeyOf(path)] = {};
        return Disk::Remove(path);
    }
};

FaultyDisk faultyDisk;

} // namespace

FaultyFiles::FaultyFiles(std::function<int(Call)> judge) {
    judgeOfCalls = std::move(judge);
    realLayer = sqlite3_vfs_find(nullptr);
    faultyLayer = *realLayer;
    faultyLayer.zName = "faulty";
    faultyLayer.szOsFile = static_cast<int>(sizeof(File)) + realLayer->szOsFile;
    faultyLayer.xOpen = Open;
    faultyLayer.xDelete = Delete;
    sqlite3_vfs_register(&faultyLayer, 1);
    runtime::Disk::Use(&faultyDisk);
}

FaultyFiles::~FaultyFiles() {
    runtime::Disk::Use(nullptr);
    sqlite3_vfs_register(realLayer, 1);
    sqlite3_vfs_unregister(&faultyLayer);
    judgeOfCalls = nullptr;
    powerIsOff = false;
    disk.clear();
    renamings.clear();
}

void FaultyFiles::PowerOn(Remains remains) {
    for (; remains == Remains::Nothing && !renamings.empty(); renamings.pop_back()) {
        disk[renamings.back().from] = renamings.back().renamed;
        disk[renamings.back().to] = renamings.back().replaced;
    }
    renamings.clear();
    for (auto& [name, onDisk] : disk) {
        const bool touched = std::any_of(onDisk.changes.begin(), onDisk.changes.end(),
                                         [](const Change& change) { return !change.bytes.empty(); });
        for (std::size_t i = 0; i < onDisk.changes.size() && remains != Remains::Nothing; ++i) {
            Change change = onDisk.changes[i];
            if (remains == Remains::EverySecond && i % 2 == 0)
                continue;
            if (remains == Remains::FirstSectors)
                change.bytes.resize(std::min(change.bytes.size(), sectorSize));
            Apply(change, onDisk.bytes);
        }
        if (onDisk.removed && remains != Remains::Nothing)
            std::filesystem::remove(name);
        else if (onDisk.exists || (touched && remains != Remains::Nothing))
            std::ofstream(name, std::ios::binary | std::ios::trunc) << onDisk.bytes;
        else
            std::filesystem::remove(name);
    }
    disk.clear();
}

} // namespace test
