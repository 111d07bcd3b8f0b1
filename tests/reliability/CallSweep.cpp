// The system's calls fail, whoever makes them, or the program ends at one of them. The program lends its
// symbols to the toolkit.

#include "tests/reliability/Sweep.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdarg>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Call = test::FaultyFiles::Call;

/// Of whose files the calls are judged: the result is a number of errno, or 0 lets the call through.
struct Judged {
    std::string folder;
    std::function<int(Call)> judge;
    std::set<ino_t> unsynced; ///< files whose content, and folders whose names, no sync has followed
};

Judged* judged = nullptr;

ino_t NumberOf(const std::string& path) {
    struct stat facts = {};
    return ::stat(path.c_str(), &facts) == 0 ? facts.st_ino : 0;
}

std::string Opened(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

bool Concerns(const std::string& path) {
    return judged != nullptr && path.starts_with(judged->folder);
}

bool Concerns(int descriptor) {
    std::error_code none;
    return judged != nullptr && Concerns(fs::read_symlink(Opened(descriptor), none).string());
}

/// Whether the call may be made; else errno says why it failed.
template <class Place>
bool Passes(Call call, Place place) {
    const int error = Concerns(place) ? judged->judge(call) : 0;
    if (error != 0)
        errno = error;
    return error == 0;
}

void NameChanged(const std::string& path) {
    if (Concerns(path))
        judged->unsynced.insert(NumberOf(fs::path(path).parent_path()));
}

template <class Open>
int OpenJudged(Open open, const char* path, int flags, mode_t mode) {
    const bool isNew = (flags & O_CREAT) != 0 && ::access(path, F_OK) != 0;
    if (!Passes(Call::Open, path))
        return -1;
    const int descriptor = open(path, flags, mode);
    if (isNew && descriptor >= 0)
        NameChanged(path);
    return descriptor;
}

template <class Work>
int OnName(Call call, const char* path, Work work) {
    if (!Passes(call, path))
        return -1;
    const int result = work();
    if (result == 0)
        NameChanged(path);
    return result;
}

mode_t ModeIn(int flags, va_list arguments) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(arguments, mode_t) : 0;
}

} // namespace

#define REAL(name) static auto* const real = reinterpret_cast<decltype(&::name)>(::dlsym(RTLD_NEXT, #name))

extern "C" {

int open(const char* path, int flags, ...) {
    REAL(open);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeIn(flags, arguments);
    va_end(arguments);
    return OpenJudged(real, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    REAL(open64);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = ModeIn(flags, arguments);
    va_end(arguments);
    return OpenJudged(real, path, flags, mode);
}

ssize_t read(int descriptor, void* to, size_t size) {
    REAL(read);
    return Passes(Call::Read, descriptor) ? real(descriptor, to, size) : -1;
}

ssize_t write(int descriptor, const void* from, size_t size) {
    REAL(write);
    if (!Passes(Call::Write, descriptor))
        return -1;
    if (Concerns(descriptor))
        judged->unsynced.insert(NumberOf(Opened(descriptor)));
    return real(descriptor, from, size);
}

// The wait for the real disk is spared.
int fsync(int descriptor) {
    REAL(fsync);
    if (!Concerns(descriptor))
        return real(descriptor);
    if (!Passes(Call::Sync, descriptor))
        return -1;
    judged->unsynced.erase(NumberOf(Opened(descriptor)));
    return 0;
}

int rename(const char* path, const char* to) noexcept {
    REAL(rename);
    return OnName(Call::Rename, to, [&] { return real(path, to); });
}

int linkat(int folder, const char* path, int toFolder, const char* to, int flags) noexcept {
    REAL(linkat);
    return OnName(Call::Link, to, [&] { return real(folder, path, toFolder, to, flags); });
}

int unlink(const char* path) noexcept {
    REAL(unlink);
    return OnName(Call::Delete, path, [&] { return real(path); });
}
}

namespace test {

namespace {

// Where no name can be taken away, what lies about is tidied by the next start.
const FaultKind callFaults[] = {
    {"no room", {Call::Write, Call::Rename, Call::Link}, ENOSPC},
    {"no write", {Call::Write}, EIO},
    {"no sync", {Call::Sync}, EIO},
    {"no right", {Call::Open}, EACCES},
    {"no names", {Call::Rename, Call::Link, Call::Delete}, EIO, 0, true},
    {"no read", {Call::Read}, EIO},
    {"killed",
     {Call::Open, Call::Write, Call::Sync, Call::Rename, Call::Link, Call::Delete},
     FaultyFiles::Killed,
     0,
     true},
};

class System final : public Layer {
public:
    System(Work& work, Fault& fault)
        : m_judged{work.Folder().toStdString(),
                   [this, &work, &fault](Call call) {
                       const int error = work.diskFails ? fault.Judge(call) : 0;
                       m_isKilled = m_isKilled || error == FaultyFiles::Killed;
                       return m_isKilled ? EIO : error;
                   },
                   {}} {
        judged = &m_judged;
    }
    ~System() override { judged = nullptr; }
    void CheckSynced(bool afterFault) const override {
        EXPECT_TRUE(afterFault ||
                    !IsUnsynced(m_judged.folder)); // a folder that cannot be told to is no failure
        for (const auto& file : fs::directory_iterator(m_judged.folder))
            EXPECT_FALSE(IsUnsynced(file.path())) << file.path() << " is not on the disk";
    }

private:
    bool IsUnsynced(const std::string& path) const { return m_judged.unsynced.contains(NumberOf(path)); }

    bool m_isKilled = false;
    Judged m_judged;
};

} // namespace

void SweepCalls(Work& work, const std::string& name, Places places) {
    SweepLayer(work, "calls of " + name, places, callFaults,
               [&work](Fault& fault) { return std::make_unique<System>(work, fault); });
}

} // namespace test
