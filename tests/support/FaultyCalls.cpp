#include "tests/support/FaultyCalls.h"

#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <map>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace {

using test::FaultyCalls;
using Call = FaultyCalls::Call;

struct Layer {
    std::string folder;
    FaultyCalls::Judge judge;
    std::map<int, std::string> open; ///< descriptors
    std::set<std::string> unsynced;
    bool judging = false;
};

Layer* layer = nullptr;

template <class Function>
Function* Real(Function*, const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

bool Concerns(const char* path) {
    return layer != nullptr && !layer->judging && path != nullptr &&
           std::string_view(path).starts_with(layer->folder);
}

bool Concerns(int descriptor) {
    return layer != nullptr && !layer->judging && layer->open.contains(descriptor);
}

/// Whether the call may be made; else errno says why it failed.
bool Passes(Call call, const std::string& path) {
    layer->judging = true;
    const int error = layer->judge(call, path);
    layer->judging = false;
    if (error != 0)
        errno = error;
    return error == 0;
}

std::string FolderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

void NameChanged(const char* path) {
    layer->unsynced.insert(FolderOf(path));
}

bool Exists(const char* path) {
    return ::access(path, F_OK) == 0;
}

template <class Open>
int Opened(const char* path, int flags, Open open) {
    if (!Concerns(path))
        return open();
    const bool isNew = (flags & O_CREAT) != 0 && !Exists(path);
    if (!Passes(Call::Open, path))
        return -1;
    const int descriptor = open();
    if (descriptor < 0)
        return descriptor;
    layer->open[descriptor] = path;
    if (isNew)
        NameChanged(path);
    if (isNew || (flags & O_TRUNC) != 0)
        layer->unsynced.insert(path);
    return descriptor;
}

template <class Result, class Work>
Result OnDescriptor(Call call, int descriptor, Work work) {
    if (!Concerns(descriptor))
        return work();
    const std::string path = layer->open[descriptor];
    if (!Passes(call, path))
        return -1;
    const Result result = work();
    if (call == Call::Write || call == Call::Truncate)
        layer->unsynced.insert(path);
    else if (call == Call::Sync)
        layer->unsynced.erase(path);
    return result;
}

/// A change of names; `to` may be null.
template <class Work>
int OnNames(Call call, const char* path, const char* to, Work work) {
    if (!Concerns(path) && !Concerns(to))
        return work();
    if (!Passes(call, to != nullptr ? to : path))
        return -1;
    const int result = work();
    if (result != 0)
        return result;
    NameChanged(to != nullptr ? to : path);
    const bool gone = call != Call::Link;
    if (layer->unsynced.contains(path) && to != nullptr)
        layer->unsynced.insert(to);
    if (gone) {
        NameChanged(path);
        layer->unsynced.erase(path);
    }
    return result;
}

mode_t ModeIn(int flags, va_list arguments) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(arguments, mode_t) : 0;
}

} // namespace

#define REAL(name) static auto* const real = Real(&::name, #name)

extern "C" {

int open(const char* path, int flags, ...) {
    REAL(open);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeIn(flags, arguments);
    va_end(arguments);
    return Opened(path, flags, [&] { return real(path, flags, mode); });
}

int open64(const char* path, int flags, ...) {
    REAL(open64);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeIn(flags, arguments);
    va_end(arguments);
    return Opened(path, flags, [&] { return real(path, flags, mode); });
}

int openat(int folder, const char* path, int flags, ...) {
    REAL(openat);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeIn(flags, arguments);
    va_end(arguments);
    return Opened(path, flags, [&] { return real(folder, path, flags, mode); });
}

int close(int descriptor) {
    REAL(close);
    if (Concerns(descriptor))
        layer->open.erase(descriptor);
    return real(descriptor);
}

ssize_t read(int descriptor, void* to, size_t size) {
    REAL(read);
    return OnDescriptor<ssize_t>(Call::Read, descriptor, [&] { return real(descriptor, to, size); });
}
ssize_t pread64(int descriptor, void* to, size_t size, off64_t at) {
    REAL(pread64);
    return OnDescriptor<ssize_t>(Call::Read, descriptor, [&] { return real(descriptor, to, size, at); });
}
ssize_t write(int descriptor, const void* from, size_t size) {
    REAL(write);
    return OnDescriptor<ssize_t>(Call::Write, descriptor, [&] { return real(descriptor, from, size); });
}
ssize_t pwrite64(int descriptor, const void* from, size_t size, off64_t at) {
    REAL(pwrite64);
    return OnDescriptor<ssize_t>(Call::Write, descriptor, [&] { return real(descriptor, from, size, at); });
}
int ftruncate64(int descriptor, off64_t size) noexcept {
    REAL(ftruncate64);
    return OnDescriptor<int>(Call::Truncate, descriptor, [&] { return real(descriptor, size); });
}
// The wait for the real disk is spared.
int fsync(int descriptor) {
    REAL(fsync);
    return OnDescriptor<int>(Call::Sync, descriptor, [&] { return layer != nullptr ? 0 : real(descriptor); });
}
int fdatasync(int descriptor) {
    REAL(fdatasync);
    return OnDescriptor<int>(Call::Sync, descriptor, [&] { return layer != nullptr ? 0 : real(descriptor); });
}

int rename(const char* path, const char* to) noexcept {
    REAL(rename);
    return OnNames(Call::Rename, path, to, [&] { return real(path, to); });
}
int renameat2(int folder, const char* path, int toFolder, const char* to, unsigned flags) noexcept {
    REAL(renameat2);
    return OnNames(Call::Rename, path, to, [&] { return real(folder, path, toFolder, to, flags); });
}
int link(const char* path, const char* to) noexcept {
    REAL(link);
    return OnNames(Call::Link, path, to, [&] { return real(path, to); });
}
// Of a file without a name: what is to be synced of it went by its folder's.
int linkat(int folder, const char* path, int toFolder, const char* to, int flags) noexcept {
    REAL(linkat);
    return OnNames(Call::Link, path, to, [&] { return real(folder, path, toFolder, to, flags); });
}
int unlink(const char* path) noexcept {
    REAL(unlink);
    return OnNames(Call::Delete, path, nullptr, [&] { return real(path); });
}
int remove(const char* path) noexcept {
    REAL(remove);
    return OnNames(Call::Delete, path, nullptr, [&] { return real(path); });
}
}

namespace test {

FaultyCalls::FaultyCalls(std::string folder, Judge judge) {
    layer = new Layer{std::move(folder), std::move(judge), {}, {}};
}

FaultyCalls::~FaultyCalls() {
    delete std::exchange(layer, nullptr);
}

const std::set<std::string>& FaultyCalls::Unsynced() {
    return layer->unsynced;
}

} // namespace test
