#pragma once

#include "platform/notifications.h"

#include <QDBusConnection>

namespace platform {

class MainQueue;

/// Messages by the desktop's notification service. Public document: "Desktop Notifications", freedesktop.org.
class DesktopNotificationCenter : public UserNotificationCenter {
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
    void present(const UserNotification &notification);

    MainQueue &m_mainQueue;
    QDBusConnection m_bus;
    const ActivityTest m_isActive;
    Presenter m_shouldPresent;
};

} // namespace platform
