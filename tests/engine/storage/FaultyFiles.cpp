#include "tests/engine/storage/FaultyFiles.h"

#include <new>

namespace test {

namespace {

std::function<int(FaultyFiles::Call)> judgeOfCalls;
sqlite3_vfs* realLayer = nullptr;
sqlite3_vfs faultyLayer;

int Judge(FaultyFiles::Call call) {
    return judgeOfCalls ? judgeOfCalls(call) : SQLITE_OK;
}

/// Our file; SQLite gives the room for it, with the real one right behind.
struct File : sqlite3_file {
    sqlite3_file* Real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_file* Real(sqlite3_file* file) {
    return static_cast<File*>(file)->Real();
}

const sqlite3_io_methods& Methods(sqlite3_file* real) {
    return *real->pMethods;
}

int Close(sqlite3_file* file) {
    return Methods(Real(file)).xClose(Real(file));
}
int Read(sqlite3_file* file, void* to, int size, sqlite3_int64 at) {
    const int code = Judge(FaultyFiles::Call::Read);
    return code != SQLITE_OK ? code : Methods(Real(file)).xRead(Real(file), to, size, at);
}
int Write(sqlite3_file* file, const void* from, int size, sqlite3_int64 at) {
    const int code = Judge(FaultyFiles::Call::Write);
    return code != SQLITE_OK ? code : Methods(Real(file)).xWrite(Real(file), from, size, at);
}
int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    const int code = Judge(FaultyFiles::Call::Truncate);
    return code != SQLITE_OK ? code : Methods(Real(file)).xTruncate(Real(file), size);
}
// No power fails here, so that the wait for the disk is spared.
int Sync(sqlite3_file*, int) {
    return Judge(FaultyFiles::Call::Sync);
}
int FileSize(sqlite3_file* file, sqlite3_int64* size) {
    return Methods(Real(file)).xFileSize(Real(file), size);
}
int Lock(sqlite3_file* file, int level) {
    return Methods(Real(file)).xLock(Real(file), level);
}
int Unlock(sqlite3_file* file, int level) {
    return Methods(Real(file)).xUnlock(Real(file), level);
}
int CheckReservedLock(sqlite3_file* file, int* result) {
    return Methods(Real(file)).xCheckReservedLock(Real(file), result);
}
int FileControl(sqlite3_file* file, int operation, void* argument) {
    return Methods(Real(file)).xFileControl(Real(file), operation, argument);
}
int SectorSize(sqlite3_file* file) {
    return Methods(Real(file)).xSectorSize(Real(file));
}
int DeviceCharacteristics(sqlite3_file* file) {
    return Methods(Real(file)).xDeviceCharacteristics(Real(file));
}

const sqlite3_io_methods methods = {1,
                                    Close,
                                    Read,
                                    Write,
                                    Truncate,
                                    Sync,
                                    FileSize,
                                    Lock,
                                    Unlock,
                                    CheckReservedLock,
                                    FileControl,
                                    SectorSize,
                                    DeviceCharacteristics,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr,
                                    nullptr};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* room, int flags, int* outFlags) {
    auto* file = new (room) File;
    file->pMethods = nullptr;
    if (const int code = Judge(FaultyFiles::Call::Open); code != SQLITE_OK)
        return code;
    const int code = realLayer->xOpen(realLayer, name, file->Real(), flags, outFlags);
    if (file->Real()->pMethods != nullptr)
        file->pMethods = &methods;
    return code;
}

int Delete(sqlite3_vfs*, const char* name, int) {
    const int code = Judge(FaultyFiles::Call::Delete);
    return code != SQLITE_OK ? code : realLayer->xDelete(realLayer, name, 0);
}

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
}

FaultyFiles::~FaultyFiles() {
    sqlite3_vfs_register(realLayer, 1);
    sqlite3_vfs_unregister(&faultyLayer);
    judgeOfCalls = nullptr;
}

} // namespace test
