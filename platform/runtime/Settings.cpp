#include "platform/runtime/Settings.h"

#include "platform/runtime/Failure.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>
#include <QVariant>

#include <memory>
#include <optional>

namespace runtime {

namespace {

QString ownFile;

std::unique_ptr<QSettings> OpenStore(const QString& app) {
    if (!ownFile.isEmpty())
        return std::make_unique<QSettings>(ownFile, QSettings::IniFormat);
#ifdef Q_OS_WIN
    return std::make_unique<QSettings>(QStringLiteral("HKEY_CURRENT_USER\\Software\\") + app,
                                       QSettings::NativeFormat);
#else
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    const QString name = app.toLower() + QStringLiteral("/settings.ini");
    return std::make_unique<QSettings>(QDir(folder).filePath(name), QSettings::IniFormat);
#endif
}

/// The store takes slashes for further levels.
QString Escaped(QString name) {
    name.replace(u'%', QStringLiteral("%25"));
    name.replace(u'/', QStringLiteral("%2F"));
    name.replace(u'\\', QStringLiteral("%5C"));
    return name;
}

/// The name as the store spells it, which ignores case as the registry does; none if it is not there.
std::optional<QString> FindName(const QStringList& names, const QString& wanted) {
    for (const QString& name : names) {
        if (name.compare(Escaped(wanted), Qt::CaseInsensitive) == 0)
            return name;
    }
    return std::nullopt;
}

bool EnterGroup(QSettings& store, const QString& name) {
    const std::optional<QString> group = FindName(store.childGroups(), name);
    if (group)
        store.beginGroup(*group);
    return group.has_value();
}

/// The store's own status does not tell: it speaks of an earlier write too.
void CheckReadable(const QSettings& store) {
    const QFileInfo file(store.fileName());
    if (file.exists() && !(file.isFile() && file.isReadable()))
        Raise(PathFileAccess);
}

void CheckWritable(const QSettings& store) {
    if (!store.isWritable())
        Raise(PathFileAccess);
}

/// Puts a value, or takes it off, and undoes that in the store's memory if it does not reach the store, so
/// that what could not be written is not read back either.
void Change(QSettings& store, const QString& key, const QVariant& value) {
    const QVariant before = store.value(key);
    const auto put = [&](const QVariant& what) {
        if (what.isValid())
            store.setValue(key, what);
        else
            store.remove(key);
    };
    put(value);
    store.sync();
    if (store.status() == QSettings::AccessError) {
        put(before);
        Raise(PathFileAccess);
    }
}

void RemoveGroup(QSettings& store, const QString& group) {
    store.remove(group);
    store.sync();
    if (store.status() == QSettings::AccessError)
        Raise(PathFileAccess);
}

} // namespace

QString GetSetting(const QString& app, const QString& section, const QString& key, const QString& fallback) {
    const std::unique_ptr<QSettings> store = OpenStore(app);
    CheckReadable(*store);
    if (!EnterGroup(*store, app) || !EnterGroup(*store, section))
        return fallback;
    const std::optional<QString> name = FindName(store->childKeys(), key);
    return name ? store->value(*name).toString() : fallback;
}

void SaveSetting(const QString& app, const QString& section, const QString& key, const QString& value) {
    if (app.isEmpty() || section.isEmpty() || key.isEmpty())
        Raise(InvalidCall);
    const std::unique_ptr<QSettings> store = OpenStore(app);
    CheckWritable(*store);
    for (const QString& group : {app, section}) {
        if (!EnterGroup(*store, group))
            store->beginGroup(Escaped(group));
    }
    Change(*store, FindName(store->childKeys(), key).value_or(Escaped(key)), value);
}

void DeleteSetting(const QString& app, const QString& section, const QString& key) {
    const std::unique_ptr<QSettings> store = OpenStore(app);
    CheckReadable(*store);
    if (!EnterGroup(*store, app) || !EnterGroup(*store, section))
        Raise(InvalidCall);
    const std::optional<QString> name = FindName(store->childKeys(), key);
    if (!name)
        Raise(InvalidCall);
    CheckWritable(*store);
    Change(*store, *name, {});
}

void DeleteSetting(const QString& app, const QString& section) {
    const std::unique_ptr<QSettings> store = OpenStore(app);
    CheckReadable(*store);
    if (!EnterGroup(*store, app))
        Raise(InvalidCall);
    const std::optional<QString> group = FindName(store->childGroups(), section);
    if (!group)
        Raise(InvalidCall);
    CheckWritable(*store);
    RemoveGroup(*store, *group);
}

void DeleteSetting(const QString& app) {
    const std::unique_ptr<QSettings> store = OpenStore(app);
    CheckReadable(*store);
    const std::optional<QString> group = FindName(store->childGroups(), app);
    if (!group)
        Raise(InvalidCall);
    CheckWritable(*store);
    RemoveGroup(*store, *group);
}

void UseSettingsFile(const QString& path) {
    ownFile = path;
}

} // namespace runtime
