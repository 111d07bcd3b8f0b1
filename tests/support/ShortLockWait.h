#pragma once

#include "platform/engine/store/LockWait.h"
#include "platform/runtime/Files.h"

namespace test {

/// While it lives nobody waits long for a lock.
class ShortLockWait {
public:
    explicit ShortLockWait(std::chrono::milliseconds limit = std::chrono::milliseconds(50)) {
        engine::LockWait::limit = runtime::OpenDatabaseFile::longestWait = limit;
    }
    ~ShortLockWait() { engine::LockWait::limit = runtime::OpenDatabaseFile::longestWait = m_before; }
    ShortLockWait(const ShortLockWait&) = delete;
    ShortLockWait& operator=(const ShortLockWait&) = delete;

private:
    std::chrono::milliseconds m_before = engine::LockWait::limit;
};

} // namespace test
