#include "tests/support/FaultSweep.h"

#include "tests/support/FullRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <limits>
#include <set>

namespace test {

namespace {

using Call = FaultyFiles::Call;

constexpr int DiskFull = 3026;
constexpr int DiskFailure = 3043;
constexpr int CannotOpenFile = 3051;
const std::vector<Call> Writing{Call::Write, Call::Truncate, Call::Sync, Call::Delete, Call::SyncFolder};

const FaultKind diskFaults[] = {
    {"disk full", {Call::Write}, SQLITE_FULL, DiskFull},
    {"write", {Call::Write, Call::Truncate}, SQLITE_IOERR_WRITE, DiskFailure},
    {"sync", {Call::Sync}, SQLITE_IOERR_FSYNC, DiskFailure},
    {"delete", {Call::Delete}, SQLITE_IOERR_DELETE, DiskFailure},
    {"sync of the folder", {Call::SyncFolder}, SQLITE_IOERR_DIR_FSYNC, DiskFailure},
    {"open", {Call::Open}, SQLITE_CANTOPEN, CannotOpenFile},
    {"read", {Call::Read}, SQLITE_IOERR_READ, DiskFailure},
    {"power off", Writing, FaultyFiles::PowerOff, DiskFailure, true},
    {"killed", Writing, FaultyFiles::Killed, DiskFailure, true},
};

/// The places of a kind in a quick run.
std::set<int> Sample(const FaultKind& kind, int calls, int samples, int turn) {
    std::set<int> places;
    if (samples > 1)
        places = {1, std::min(2, calls), calls};
    for (int sample = 0; sample < samples; ++sample)
        places.insert(1 + (calls * sample + turn * calls / 7) / samples % calls);
    if (kind.EndsAll()) // right behind the work: what it has reported is on the disk
        places.insert(calls + 1);
    return places;
}

/// Runs with a fault at each of the places; how many of them were hit.
int HitsAt(const FaultKind& kind, bool lasting, const std::set<int>& places,
           const std::function<void(Fault&)>& run) {
    int hits = 0;
    for (const int place : places) {
        if (testing::Test::HasFailure())
            break;
        SCOPED_TRACE("at call " + std::to_string(place));
        Fault fault(kind, place, lasting);
        run(fault);
        hits += fault.WasHit() ? 1 : 0;
    }
    return hits;
}

int HitsEverywhere(const FaultKind& kind, bool lasting, const std::function<void(Fault&)>& run) {
    int hits = 0;
    while (HitsAt(kind, lasting, {hits + 1}, run) > 0)
        ++hits;
    return hits;
}

} // namespace

bool FaultKind::Concerns(Call call) const {
    return std::find(calls.begin(), calls.end(), call) != calls.end();
}

int Fault::Judge(Call call) {
    ++m_calls.at(static_cast<std::size_t>(call));
    if (!m_kind.Concerns(call))
        return 0;
    ++m_concerned;
    const bool fails = m_concerned == m_place || (m_lasting && m_concerned > m_place);
    m_hit = m_hit || fails;
    return fails ? m_kind.code : 0;
}

int Fault::CallsOf(const FaultKind& kind) const {
    int calls = 0;
    for (const Call call : kind.calls)
        calls += m_calls.at(static_cast<std::size_t>(call));
    return calls;
}

std::span<const FaultKind> DiskFaults() {
    return diskFaults;
}

void SweepFaults(const std::string& work, int samples, std::span<const FaultKind> kinds,
                 const std::function<void(Fault&)>& run) {
    if (samples == 0 && !IsFullRun())
        return;
    Fault none(kinds.front(), std::numeric_limits<int>::max(), false);
    run(none);
    int all = 0;
    int turn = 0;
    for (const FaultKind& kind : kinds) {
        const int calls = none.CallsOf(kind);
        for (const bool lasting : {false, true}) {
            const bool byTurns = samples == 1 && !IsFullRun() && lasting != (turn % 2 == 1);
            if (calls == 0 || (kind.EndsAll() ? lasting : byTurns) || testing::Test::HasFailure())
                continue;
            const std::string name = std::string(kind.name) + (lasting ? ", lasting" : "");
            SCOPED_TRACE(work + ", " + name);
            int hits = IsFullRun() ? HitsEverywhere(kind, lasting, run)
                                   : HitsAt(kind, lasting, Sample(kind, calls, samples, turn), run);
            if (hits == 0) // the number of calls is a matter of time
                hits = HitsAt(kind, lasting, {1}, run);
            std::cout << "  " << work << " | " << name << ": " << hits << " of " << calls
                      << " calls failed\n";
            EXPECT_TRUE(hits > 0 || testing::Test::HasFailure());
            all += hits;
        }
        ++turn;
    }
    std::cout << "FIGURE faults: " << work << ": " << all << std::endl;
}

} // namespace test
