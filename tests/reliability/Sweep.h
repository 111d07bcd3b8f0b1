#pragma once

#include "tests/support/Answers.h"
#include "tests/support/FaultyFiles.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

class QWidget;

namespace test {

/// One way in which calls to the file system fail.
struct FaultKind {
    const char* name;
    std::vector<FaultyFiles::Call> calls; ///< that fail
    int code;                             ///< of the layer's
    int number = 0;                       ///< of the failure that the user is told; 0: any
    bool startsAnew = false;              ///< what it leaves is put right by the next start of the program

    bool Concerns(FaultyFiles::Call call) const { return std::ranges::find(calls, call) != calls.end(); }
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
    bool WasHit() const { return m_hit; }
    /// How many calls there were that the kind concerns.
    int CallsOf(const FaultKind& kind) const;

private:
    const FaultKind& m_kind;
    int m_place;
    bool m_lasting;
    int m_concerned = 0;
    bool m_hit = false;
    std::array<int, 7> m_calls = {};
};

/// One piece of the user's work, done on a disk that fails. The order of the calls is that of the functions.
class Work {
public:
    virtual ~Work() = default;

    bool diskFails = false;  ///< set while the disk may fail
    bool startsAnew = false; ///< whether only the next start of the program goes on behind the fault

    /// Where its files are.
    virtual QString Folder() const = 0;
    /// Makes the files as they are before; none is open.
    virtual void Prepare() = 0;
    /// Opens what the work starts from, while the disk is still well.
    virtual void Begin() {}
    /// The work itself, on the failing disk.
    virtual void Act() = 0;
    /// Any modal window but a message box.
    virtual void Answer(QWidget& window);
    /// Whether success was reported: by these boxes, or by the lack of one where none is told.
    virtual bool WasReported(const QStringList& boxes) const = 0;
    /// Looks at the files: statements are whole, and if success was reported they all are there.
    virtual void CheckFiles(bool reported) = 0;
    /// The same work again where the user stands now, on a sound disk: it has to succeed.
    virtual void ActAgain() { Act(); }
    /// Ends what the work opened. Nothing may be raised any more.
    virtual void Leave() {}
    /// The program is started anew and does the work.
    virtual void StartAgain() {
        Begin();
        Act();
    }
    /// Looks at the files behind a work that succeeded at last.
    virtual void CheckEnd() = 0;
};

/// What lets the work fail, as long as it lives.
class Layer {
public:
    virtual ~Layer() = default;
    /// Right before the work, and right behind it.
    virtual void Begin() {}
    virtual void End() {}
    /// Behind a fault that only the next start goes on from: gives the files what is left of them.
    virtual void StartAnew(const Fault& fault) { (void)fault; }
};

/// The places of a sweep, but for the full run, which takes all.
enum class Places { None, Some };

/// Does the work once without a fault, then with a fault of each kind at its places, once and from then on,
/// each time on a layer that `install` makes for it. Of some places each kind has another one, once and from
/// then on by turns. Ends early behind a failed expectation. Writes to stdout how many faults were hit.
void SweepLayer(Work& work, const std::string& name, Places places, std::span<const FaultKind> kinds,
                const std::function<std::unique_ptr<Layer>(Fault&)>& install);

/// Under SQLite and the program's own writing; then the same on a slow disk, where each statement is a
/// commit.
void SweepDisk(Work& work, const std::string& name, Places onASlowDisk = Places::Some);

/// While another program keeps the book locked: for itself, against writers, by reading.
void SweepLocks(Work& work, const std::string& name, const QString& book);

/// The names of a file, of what belongs to it, and of what is hidden beside it, which may lie there for a day
/// when the program starts anew.
QStringList FilesOf(const QString& path, bool startsAnew);

} // namespace test
