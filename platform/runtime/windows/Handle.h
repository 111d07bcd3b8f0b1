#pragma once

#include <QString>

#include <utility>
#include <windows.h>

namespace runtime {

/// NativePath for the system's own calls.
std::wstring WidePath(const QString& path);

/// An open file or folder of the system.
class Handle {
public:
    static constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

    Handle() = default;
    /// Opens what exists; false as a truth if that fails.
    Handle(const QString& path, DWORD access, DWORD share = shareAll, DWORD flags = 0)
        : m_handle(
              ::CreateFileW(WidePath(path).c_str(), access, share, nullptr, OPEN_EXISTING, flags, nullptr)) {}
    ~Handle() {
        if (*this)
            ::CloseHandle(m_handle);
    }
    Handle(Handle&& other) noexcept
        : m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE)) {}
    Handle& operator=(Handle&&) = delete;

    explicit operator bool() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE operator*() const { return m_handle; }
    HANDLE Release() { return std::exchange(m_handle, INVALID_HANDLE_VALUE); }

private:
    HANDLE m_handle = INVALID_HANDLE_VALUE;
};

} // namespace runtime
