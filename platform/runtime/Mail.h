#pragma once

#include <QString>

#include <cstdint>

namespace runtime {

/// A mail session with the user's mail program. SignOn fails with 32003 where there is none.
class MapiSession {
public:
    void SignOn();
    void SignOff();
    bool IsOpen() const { return m_open; }

    std::uintptr_t SessionID = 0;

private:
    bool m_open = false;
};

/// One mail being prepared. Send hands display name and address to the compose window of the mail program:
/// on Windows by the system's mail interface, and returns when that window is closed (32001: without
/// sending); elsewhere by a `mailto:` address, and returns at once (32002 if the program cannot be started).
class MapiMessage {
public:
    void Compose() { *this = {.SessionID = SessionID}; }

    std::uintptr_t SessionID = 0;
    QString RecipDisplayName = {};
    QString RecipAddress = {};

    void Send(bool withDialog);
};

} // namespace runtime
