#include "platform/qt/busdistributednotifications.h"

#include <QDBusMessage>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

const QString objectPath = u"/org/sealwright/DistributedNotifications"_s;
const QString interfaceName = u"org.sealwright.DistributedNotifications"_s;
const QString postedMember = u"Posted"_s;

} // namespace

BusDistributedNotifications::BusDistributedNotifications(QDBusConnection bus)
    : m_bus(std::move(bus))
{
    m_bus.connect({}, objectPath, interfaceName, postedMember, u"s"_s, this, SLOT(posted(QString)));
}

void BusDistributedNotifications::addObserver(const QObject &observer, const QString &name,
                                              std::function<void()> handler)
{
    m_observations.removeIf([&](const Observation &observation) {
        return observation.observer == &observer && observation.name == name;
    });
    m_observations.append({&observer, name, std::move(handler)});
}

void BusDistributedNotifications::removeObserver(const QObject &observer)
{
    m_observations.removeIf(
        [&](const Observation &observation) { return observation.observer == &observer; });
}

void BusDistributedNotifications::post(const QString &name)
{
    const QDBusMessage signal = QDBusMessage::createSignal(objectPath, interfaceName, postedMember) << name;
    if (!m_bus.isConnected() || !m_bus.send(signal))
        QMetaObject::invokeMethod(
            this, [this, name] { posted(name); }, Qt::QueuedConnection);
}

void BusDistributedNotifications::posted(const QString &name)
{
    const QList<Observation> present = m_observations; // since a handler may remove itself or another
    for (const Observation &observation : present) {
        if (observation.name == name)
            callHandler(observation.observer, name);
    }
}

void BusDistributedNotifications::callHandler(const QObject *observer, const QString &name)
{
    for (const Observation &observation : QList(m_observations)) {
        if (observation.observer == observer && observation.name == name)
            return observation.handler();
    }
}

} // namespace platform
