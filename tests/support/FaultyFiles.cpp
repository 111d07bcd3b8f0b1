#include "tests/support/FaultyFiles.h"

#include "platform/runtime/Disk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <new>
#include <optional>
#include <string>
#include <utility>

namespace test {

namespace {

std::function<int(FaultyFiles::Call)> judgeOfCalls;
sqlite3_vfs* realLayer = nullptr;
sqlite3_vfs faultyLayer;
bool isOver = false; ///< the power is off, or the program killed

/// What is on the disk under a name; nothing if there is no such file.
using Content = std::optional<std::string>;

std::map<std::string, Content> disk;  ///< the files that were touched, as a power cut would leave them
std::map<std::string, Content> names; ///< what changes with the next sync of the folder

/// As it stands now for every program.
Content Read(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    if (!file.is_open())
        return std::nullopt;
    return std::string(std::istreambuf_iterator<char>(file), {});
}

/// A file that was there before it was touched first counts as safe on the disk.
const Content& OnDisk(const std::string& name) {
    const auto [place, isNew] = disk.try_emplace(name);
    if (isNew)
        place->second = Read(name);
    return names.contains(name) ? names[name] : place->second;
}

void Sync(const std::string& name, Content content) {
    disk[name] = std::move(content);
    names.erase(name);
}

void SyncNames() {
    for (auto& [name, content] : names)
        disk[name] = std::move(content);
    names.clear();
}

int Judge(FaultyFiles::Call call) {
    if (!isOver && judgeOfCalls) {
        const int code = judgeOfCalls(call);
        if (code >= SQLITE_OK)
            return code;
        isOver = true;
    }
    return isOver ? SQLITE_IOERR : SQLITE_OK;
}

/// Our file; SQLite gives the room for it, with the real one right behind.
struct File : sqlite3_file {
    const char* name; ///< null for a nameless one
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

using Call = FaultyFiles::Call;
using Methods = sqlite3_io_methods;

template <Call call, auto Method, class... Arguments>
int JudgeAndPassOn(sqlite3_file* file, Arguments... arguments) {
    const int code = Judge(call);
    return code != SQLITE_OK ? code : PassOn<Method>(file, arguments...);
}

// The wait for the real disk is spared: what it would hold is known.
int SyncFile(sqlite3_file* file, int) {
    const int code = Judge(Call::Sync);
    if (const char* name = static_cast<File*>(file)->name; name != nullptr && code == SQLITE_OK) {
        sqlite3_int64 size = 0; // another descriptor of the file would drop its locks
        PassOn<&Methods::xFileSize>(file, &size);
        std::string bytes(static_cast<std::size_t>(size), 0);
        PassOn<&Methods::xRead>(file, bytes.data(), static_cast<int>(size), 0);
        Sync(name, std::move(bytes));
    }
    return code;
}

const Methods methods = [] {
    Methods own = {};
    own.iVersion = 1;
    own.xClose = PassOn<&Methods::xClose>;
    own.xRead = JudgeAndPassOn<Call::Read, &Methods::xRead, void*, int, sqlite3_int64>;
    own.xWrite = JudgeAndPassOn<Call::Write, &Methods::xWrite, const void*, int, sqlite3_int64>;
    own.xTruncate = JudgeAndPassOn<Call::Truncate, &Methods::xTruncate, sqlite3_int64>;
    own.xSync = SyncFile;
    own.xFileSize = PassOn<&Methods::xFileSize, sqlite3_int64*>;
    own.xLock = PassOn<&Methods::xLock, int>;
    own.xUnlock = PassOn<&Methods::xUnlock, int>;
    own.xCheckReservedLock = PassOn<&Methods::xCheckReservedLock, int*>;
    own.xFileControl = PassOn<&Methods::xFileControl, int, void*>;
    own.xSectorSize = PassOn<&Methods::xSectorSize>;
    own.xDeviceCharacteristics = PassOn<&Methods::xDeviceCharacteristics>;
    return own;
}();

int Open(sqlite3_vfs*, const char* name, sqlite3_file* room, int flags, int* outFlags) {
    auto* file = new (room) File;
    file->pMethods = nullptr;
    file->name = name;
    if (const int code = Judge(Call::Open); code != SQLITE_OK)
        return code;
    if (name != nullptr && OnDisk(name) && !std::filesystem::exists(name))
        Sync(name, std::nullopt); // the deleted one gives way to a new one
    const int code = realLayer->xOpen(realLayer, name, file->Real(), flags, outFlags);
    if (file->Real()->pMethods != nullptr)
        file->pMethods = &methods;
    return code;
}

int Delete(sqlite3_vfs*, const char* name, int syncFolder) {
    if (const int code = Judge(Call::Delete); code != SQLITE_OK)
        return code;
    OnDisk(name);
    const int code = syncFolder != 0 ? Judge(Call::SyncFolder) : SQLITE_OK;
    if (syncFolder != 0 && code == SQLITE_OK) {
        SyncNames();
        Sync(name, std::nullopt);
    }
    const int removal = realLayer->xDelete(realLayer, name, 0);
    return removal != SQLITE_OK ? removal : code;
}

std::error_code ErrorOf(int code) {
    if (code == SQLITE_OK)
        return {};
    return std::make_error_code(code == SQLITE_FULL       ? std::errc::no_space_on_device
                                : code == SQLITE_CANTOPEN ? std::errc::permission_denied
                                                          : std::errc::io_error);
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
        test::Sync(KeyOf(path), bytes.toStdString());
        return Disk::Write(path, bytes);
    }
    std::error_code Sync(const QString& path) override {
        const bool folder = QFileInfo(path).isDir();
        if (const auto error = ErrorOf(Judge(folder ? Call::SyncFolder : Call::Sync)))
            return error;
        if (folder)
            SyncNames();
        else
            test::Sync(KeyOf(path), Read(KeyOf(path)));
        return {};
    }
    std::error_code Link(const QString& path, const QString& name) override {
        return Give(path, name, [&] { return Disk::Link(path, name); });
    }
    std::error_code Name(const QString& path, const QString& name) override {
        return runtime::Stands(name) ? std::make_error_code(std::errc::file_exists) : Rename(path, name);
    }
    std::error_code Rename(const QString& path, const QString& name) override {
        return Give(path, name, [&] {
            names[KeyOf(path)] = std::nullopt;
            return Disk::Rename(path, name);
        });
    }
    // A clean-up that always succeeds while there is power.
    std::error_code Remove(const QString& path) override {
        if (isOver)
            return {};
        test::Sync(KeyOf(path), std::nullopt);
        return Disk::Remove(path);
    }

    template <class Work>
    static std::error_code Give(const QString& path, const QString& name, Work work) {
        if (const auto error = ErrorOf(Judge(Call::Delete)))
            return error;
        OnDisk(KeyOf(name));
        names[KeyOf(name)] = OnDisk(KeyOf(path));
        return work();
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
    isOver = false;
    disk.clear();
    names.clear();
}

void FaultyFiles::PowerOn() {
    for (const auto& [name, content] : disk) {
        if (content)
            std::ofstream(name, std::ios::binary | std::ios::trunc) << *content;
        else
            std::filesystem::remove(name);
    }
    disk.clear();
    names.clear();
}

} // namespace test
