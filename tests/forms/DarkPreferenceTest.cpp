// The desktop's preference for dark windows, told by a settings portal on a bus of the test's own.

#include "platform/forms/DarkPreference.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QTest>
#include <QThread>

namespace {

constexpr auto Service = "org.freedesktop.portal.Desktop";
constexpr auto Path = "/org/freedesktop/portal/desktop";
constexpr auto Interface = "org.freedesktop.portal.Settings";
constexpr int LongestWait = 10000; ///< ms; only a test that fails waits so long

const QVariantList Setting{"org.freedesktop.appearance", "color-scheme"};

QVariant Boxed(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

/// Prefers dark windows.
class Portal final : public QDBusVirtualObject {
public:
    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        return message.member() == u"Read" && message.arguments() == Setting &&
               bus.send(message.createReply(Boxed(Boxed(1U))));
    }
};

TEST(DarkPreferenceTest, IsToldAtOnceAndOnEveryChange) {
    QProcess daemon;
    daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    if (!daemon.waitForStarted())
        GTEST_SKIP() << "dbus-daemon is not installed";
    ASSERT_TRUE(daemon.waitForReadyRead(LongestWait));
    qputenv("DBUS_SESSION_BUS_ADDRESS", daemon.readLine().trimmed());
    QThread desktop; // answers while the program waits
    Portal portal;
    portal.moveToThread(&desktop);
    desktop.start();
    auto bus = QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), Service);
    ASSERT_TRUE(bus.registerVirtualObject(Path, &portal));
    ASSERT_TRUE(bus.registerService(Service));

    QObject owner;
    QList<bool> told;
    forms::WatchDarkPreference(&owner, [&told](bool dark) { told += dark; });
    EXPECT_EQ(told, QList<bool>({true}));
    QDBusMessage change = QDBusMessage::createSignal(Path, Interface, "SettingChanged");
    change.setArguments(QVariantList(Setting) << Boxed(2U));
    bus.send(change);
    EXPECT_TRUE(QTest::qWaitFor([&told] { return told.size() >= 2; }, LongestWait));
    EXPECT_EQ(told, QList<bool>({true, false}));

    QDBusConnection::disconnectFromBus(Service);
    desktop.quit();
    desktop.wait();
    daemon.kill();
    daemon.waitForFinished();
}

} // namespace
