#pragma once

#include "platform/notifications.h"

namespace platform {

class MainQueue;

/// Messages by the notification centre, which asks the person once whether it may. Public document: Apple's
/// UNUserNotificationCenter. A program that lies in no bundle has none, and shows no message.
class MacNotificationCenter : public UserNotificationCenter {
public:
    explicit MacNotificationCenter(MainQueue &mainQueue);

    void setShouldPresent(Presenter shouldPresent) override;
    void deliver(const UserNotification &notification) override;

private:
    MainQueue &m_mainQueue;
    Presenter m_shouldPresent;
};

} // namespace platform
