#pragma once

#include <QString>

namespace runtime {

// The per-user settings store: text values under application name, section and key. Names ignore case as
// users of the store expect. The store is one file of the user's configuration folder on Unix, the registry
// on Windows.

/// The stored value, or `fallback` if anything on the way to it is missing. Failures: 75 if the store cannot
/// be opened, 57 if it cannot be read.
QString GetSetting(const QString& app, const QString& section, const QString& key,
                   const QString& fallback = {});

/// Writes the value, making section and key as needed. When it returns, the value is on the disk. Failures:
/// 61 disk full, 57 a device error, 75 no right to write; the value is then the one before.
void SaveSetting(const QString& app, const QString& section, const QString& key, const QString& value);

/// Deletes one key; failure 5 if section or key does not exist; others as SaveSetting.
void DeleteSetting(const QString& app, const QString& section, const QString& key);
/// Deletes a section; failures as above.
void DeleteSetting(const QString& app, const QString& section);
/// Deletes all sections of the application; failures as above.
void DeleteSetting(const QString& app);

/// Points the store at a file of the caller's; an empty path points it back at the user's. For tests.
void UseSettingsFile(const QString& path);

} // namespace runtime
