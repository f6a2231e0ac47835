#pragma once

#include "platform/Appearance.h"

#include <QObject>
#include <memory>
#include <optional>

class PortalSettings;

// The desktop's light or dark preference, from the XDG desktop portal
// (org.freedesktop.appearance color-scheme), followed live. No portal, or no preference, is
// nullopt: the platform theme's palette applies then.
class DesktopScheme : public QObject
{
    Q_OBJECT

public:
    explicit DesktopScheme(QObject *parent = nullptr);
    ~DesktopScheme() override;

    [[nodiscard]] std::optional<Appearance::Scheme> scheme() const { return m_scheme; }
    // The portal's color-scheme value: 1 prefers dark, 2 prefers light, anything else neither.
    [[nodiscard]] static std::optional<Appearance::Scheme> fromPortal(const QVariant &value);

Q_SIGNALS:
    void changed();

private:
    void set(std::optional<Appearance::Scheme> scheme);

    std::unique_ptr<PortalSettings> m_portal;
    std::optional<Appearance::Scheme> m_scheme;
};
