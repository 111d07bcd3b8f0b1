#pragma once

#include "tests/reliability/Sweep.h"

namespace test {

/// Does the work while the system's calls that concern files of the folder fail, one place after the other,
/// whoever makes them: SQLite, the toolkit or the program itself. Then with the program killed at each place.
/// A full run takes every place, else `samples` of each kind.
void SweepCalls(Work& work, const std::string& name, const QString& folder, int samples);

/// Does the work while another program keeps the book locked: for itself, against writers, by reading. When
/// it has gone, the work succeeds.
void SweepLocks(Work& work, const QString& book);

} // namespace test
