#pragma once

#include <QString>

namespace runtime {

/// A mail session with the user's mail program. SignOn fails with 32003 where there is none.
class MapiSession {
public:
    void SignOn();
    void SignOff() { m_open = false; }
    bool IsOpen() const { return m_open; }

private:
    bool m_open = false;
};

/// One mail being prepared. Send hands display name and address to the mail program's compose window by a
/// `mailto:` address and returns; failure 32002 if the program cannot be started.
class MapiMessage {
public:
    void Compose();
    QString RecipDisplayName;
    QString RecipAddress;
    void Send(bool withDialog);
};

} // namespace runtime
