#include "platform/forms/DarkPreference.h"

#include <QObject>
#include <QWinEventNotifier>

#include <windows.h>

namespace forms {

namespace {

constexpr auto Key = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";

/// The user's choice among the system's settings of colours.
class Listener final : public QObject {
public:
    Listener(QObject* owner, std::function<void(bool)> tell)
        : QObject(owner)
        , m_tell(std::move(tell)) {
        if (::RegOpenKeyExW(HKEY_CURRENT_USER, Key, 0, KEY_QUERY_VALUE | KEY_NOTIFY, &m_key) != ERROR_SUCCESS)
            return;
        m_changed = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
        m_notifier.setHandle(m_changed);
        connect(&m_notifier, &QWinEventNotifier::activated, this, &Listener::Hear);
        Hear();
    }
    ~Listener() override {
        m_notifier.setEnabled(false);
        if (m_changed)
            ::CloseHandle(m_changed);
        if (m_key)
            ::RegCloseKey(m_key);
    }

private:
    void Hear() {
        ::RegNotifyChangeKeyValue(m_key, FALSE, REG_NOTIFY_CHANGE_LAST_SET, m_changed, TRUE);
        m_notifier.setEnabled(true);
        DWORD light = 1;
        DWORD size = sizeof light;
        ::RegGetValueW(m_key, nullptr, L"AppsUseLightTheme", RRF_RT_REG_DWORD, nullptr, &light, &size);
        m_tell(light == 0);
    }

    HKEY m_key = nullptr;
    HANDLE m_changed = nullptr;
    QWinEventNotifier m_notifier;
    std::function<void(bool)> m_tell;
};

} // namespace

void WatchDarkPreference(QObject* owner, const std::function<void(bool dark)>& tell) {
    new Listener(owner, tell);
}

} // namespace forms
