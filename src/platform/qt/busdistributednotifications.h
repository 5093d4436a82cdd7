#pragma once

#include "platform/notifications.h"

#include <QDBusConnection>
#include <QList>
#include <QObject>

namespace platform {

/// Distributed notifications as signals on the session bus, whoever sends them: path
/// /org/sealwright/DistributedNotifications, interface org.sealwright.DistributedNotifications, member Posted
/// with the name as its one argument. Main thread.
class BusDistributedNotifications : public QObject, public DistributedNotifications {
    Q_OBJECT

public:
    explicit BusDistributedNotifications(QDBusConnection bus = QDBusConnection::sessionBus());

    void addObserver(const QObject &observer, const QString &name, std::function<void()> handler,
                     Repeats repeats = Repeats::areHandled) override;
    void removeObserver(const QObject &observer) override;
    /// Without a bus only this application is told.
    void post(const QString &name) override;

private Q_SLOTS:
    void posted(const QString &name);

private:
    struct Observation {
        const QObject *observer;
        QString name;
        std::function<void()> handler;
        Repeats repeats;
        bool isCatchingUp = false; ///< what waited behind the latest call may still come
        bool isMissing = false; ///< and some of it has
    };

    Observation *find(const QObject *observer, const QString &name);
    void notify(const QObject *observer, const QString &name);
    void catchUp(const QObject *observer, const QString &name);

    QDBusConnection m_bus;
    QList<Observation> m_observations;
};

} // namespace platform
