#pragma once

#include "tests/support/FaultyFiles.h"

#include <functional>
#include <set>
#include <string>

namespace test {

/// A layer under the whole program, whatever library calls the system: calls that concern files of one folder
/// can fail. One at a time; the program that links it lends its symbols to all libraries.
class FaultyCalls {
public:
    using Call = FaultyFiles::Call;

    /// Asked before each call with the path that it is about; a number of errno is its result, and the call
    /// is not made. 0 lets it through. The judge's own calls are not judged.
    using Judge = std::function<int(Call call, const std::string& path)>;

    FaultyCalls(std::string folder, Judge judge);
    ~FaultyCalls();
    FaultyCalls(const FaultyCalls&) = delete;
    FaultyCalls& operator=(const FaultyCalls&) = delete;

    /// What a power cut could take back: files whose content, and folders whose names, no sync has followed.
    static const std::set<std::string>& Unsynced();
};

} // namespace test
