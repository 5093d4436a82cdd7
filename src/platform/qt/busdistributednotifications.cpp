#include "platform/qt/busdistributednotifications.h"

#include <QDBusMessage>

#include <algorithm>
#include <utility>

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
                                              std::function<void()> handler, Repeats repeats)
{
    m_observations.removeIf([&](const Observation &observation) {
        return observation.observer == &observer && observation.name == name;
    });
    m_observations.append({&observer, name, std::move(handler), repeats});
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
            notify(observation.observer, name);
    }
}

BusDistributedNotifications::Observation *BusDistributedNotifications::find(const QObject *observer,
                                                                            const QString &name)
{
    const auto found =
        std::find_if(m_observations.begin(), m_observations.end(), [&](const Observation &observation) {
            return observation.observer == observer && observation.name == name;
        });
    return found == m_observations.end() ? nullptr : &*found;
}

void BusDistributedNotifications::notify(const QObject *observer, const QString &name)
{
    Observation *const observation = find(observer, name);
    if (!observation)
        return;
    if (observation->isCatchingUp) {
        observation->isMissing = true;
        return;
    }
    observation->isCatchingUp = observation->repeats == Repeats::areMerged;
    const auto handler = observation->handler;
    handler();
    // Behind all that has come while the handler ran.
    QMetaObject::invokeMethod(
        this, [this, observer, name] { catchUp(observer, name); }, Qt::QueuedConnection);
}

void BusDistributedNotifications::catchUp(const QObject *observer, const QString &name)
{
    Observation *const observation = find(observer, name);
    if (!observation)
        return;
    observation->isCatchingUp = false;
    if (std::exchange(observation->isMissing, false))
        notify(observer, name);
}

} // namespace platform
