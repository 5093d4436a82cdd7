#pragma once

#include "platform/notifications.h"

#include <memory>

namespace platform {

/// Those of macOS itself. Public document: Apple's NSDistributedNotificationCenter. Main thread.
class MacDistributedNotifications : public DistributedNotifications {
public:
    MacDistributedNotifications();
    ~MacDistributedNotifications() override;

    void addObserver(const QObject &observer, const QString &name, std::function<void()> handler,
                     Repeats repeats = Repeats::areHandled) override;
    void removeObserver(const QObject &observer) override;
    void post(const QString &name) override;

private:
    class Observations;

    const std::unique_ptr<Observations> m_observations;
};

} // namespace platform
