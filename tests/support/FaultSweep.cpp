#include "tests/support/FaultSweep.h"

#include "tests/support/FullRun.h"

#include <gtest/gtest.h>

#include <iostream>
#include <limits>
#include <set>

namespace test {

namespace {

using Call = FaultyFiles::Call;
using Remains = FaultyFiles::Remains;

constexpr int DiskFull = 3026;
constexpr int DiskFailure = 3043;
constexpr int CannotOpenFile = 3051;

int Full(Call call) {
    return call == Call::Write ? SQLITE_FULL : SQLITE_OK;
}
int Write(Call call) {
    if (call == Call::Write)
        return SQLITE_IOERR_WRITE;
    return call == Call::Truncate ? SQLITE_IOERR_TRUNCATE : SQLITE_OK;
}
int Sync(Call call) {
    return call == Call::Sync ? SQLITE_IOERR_FSYNC : SQLITE_OK;
}
int Delete(Call call) {
    return call == Call::Delete ? SQLITE_IOERR_DELETE : SQLITE_OK;
}
int SyncFolder(Call call) {
    return call == Call::SyncFolder ? SQLITE_IOERR_DIR_FSYNC : SQLITE_OK;
}
int Open(Call call) {
    return call == Call::Open ? SQLITE_CANTOPEN : SQLITE_OK;
}
int Read(Call call) {
    return call == Call::Read ? SQLITE_IOERR_READ : SQLITE_OK;
}
int Power(Call call) {
    return call == Call::Read || call == Call::Open ? SQLITE_OK : FaultyFiles::PowerOff;
}

const FaultKind kinds[] = {
    {"disk full", Full, false, DiskFull},
    {"disk full, lasting", Full, true, DiskFull},
    {"write", Write, false, DiskFailure},
    {"write, lasting", Write, true, DiskFailure},
    {"sync", Sync, false, DiskFailure},
    {"sync, lasting", Sync, true, DiskFailure},
    {"delete", Delete, false, DiskFailure},
    {"delete, lasting", Delete, true, DiskFailure},
    {"sync of the folder", SyncFolder, false, DiskFailure},
    {"sync of the folder, lasting", SyncFolder, true, DiskFailure},
    {"open", Open, false, CannotOpenFile},
    {"open, lasting", Open, true, CannotOpenFile},
    {"read", Read, false, DiskFailure},
    {"read, lasting", Read, true, DiskFailure},
    {"power off, nothing unsynced left", Power, true, DiskFailure, Remains::Nothing},
    {"power off, first sectors left", Power, true, DiskFailure, Remains::FirstSectors},
    {"power off, every second left", Power, true, DiskFailure, Remains::EverySecond},
};

/// Runs with a fault at one place; false if it was not hit, or the sweep is to end.
class Sweep {
public:
    Sweep(const FaultKind& kind, const std::function<bool(Fault&)>& run)
        : m_kind(kind)
        , m_run(run) {}

    void Everywhere() {
        for (int place = 1; At(place); ++place) {
        }
    }

    void Sample(int calls, int samples, int turn) {
        std::set<int> places;
        if (samples > 1)
            places = {1, 2, calls};
        for (int sample = 0; sample < samples; ++sample)
            places.insert(1 + (calls * sample + turn * calls / 7) / samples % calls);
        for (const int place : places)
            if (m_goesOn && place <= calls)
                At(place);
        if (m_goesOn && m_hits == 0) // the number of calls is a matter of time
            At(1);
        if (m_goesOn && m_kind.remains) // right behind the work: what it has reported is on the disk
            At(calls + 1);
    }

    int Hits() const { return m_hits; }
    bool GoesOn() const { return m_goesOn; }

private:
    bool At(int place) {
        SCOPED_TRACE(std::string(m_kind.name) + " at call " + std::to_string(place));
        Fault fault(m_kind, place);
        m_goesOn = m_run(fault);
        m_hits += fault.WasHit() ? 1 : 0;
        return m_goesOn && fault.WasHit();
    }

    const FaultKind& m_kind;
    const std::function<bool(Fault&)>& m_run;
    int m_hits = 0;
    bool m_goesOn = true;
};

} // namespace

int Fault::Judge(Call call) {
    ++m_calls[static_cast<std::size_t>(call)];
    const int code = m_kind.codeOf(call);
    if (code == SQLITE_OK)
        return code;
    ++m_concerned;
    const bool fails = m_concerned == m_place || (m_kind.lasting && m_concerned > m_place);
    m_hit = m_hit || fails;
    return fails ? code : SQLITE_OK;
}

std::span<const FaultKind> FaultKinds() {
    return kinds;
}

void SweepFaults(const std::string& work, int samples, const std::function<bool(Fault&)>& run) {
    Fault none(kinds[0], std::numeric_limits<int>::max());
    if (!run(none))
        return;
    const auto callsOf = [&](const FaultKind& kind) {
        int calls = 0;
        for (const Call call : {Call::Open, Call::Read, Call::Write, Call::Truncate, Call::Sync, Call::Delete,
                                Call::SyncFolder})
            calls += kind.codeOf(call) == SQLITE_OK ? 0 : none.Calls(call);
        return calls;
    };
    int all = 0;
    int turn = 0;
    for (const FaultKind& kind : kinds) {
        const int calls = callsOf(kind);
        Sweep sweep(kind, run);
        if (IsFullRun())
            sweep.Everywhere();
        else if (calls > 0)
            sweep.Sample(calls, samples, turn++);
        std::cout << "  " << work << " | " << kind.name << ": " << sweep.Hits() << " of " << calls
                  << " calls failed\n";
        EXPECT_TRUE(sweep.Hits() > 0 || calls == 0) << kind.name;
        all += sweep.Hits();
        if (!sweep.GoesOn())
            break;
    }
    std::cout << "FIGURE faults: " << work << ": " << all << std::endl;
}

} // namespace test
