#pragma once

#include "platform/runtime/SettingsStore.h"

#include <QString>

namespace runtime {

/// Settings in a file of their own. It is replaced by a whole new one at each change, so that it is never
/// half there, and read anew at each use.
class SettingsFile final : public SettingsStore {
public:
    explicit SettingsFile(QString path);

    /// Failure 75 if the file cannot be read.
    std::optional<QString> Value(const QStringList& names) const override;
    /// Failures: 61 disk full, 57 a device error, 75 no right to write; the file is then as before.
    void Put(const QStringList& names, const QString& value) override;
    void Remove(const QStringList& names) override;

private:
    QByteArray Read() const;
    void Replace(const QByteArray& text) const;

    QString m_path;
};

} // namespace runtime
