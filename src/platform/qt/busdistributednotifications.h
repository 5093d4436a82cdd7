#pragma once

#include "platform/notifications.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>

namespace platform {

/// Distributed notifications as signals on the session bus, whoever sends them: path
/// /org/sealwright/DistributedNotifications, interface org.sealwright.DistributedNotifications, member Posted
/// with the name as its one argument. Main thread.
class BusDistributedNotifications : public QObject, public DistributedNotifications {
    Q_OBJECT

public:
    explicit BusDistributedNotifications(QDBusConnection bus = QDBusConnection::sessionBus());

    void addObserver(const QString &name, std::function<void()> handler) override;
    void removeAllObservers() override;

private Q_SLOTS:
    void posted(const QString &name);

private:
    QDBusConnection m_bus;
    QHash<QString, std::function<void()>> m_handlers;
};

} // namespace platform
