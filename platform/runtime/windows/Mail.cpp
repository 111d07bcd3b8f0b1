#include "platform/runtime/Mail.h"

#include "platform/runtime/Failure.h"

#include <type_traits>
#include <windows.h>
// Leans on what stands above it.
#include <mapi.h>

namespace runtime {

namespace {

/// What the system's mail program returns as 1 (the user has closed its window), 2, 3 (no mail program, or
/// nobody signed on), 14 (unknown recipient) and so on are these failures.
constexpr int mailFailures = 32000;
constexpr int noMailProgram = mailFailures + MAPI_E_LOGON_FAILURE;

void Check(ULONG code) {
    if (code != SUCCESS_SUCCESS)
        Raise(mailFailures + static_cast<int>(code));
}

/// A function of the system's mail library, which is loaded when it is first asked for; 32003 without it.
template <class Function>
Function* MailFunction(const char* name) {
    static const HMODULE library = ::LoadLibraryW(L"mapi32.dll");
    const auto address = library == nullptr ? nullptr : ::GetProcAddress(library, name);
    if (address == nullptr)
        Raise(noMailProgram);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
}

} // namespace

void MapiSession::SignOn() {
    LHANDLE session = 0;
    Check(MailFunction<std::remove_pointer_t<LPMAPILOGON>>("MAPILogon")(0, nullptr, nullptr, MAPI_LOGON_UI, 0,
                                                                        &session));
    SessionID = session;
    m_open = true;
}

void MapiSession::SignOff() {
    m_open = false;
    MailFunction<std::remove_pointer_t<LPMAPILOGOFF>>("MAPILogoff")(SessionID, 0, 0, 0);
}

void MapiMessage::Send(bool withDialog) {
    if (!withDialog)
        Raise(InvalidCall);
    QByteArray name = RecipDisplayName.toLocal8Bit();
    QByteArray address = "SMTP:" + RecipAddress.toLocal8Bit();
    MapiRecipDesc recipient = {};
    recipient.ulRecipClass = MAPI_TO;
    recipient.lpszName = name.data();
    recipient.lpszAddress = address.data();
    ::MapiMessage message = {};
    message.nRecipCount = 1;
    message.lpRecips = &recipient;
    Check(MailFunction<std::remove_pointer_t<LPMAPISENDMAIL>>("MAPISendMail")(SessionID, 0, &message,
                                                                              MAPI_DIALOG, 0));
}

} // namespace runtime
