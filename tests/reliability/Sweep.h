#pragma once

#include "tests/support/Boxes.h"
#include "tests/support/FaultSweep.h"

#include <QStringList>

#include <functional>
#include <string>

class QWidget;

namespace test {

/// One piece of the user's work, done on a disk that fails. The order of the calls is that of the functions.
class Work {
public:
    virtual ~Work() = default;

    bool diskFails = false; ///< set while the disk may fail
    bool cutsPower = false; ///< whether the fault of this run is a power failure
    std::string fault;      ///< the name of a fault of the system's calls

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
    virtual void ActAgain() = 0;
    /// Ends what the work opened. Nothing may be raised any more.
    virtual void Leave() = 0;
    /// Behind a power failure: the program is started anew and does the work.
    virtual void StartAgain() {}
    /// Looks at the files behind a work that succeeded at last.
    virtual void CheckEnd() = 0;
};

/// The names of a file, of what belongs to it, and of what is hidden beside it. What is hidden may lie there
/// for a day if the power was cut.
QStringList FilesOf(const QString& path, bool cutsPower);

/// Does the work under one fault after another; see SweepFaults. Then the same on a slow disk.
void SweepWork(Work& work, const std::string& name, int samples);

} // namespace test
