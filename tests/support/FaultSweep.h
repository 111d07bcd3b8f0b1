#pragma once

#include "tests/support/FaultyFiles.h"

#include <array>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace test {

/// One way in which the disk fails.
struct FaultKind {
    const char* name;
    int (*codeOf)(FaultyFiles::Call); ///< SQLITE_OK: calls that go well
    bool lasting;                     ///< from the failing call on, or that one alone
    int number;                       ///< of the failure that the user is told
    std::optional<FaultyFiles::Remains> remains = std::nullopt; ///< set if the power fails
};

/// A fault of one kind at one place: the judge of the calls of one run.
class Fault {
public:
    /// The place counts the calls that the kind concerns, from 1.
    Fault(const FaultKind& kind, int place)
        : m_kind(kind)
        , m_place(place) {}

    int Judge(FaultyFiles::Call call);
    const FaultKind& Kind() const { return m_kind; }
    bool CutsPower() const { return m_kind.remains.has_value(); }
    bool WasHit() const { return m_hit; }
    /// How many calls of that sort there were.
    int Calls(FaultyFiles::Call call) const { return m_calls[static_cast<std::size_t>(call)]; }

private:
    const FaultKind& m_kind;
    int m_place;
    int m_concerned = 0;
    bool m_hit = false;
    std::array<int, 7> m_calls = {};
};

/// Every way in which the disk fails.
std::span<const FaultKind> FaultKinds();

/// Calls `run` once without a fault, then with a fault of each kind at its places: in the full run at every
/// one, else at some `samples` of them, which are others for each kind, and if these are more than one at the
/// first and the last too. Ends early if `run` returns false.
/// Writes to stdout how many faults were hit.
void SweepFaults(const std::string& work, int samples, const std::function<bool(Fault&)>& run);

} // namespace test
