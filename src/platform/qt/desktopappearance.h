#pragma once

#include "platform/systemappearance.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace platform {

/// What the desktop's portal says. Public document: XDG Desktop Portal, interface
/// org.freedesktop.portal.Settings, key color-scheme of org.freedesktop.appearance.
class DesktopAppearance : public SystemAppearance {
    Q_OBJECT

public:
    /// Asks at once and does not wait: until the desktop has answered it has no preference, and a desktop
    /// without a portal never has one.
    explicit DesktopAppearance(QDBusConnection bus = QDBusConnection::sessionBus());

private Q_SLOTS:
    void settingChanged(const QDBusMessage &signal);

private:
    void ask(QDBusConnection &bus);
    void take(const QVariant &value);
};

} // namespace platform
