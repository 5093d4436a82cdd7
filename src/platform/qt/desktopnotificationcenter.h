#pragma once

#include "platform/notifications.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>

namespace platform {

class MainQueue;

/// Messages by the desktop's notification service, which tells of clicks. Public document: "Desktop
/// Notifications", freedesktop.org, versions 1.0 to 1.2 (whose ActivationToken may be missing).
class DesktopNotificationCenter : public QObject, public UserNotificationCenter {
    Q_OBJECT

public:
    /// Whether the application is the active one; asked on the main thread.
    using ActivityTest = std::function<bool()>;

    explicit DesktopNotificationCenter(MainQueue &mainQueue,
                                       QDBusConnection bus = QDBusConnection::sessionBus(),
                                       ActivityTest isActive = isApplicationActive);

    void setShouldPresent(Presenter shouldPresent) override;
    void deliver(const UserNotification &notification) override;

    static bool isApplicationActive();

private:
    /// What the service said of a message that can be clicked.
    struct Clickable {
        std::function<void(const QString &token)> wasClicked;
        QString token; ///< null until the service has told it
    };

    void present(const UserNotification &notification);
    void hearOfClicks();
    Q_SLOT void activationToken(uint message, const QString &token);
    Q_SLOT void actionInvoked(uint message, const QString &action);
    Q_SLOT void notificationClosed(uint message, uint reason);

    MainQueue &m_mainQueue;
    QDBusConnection m_bus;
    const ActivityTest m_isActive;
    Presenter m_shouldPresent;
    QHash<uint, Clickable> m_clickable; ///< those on show, by the service's numbers
    bool m_hearsOfClicks = false;
};

} // namespace platform
