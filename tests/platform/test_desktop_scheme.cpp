#include "platform/DesktopScheme.h"
#include "support/TestSandbox.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QProcess>
#include <QThread>
#include <atomic>

// Stands in for the desktop portal's Settings interface, on a bus of the test's own.
class FakePortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    std::atomic<uint> scheme{1};

public Q_SLOTS:
    QDBusVariant Read(const QString &nameSpace, const QString &key)
    {
        if (nameSpace != QLatin1String("org.freedesktop.appearance") ||
            key != QLatin1String("color-scheme"))
            return {};
        // The real portal wraps the value in one more variant.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(scheme.load())));
    }
};

class TestDesktopScheme : public QObject
{
    Q_OBJECT

    QProcess m_bus;
    QThread m_portalThread;
    FakePortal m_portal;

    void announce(uint scheme)
    {
        QDBusMessage changed = QDBusMessage::createSignal(
            QStringLiteral("/org/freedesktop/portal/desktop"),
            QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("SettingChanged"));
        changed << QStringLiteral("org.freedesktop.appearance") << QStringLiteral("color-scheme")
                << QVariant::fromValue(QDBusVariant(scheme));
        QVERIFY(QDBusConnection(QStringLiteral("portal")).send(changed));
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_bus.start(QStringLiteral("dbus-daemon"),
                    {QStringLiteral("--session"), QStringLiteral("--nofork"),
                     QStringLiteral("--print-address")});
        if (!m_bus.waitForStarted() || !m_bus.waitForReadyRead(10'000))
            QSKIP("dbus-daemon is not available here");
        const QByteArray address = m_bus.readLine().trimmed();
        // The app's side talks on "the session bus", which is now this private one.
        qputenv("DBUS_SESSION_BUS_ADDRESS", address);
        const QDBusConnection portal =
            QDBusConnection::connectToBus(QString::fromLatin1(address), QStringLiteral("portal"));
        QVERIFY(portal.isConnected());
        // Answered on a thread of its own, so the app's blocking read is served meanwhile.
        m_portal.moveToThread(&m_portalThread);
        m_portalThread.start();
    }

    void cleanupTestCase()
    {
        m_portalThread.quit();
        m_portalThread.wait();
        m_bus.kill();
        m_bus.waitForFinished();
    }

    void followsThePortalLiveAndFallsBackWithoutIt()
    {
        QDBusConnection portal(QStringLiteral("portal"));
        QVERIFY(portal.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &m_portal,
                                      QDBusConnection::ExportAllSlots));

        // No portal on the bus: no preference, at once.
        QCOMPARE(DesktopScheme().scheme(), std::nullopt);

        QVERIFY(portal.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
        DesktopScheme scheme;
        QCOMPARE(scheme.scheme(), std::optional(Appearance::Scheme::dark));
        for (const auto &[value, expected] :
             {std::pair{2u, std::optional(Appearance::Scheme::light)},
              std::pair{0u, std::optional<Appearance::Scheme>()},
              std::pair{1u, std::optional(Appearance::Scheme::dark)}}) {
            announce(value);
            QTRY_COMPARE(scheme.scheme(), expected);
        }
        m_portal.scheme = 2;
        QCOMPARE(DesktopScheme().scheme(), std::optional(Appearance::Scheme::light));
    }
};

DUSTMERE_TEST_MAIN(TestDesktopScheme)
#include "test_desktop_scheme.moc"
