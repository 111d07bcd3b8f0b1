#include "platform/forms/DarkPreference.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFile>
#include <QObject>

namespace forms {

namespace {

constexpr int LongestWait = 200; ///< ms
constexpr uint PrefersDark = 1;

QString Service() {
    return QStringLiteral("org.freedesktop.portal.Desktop");
}
QString Path() {
    return QStringLiteral("/org/freedesktop/portal/desktop");
}
QString Interface() {
    return QStringLiteral("org.freedesktop.portal.Settings");
}
QString Namespace() {
    return QStringLiteral("org.freedesktop.appearance");
}
QString Key() {
    return QStringLiteral("color-scheme");
}

/// Empty without a bus: none is started for this.
QString BusAddress() {
    const QString told = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    const QString socket = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus");
    return told.isEmpty() && QFile::exists(socket) ? QStringLiteral("unix:path=") + socket : told;
}

class Listener final : public QObject {
    Q_OBJECT

public:
    Listener(QObject* owner, std::function<void(bool)> tell)
        : QObject(owner)
        , m_name(QStringLiteral("settings-%1").arg(reinterpret_cast<quintptr>(this)))
        , m_bus(QDBusConnection::connectToBus(BusAddress(), m_name))
        , m_tell(std::move(tell)) {
        if (!m_bus.isConnected())
            return;
        qRegisterMetaType<QDBusVariant>(); // else no slot is found that takes one
        m_bus.connect(Service(), Path(), Interface(), QStringLiteral("SettingChanged"), this,
                      SLOT(SettingChanged(QString, QString, QDBusVariant)));
        Read();
    }
    ~Listener() override { QDBusConnection::disconnectFromBus(m_name); }

public Q_SLOTS:
    void SettingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
        if (space == Namespace() && key == Key())
            m_tell(value.variant().toUInt() == PrefersDark);
    }

private:
    void Read() {
        QDBusMessage question =
            QDBusMessage::createMethodCall(Service(), Path(), Interface(), QStringLiteral("Read"));
        question << Namespace() << Key();
        question.setAutoStartService(false);
        const QDBusMessage answer = m_bus.call(question, QDBus::Block, LongestWait);
        if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty())
            return;
        // A variant in a variant.
        QVariant value = answer.arguments().constFirst();
        while (value.metaType() == QMetaType::fromType<QDBusVariant>())
            value = value.value<QDBusVariant>().variant();
        m_tell(value.toUInt() == PrefersDark);
    }

    QString m_name; ///< of the connection
    QDBusConnection m_bus;
    std::function<void(bool)> m_tell;
};

} // namespace

void WatchDarkPreference(QObject* owner, const std::function<void(bool dark)>& tell) {
    if (!BusAddress().isEmpty())
        new Listener(owner, tell);
}

} // namespace forms

#include "DarkPreferenceDBus.moc"
