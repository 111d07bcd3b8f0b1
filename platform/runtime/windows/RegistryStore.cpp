#include "platform/runtime/windows/RegistryStore.h"

#include "platform/runtime/Failure.h"

namespace runtime {

namespace {

/// Where the names lead below the program's own key, which the first of them is. A name may hold what
/// separates the levels.
QString PathOf(const QStringList& names) {
    QStringList escaped;
    for (QString name : names.mid(1)) {
        name.replace(u'%', QStringLiteral("%25"));
        name.replace(u'/', QStringLiteral("%2F"));
        name.replace(u'\\', QStringLiteral("%5C"));
        escaped += name;
    }
    return escaped.join(u'/');
}

} // namespace

RegistryStore::RegistryStore(const QString& app)
    : m_settings(QStringLiteral("HKEY_CURRENT_USER\\Software\\") + app, QSettings::NativeFormat) {
}

/// The registry ignores case by itself.
std::optional<QString> RegistryStore::Value(const QStringList& names) const {
    const QString path = PathOf(names);
    if (!m_settings.contains(path))
        return std::nullopt;
    return m_settings.value(path).toString();
}

void RegistryStore::Put(const QStringList& names, const QString& value) {
    m_settings.setValue(PathOf(names), value);
    Flush();
    if (Value(names) != value)
        Raise(PathFileAccess);
}

void RegistryStore::Remove(const QStringList& names) {
    const QString path = PathOf(names);
    m_settings.beginGroup(path);
    const bool isGroup = !m_settings.allKeys().isEmpty();
    m_settings.endGroup();
    if (!isGroup && !m_settings.contains(path))
        Raise(InvalidCall);
    m_settings.remove(path);
    Flush();
}

void RegistryStore::Flush() {
    m_settings.sync();
    if (m_settings.status() != QSettings::NoError)
        Raise(PathFileAccess);
}

} // namespace runtime
