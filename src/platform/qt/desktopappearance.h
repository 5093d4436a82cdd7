#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

namespace platform {

/// What the desktop says about light and dark, now and whenever that changes. Public document: XDG Desktop
/// Portal, interface org.freedesktop.portal.Settings, key color-scheme of org.freedesktop.appearance. Main
/// thread.
class DesktopAppearance : public QObject {
    Q_OBJECT

public:
    enum class Scheme { noPreference, dark, light };

    /// Asks at once and does not wait: until the desktop has answered it has no preference, and a desktop
    /// without a portal never has one.
    explicit DesktopAppearance(QDBusConnection bus = QDBusConnection::sessionBus());

    Scheme scheme() const { return m_scheme; }

Q_SIGNALS:
    void changed();

private Q_SLOTS:
    void settingChanged(const QDBusMessage &signal);

private:
    void ask(QDBusConnection &bus);
    void setScheme(const QVariant &value);

    Scheme m_scheme = Scheme::noPreference;
};

} // namespace platform
