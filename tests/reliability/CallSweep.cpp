// The system's calls fail, whoever makes them, or the program is killed at one of them.

#include "tests/reliability/Sweep.h"
#include "tests/support/FaultyCalls.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <cerrno>
#include <filesystem>

namespace test {

namespace {

namespace fs = std::filesystem;
using Call = FaultyCalls::Call;

// Where no name can be taken away, what lies about is tidied by the next start.
const FaultKind callFaults[] = {
    {"no room", {Call::Write, Call::Truncate, Call::Rename, Call::Link}, ENOSPC},
    {"no write", {Call::Write, Call::Truncate}, EIO},
    {"no sync", {Call::Sync}, EIO},
    {"no right", {Call::Open}, EACCES},
    {"no names", {Call::Rename, Call::Link, Call::Delete}, EIO, 0, true},
    {"no read", {Call::Read}, EIO},
    {"killed",
     {Call::Open, Call::Write, Call::Truncate, Call::Sync, Call::Rename, Call::Link, Call::Delete},
     0,
     0,
     true},
};

void CopyFolder(const fs::path& from, const fs::path& to) {
    for (const auto& old : fs::directory_iterator(to))
        fs::remove_all(old);
    fs::copy(from, to, fs::copy_options::recursive);
}

class System final : public Layer {
public:
    System(Work& work, Fault& fault)
        : m_folder(work.Folder().toStdString())
        , m_calls(m_folder, [this, &work, &fault](Call call, const std::string&) {
            const bool wasHit = fault.WasHit();
            const int error = work.diskFails ? fault.Judge(call) : 0;
            if (!wasHit && fault.WasHit() && error == 0)
                CopyFolder(m_folder, m_asKilled.path().toStdString());
            return error;
        }) {}
    void CheckSynced(bool afterFault) const override {
        std::set<std::string> unsynced = FaultyCalls::Unsynced();
        if (afterFault) // a folder that cannot be told to is no failure
            std::erase_if(unsynced, [](const std::string& path) { return fs::is_directory(path); });
        EXPECT_EQ(unsynced, std::set<std::string>()) << "not on the disk";
    }
    void StartAnew(const Fault& fault) override {
        if (fault.Kind().code == 0 && fault.WasHit())
            CopyFolder(m_asKilled.path().toStdString(), m_folder);
    }

private:
    std::string m_folder;
    QTemporaryDir m_asKilled;
    FaultyCalls m_calls;
};

} // namespace

void SweepCalls(Work& work, const std::string& name, int samples) {
    SweepLayer(work, "calls of " + name, samples, callFaults,
               [&work](Fault& fault) { return std::make_unique<System>(work, fault); });
}

} // namespace test
