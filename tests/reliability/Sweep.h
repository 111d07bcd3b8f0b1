#pragma once

#include "tests/support/Answers.h"
#include "tests/support/FaultSweep.h"

#include <QStringList>

#include <functional>
#include <memory>
#include <string>

class QWidget;

namespace test {

/// One piece of the user's work, done on a disk that fails. The order of the calls is that of the functions.
class Work {
public:
    virtual ~Work() = default;

    bool diskFails = false;   ///< set while the disk may fail
    bool startsAnew = false;  ///< whether only the next start of the program goes on behind the fault
    bool noSyncAtAll = false; ///< whether the disk can confirm nothing any more

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
    /// Behind a report of success.
    virtual void CheckSynced(bool afterFault) const { (void)afterFault; }
    /// Behind a fault that only the next start goes on from: gives the files what is left of them.
    virtual void StartAnew(const Fault& fault) { (void)fault; }
};

/// Does the work under one fault after another, once on each layer that `install` makes for it; see
/// SweepFaults.
void SweepLayer(Work& work, const std::string& name, int samples, std::span<const FaultKind> kinds,
                const std::function<std::unique_ptr<Layer>(Fault&)>& install);

/// Under SQLite and the program's own writing; then the same on a slow disk, where each statement is a
/// commit.
void SweepDisk(Work& work, const std::string& name, int samples, int slowSamples = 1);

/// While the system's calls that concern files of the folder fail, whoever makes them: the toolkit or the
/// program itself. Only on Unix.
void SweepCalls(Work& work, const std::string& name, int samples);

/// While another program keeps the book locked: for itself, against writers, by reading.
void SweepLocks(Work& work, const std::string& name, const QString& book);

/// The names of a file, of what belongs to it, and of what is hidden beside it, which may lie there for a day
/// when the program starts anew.
QStringList FilesOf(const QString& path, bool startsAnew);

} // namespace test
