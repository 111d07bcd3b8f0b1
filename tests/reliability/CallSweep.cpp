#include "tests/reliability/CallSweep.h"

#include "tests/support/FaultyCalls.h"
#include "tests/support/FullRun.h"
#include "tests/support/ShortLockWait.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <vector>

namespace test {

namespace {

namespace fs = std::filesystem;
using Call = FaultyCalls::Call;

/// One way in which the system fails.
struct Kind {
    const char* name;
    std::vector<Call> calls; ///< that fail
    int error;               ///< of errno; 0: the program is killed instead
    bool lasting;

    bool Concerns(Call call) const { return std::find(calls.begin(), calls.end(), call) != calls.end(); }
    /// What a killed program leaves, and one that can take no name away, is tidied by its next start.
    bool StartsAgain() const { return error == 0 || Concerns(Call::Remove); }
};

const Kind kinds[] = {
    {"no room", {Call::Write, Call::Truncate, Call::Rename, Call::Link}, ENOSPC, false},
    {"no room, lasting", {Call::Write, Call::Truncate, Call::Rename, Call::Link}, ENOSPC, true},
    {"no write", {Call::Write, Call::Truncate}, EIO, false},
    {"no write, lasting", {Call::Write, Call::Truncate}, EIO, true},
    {"no sync", {Call::Sync}, EIO, false},
    {"no sync, lasting", {Call::Sync}, EIO, true},
    {"no right", {Call::Open}, EACCES, false},
    {"no right, lasting", {Call::Open}, EACCES, true},
    {"no names", {Call::Rename, Call::Link, Call::Remove}, EIO, false},
    {"no names, lasting", {Call::Rename, Call::Link, Call::Remove}, EIO, true},
    {"no read", {Call::Read}, EIO, false},
    {"no read, lasting", {Call::Read}, EIO, true},
    {"killed",
     {Call::Open, Call::Write, Call::Truncate, Call::Sync, Call::Rename, Call::Link, Call::Remove},
     0,
     false},
};

void CopyFolder(const fs::path& from, const fs::path& to) {
    for (const auto& old : fs::directory_iterator(to))
        fs::remove_all(old);
    fs::copy(from, to, fs::copy_options::recursive);
}

/// A run of the work with a fault of one kind at one place, counted from 1.
class Run {
public:
    Run(Work& work, const QString& folder, const Kind& kind, int place)
        : m_work(work)
        , m_folder(folder.toStdString())
        , m_kind(kind)
        , m_place(place) {}

    void Go();
    bool WasHit() const { return m_hit; }
    /// How many of the calls made are of that kind.
    int CallsOf(const Kind& kind) const;

private:
    int Judge(Call call);
    void Act();
    void CheckBoxes(const QStringList& boxes) const;

    Work& m_work;
    std::string m_folder;
    const Kind& m_kind;
    int m_place;
    int m_concerned = 0;
    std::map<Call, int> m_calls;
    bool m_hit = false;
    bool m_reported = false;
    QTemporaryDir m_asKilled;
};

int Run::Judge(Call call) {
    if (!m_work.diskFails)
        return 0;
    ++m_calls[call];
    if (!m_kind.Concerns(call))
        return 0;
    ++m_concerned;
    if (m_concerned != m_place && !(m_kind.lasting && m_concerned > m_place))
        return 0;
    m_hit = true;
    if (m_kind.error == 0)
        CopyFolder(m_folder, m_asKilled.path().toStdString());
    return m_kind.error;
}

int Run::CallsOf(const Kind& kind) const {
    int calls = 0;
    for (const auto& [call, count] : m_calls)
        calls += kind.Concerns(call) ? count : 0;
    return calls;
}

void Run::CheckBoxes(const QStringList& boxes) const {
    SCOPED_TRACE(boxes.join(QStringLiteral("\n")).toStdString());
    const QStringList failures = Boxes::Failures(boxes);
    EXPECT_LE(failures.size(), 1);
    EXPECT_TRUE(m_reported || !failures.isEmpty()) << "neither success nor failure was told";
    if (!m_hit || m_kind.error == 0) {
        EXPECT_TRUE(m_reported && failures.isEmpty());
    }
    if (m_reported && failures.isEmpty()) {
        std::set<std::string> unsynced = FaultyCalls::Unsynced();
        if (m_hit) // a folder that cannot be told to is no failure
            std::erase_if(unsynced,
                          [](const std::string& path) { return std::filesystem::is_directory(path); });
        EXPECT_EQ(unsynced, std::set<std::string>()) << "not on the disk";
    }
}

void Run::Go() {
    m_work.cutsPower = m_kind.StartsAgain();
    m_work.fault = m_kind.name;
    m_work.Prepare();
    Boxes boxes([this](QWidget& window) { m_work.Answer(window); });
    {
        const FaultyCalls calls(m_folder, [this](Call call, const std::string&) { return Judge(call); });
        m_work.Begin();
        m_work.diskFails = true;
        m_work.Act();
        m_work.diskFails = false;
        const QStringList told = boxes.Take();
        m_reported = m_work.WasReported(told);
        CheckBoxes(told);
        if (!m_work.cutsPower) {
            m_work.CheckFiles(m_reported);
            m_work.ActAgain();
        }
        m_work.Leave();
    }
    if (m_work.cutsPower) {
        if (m_kind.error == 0 && m_hit) {
            CopyFolder(m_asKilled.path().toStdString(), m_folder);
            m_reported = false;
        }
        m_work.CheckFiles(m_reported);
        m_work.StartAgain();
        m_work.Leave();
    }
    EXPECT_EQ(Boxes::Failures(boxes.Take()), QStringList());
    m_work.CheckEnd();
}

std::vector<int> Places(int calls, int samples, int turn) {
    std::vector<int> places;
    const int count = IsFullRun() ? calls : std::min(calls, samples);
    for (int sample = 0; sample < count; ++sample)
        places.push_back(1 + (calls * sample + (IsFullRun() ? 0 : turn * calls / 7)) / count % calls);
    return places;
}

} // namespace

void SweepCalls(Work& work, const std::string& name, const QString& folder, int samples) {
    int all = 0;
    int turn = 0;
    Run sound(work, folder, kinds[0], std::numeric_limits<int>::max());
    sound.Go();
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(name + ", " + kind.name);
        const int calls = sound.CallsOf(kind);
        int hits = 0;
        for (const int place : Places(calls, samples, turn++)) {
            if (testing::Test::HasFailure())
                return;
            SCOPED_TRACE("at call " + std::to_string(place));
            Run run(work, folder, kind, place);
            run.Go();
            hits += run.WasHit() ? 1 : 0;
        }
        std::cout << "  " << name << " | " << kind.name << ": " << hits << " of " << calls
                  << " calls failed\n";
        EXPECT_TRUE(hits > 0 || calls == 0);
        all += hits;
    }
    std::cout << "FIGURE faults: calls of " << name << ": " << all << std::endl;
}

void SweepLocks(Work& work, const QString& book) {
    const ShortLockWait wait(std::chrono::milliseconds(10));
    int all = 0;
    for (const char* lock :
         {"BEGIN EXCLUSIVE", "BEGIN IMMEDIATE", "BEGIN; SELECT count(*) FROM sqlite_schema"}) {
        SCOPED_TRACE(lock);
        work.cutsPower = false;
        work.Prepare();
        Boxes boxes([&work](QWidget& window) { work.Answer(window); });
        work.Begin();
        sqlite3* opened = nullptr;
        ASSERT_EQ(sqlite3_open(QFile::encodeName(book).constData(), &opened), SQLITE_OK);
        std::unique_ptr<sqlite3, decltype(&sqlite3_close)> other(opened, &sqlite3_close);
        ASSERT_EQ(sqlite3_exec(opened, lock, nullptr, nullptr, nullptr), SQLITE_OK);
        work.Act();
        other.reset();
        const QStringList told = boxes.Take();
        const bool reported = work.WasReported(told);
        SCOPED_TRACE(told.join(u'\n').toStdString());
        static const QRegularExpression locked(QStringLiteral("ошибка №(3045|3211|3218) "));
        const QStringList failures = Boxes::Failures(told);
        EXPECT_EQ(failures, failures.filter(locked));
        EXPECT_EQ(failures.size(), reported ? 0 : 1);
        work.CheckFiles(reported);
        work.ActAgain();
        work.Leave();
        EXPECT_EQ(Boxes::Failures(boxes.Take()), QStringList());
        work.CheckEnd();
        ++all;
        if (testing::Test::HasFailure())
            return;
    }
    std::cout << "FIGURE locks: " << all << std::endl;
}

} // namespace test
