#pragma once

#include <QStringList>

#include <memory>
#include <optional>

namespace runtime {

/// Where settings lie: a file of the user's on Unix, the registry on Windows. The names are application,
/// section and key; case is ignored.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    virtual std::optional<QString> Value(const QStringList& names) const = 0;
    /// When it returns, the value is on the disk; behind a failure the old one is.
    virtual void Put(const QStringList& names, const QString& value) = 0;
    /// Takes away the value, or all of a section or an application; failure 5 if there is none.
    virtual void Remove(const QStringList& names) = 0;

protected:
    SettingsStore() = default;
    SettingsStore(const SettingsStore&) = default;
    SettingsStore& operator=(const SettingsStore&) = default;
};

/// The store of the user of this system.
std::unique_ptr<SettingsStore> UserSettings(const QString& app);

} // namespace runtime
