#include "platform/runtime/Settings.h"

#include "platform/runtime/Failure.h"
#include "platform/runtime/SettingsFile.h"

namespace runtime {

namespace {

QString ownFile;

std::unique_ptr<SettingsStore> StoreOf(const QString& app) {
    if (!ownFile.isEmpty())
        return std::make_unique<SettingsFile>(ownFile);
    return UserSettings(app);
}

} // namespace

QString GetSetting(const QString& app, const QString& section, const QString& key, const QString& fallback) {
    return StoreOf(app)->Value({app, section, key}).value_or(fallback);
}

void SaveSetting(const QString& app, const QString& section, const QString& key, const QString& value) {
    if (app.isEmpty() || section.isEmpty() || key.isEmpty())
        Raise(InvalidCall);
    StoreOf(app)->Put({app, section, key}, value);
}

void DeleteSetting(const QString& app, const QString& section, const QString& key) {
    StoreOf(app)->Remove({app, section, key});
}

void DeleteSetting(const QString& app, const QString& section) {
    StoreOf(app)->Remove({app, section});
}

void DeleteSetting(const QString& app) {
    StoreOf(app)->Remove({app});
}

void UseSettingsFile(const QString& path) {
    ownFile = path;
}

} // namespace runtime
