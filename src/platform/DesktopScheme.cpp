#include "platform/DesktopScheme.h"

#include <QDBusAbstractInterface>
#include <QDBusConnection>
#include <QDBusReply>
#include <QDBusVariant>

namespace {

const QString appearanceNamespace = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");
// A running portal answers in milliseconds; a missing one must not hold up the window for long.
constexpr int readTimeoutMs = 1000;

} // namespace

// The portal's Settings interface. As a proxy, its D-Bus signal is a Qt signal like any other.
class PortalSettings : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    PortalSettings()
        : QDBusAbstractInterface(QStringLiteral("org.freedesktop.portal.Desktop"),
                                 QStringLiteral("/org/freedesktop/portal/desktop"),
                                 "org.freedesktop.portal.Settings", QDBusConnection::sessionBus(),
                                 nullptr)
    {
        setTimeout(readTimeoutMs);
    }

Q_SIGNALS:
    void SettingChanged(const QString &nameSpace, const QString &key, const QDBusVariant &value);
};

DesktopScheme::DesktopScheme(QObject *parent) : QObject(parent)
{
    if (!QDBusConnection::sessionBus().isConnected())
        return;
    // Qt's D-Bus relays a signal only once the types of its arguments are registered by name.
    qRegisterMetaType<QDBusVariant>();
    m_portal = std::make_unique<PortalSettings>();
    connect(m_portal.get(), &PortalSettings::SettingChanged, this,
            [this](const QString &nameSpace, const QString &key, const QDBusVariant &value) {
                if (nameSpace == appearanceNamespace && key == colorScheme)
                    set(fromPortal(value.variant()));
            });
    const QDBusReply<QDBusVariant> reply =
        m_portal->call(QStringLiteral("Read"), appearanceNamespace, colorScheme);
    if (reply.isValid())
        m_scheme = fromPortal(reply.value().variant());
}

DesktopScheme::~DesktopScheme() = default;

std::optional<Appearance::Scheme> DesktopScheme::fromPortal(const QVariant &value)
{
    // Read wraps the value in one more variant than the signal does.
    QVariant v = value;
    while (v.userType() == qMetaTypeId<QDBusVariant>())
        v = v.value<QDBusVariant>().variant();
    bool ok = false;
    const uint scheme = v.toUInt(&ok);
    if (!ok)
        return std::nullopt;
    if (scheme == 1)
        return Appearance::Scheme::dark;
    if (scheme == 2)
        return Appearance::Scheme::light;
    return std::nullopt;
}

void DesktopScheme::set(std::optional<Appearance::Scheme> scheme)
{
    if (scheme == m_scheme)
        return;
    m_scheme = scheme;
    Q_EMIT changed();
}

#include "DesktopScheme.moc"
