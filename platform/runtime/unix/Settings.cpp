#include "platform/runtime/SettingsFile.h"

#include <QDir>
#include <QStandardPaths>

namespace runtime {

std::unique_ptr<SettingsStore> UserSettings(const QString& app) {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QString name = app.toLower() + QStringLiteral("/settings.ini");
    return std::make_unique<SettingsFile>(QDir(folder).filePath(name));
}

} // namespace runtime
