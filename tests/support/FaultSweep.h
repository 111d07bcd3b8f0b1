#pragma once

#include "tests/support/FaultyFiles.h"

#include <array>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace test {

/// One way in which calls to the file system fail.
struct FaultKind {
    const char* name;
    std::vector<FaultyFiles::Call> calls; ///< that fail
    int code;                             ///< of the layer's
    int number = 0;                       ///< of the failure that the user is told; 0: any
    bool startsAnew = false;              ///< what it leaves is put right by the next start of the program

    bool Concerns(FaultyFiles::Call call) const;
    /// Nothing is done behind such a fault.
    bool EndsAll() const { return code < 0; }
};

/// A fault of one kind at one place: the judge of the calls of one run.
class Fault {
public:
    /// The place counts the calls that the kind concerns, from 1; with a lasting fault those behind fail too.
    Fault(const FaultKind& kind, int place, bool lasting)
        : m_kind(kind)
        , m_place(place)
        , m_lasting(lasting) {}

    int Judge(FaultyFiles::Call call);
    const FaultKind& Kind() const { return m_kind; }
    bool IsLasting() const { return m_lasting; }
    bool CutsPower() const { return m_kind.code == FaultyFiles::PowerOff; }
    bool WasHit() const { return m_hit; }
    /// How many calls there were that the kind concerns.
    int CallsOf(const FaultKind& kind) const;

private:
    const FaultKind& m_kind;
    int m_place;
    bool m_lasting;
    int m_concerned = 0;
    bool m_hit = false;
    std::array<int, 9> m_calls = {};
};

/// Every way in which the disk fails under SQLite.
std::span<const FaultKind> DiskFaults();

/// Calls `run` once without a fault, then with a fault of each kind at its places, once and from then on: in
/// the full run at every one, else at some `samples` of them, which are others for each kind; with one sample
/// once and from then on by turns, with more at the first and the last place too; with none not at all.
/// Ends early behind a failed expectation. Writes to stdout how many faults were hit.
void SweepFaults(const std::string& work, int samples, std::span<const FaultKind> kinds,
                 const std::function<void(Fault&)>& run);

} // namespace test
