// Stands in for the system's mail library: answers as the environment says and notes what it was given.
#include <cstdio>
#include <cstdlib>
#include <windows.h>
// Leans on what stands above it.
#include <mapi.h>

namespace {

ULONG Answer(const char* variable) {
    const char* const code = std::getenv(variable);
    return code == nullptr ? SUCCESS_SUCCESS : static_cast<ULONG>(std::strtoul(code, nullptr, 10));
}

} // namespace

extern "C" {

__declspec(dllexport) ULONG WINAPI MAPILogon(ULONG_PTR, LPSTR, LPSTR, FLAGS, ULONG, LPLHANDLE session) {
    *session = 7;
    return Answer("ZAVELIK_LOGON");
}

__declspec(dllexport) ULONG WINAPI MAPILogoff(LHANDLE, ULONG_PTR, FLAGS, ULONG) {
    return SUCCESS_SUCCESS;
}

__declspec(dllexport) ULONG WINAPI
    MAPISendMail(LHANDLE session, ULONG_PTR, lpMapiMessage message, FLAGS flags, ULONG) {
    if (std::FILE* note = std::fopen(std::getenv("ZAVELIK_NOTE"), "wb"); note != nullptr) {
        std::fprintf(note, "%u %lu %s <%s>", static_cast<unsigned>(session), flags,
                     message->lpRecips->lpszName, message->lpRecips->lpszAddress);
        std::fclose(note);
    }
    return Answer("ZAVELIK_SEND");
}
}
