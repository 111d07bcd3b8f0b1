#pragma once

#include "platform/runtime/SettingsStore.h"

#include <QSettings>

namespace runtime {

/// Settings in the user's part of the registry, which puts changes on the disk by itself.
class RegistryStore final : public SettingsStore {
public:
    /// The settings of one program; its name leads those that are given below.
    explicit RegistryStore(const QString& app);

    std::optional<QString> Value(const QStringList& names) const override;
    /// Failure 75 if the registry cannot be written.
    void Put(const QStringList& names, const QString& value) override;
    void Remove(const QStringList& names) override;

private:
    void Flush();

    QSettings m_settings;
};

} // namespace runtime
