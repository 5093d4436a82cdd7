#include "platform/qt/busdistributednotifications.h"

using namespace Qt::StringLiterals;

namespace platform {

BusDistributedNotifications::BusDistributedNotifications(QDBusConnection bus)
    : m_bus(std::move(bus))
{
    m_bus.connect({}, u"/org/sealwright/DistributedNotifications"_s,
                  u"org.sealwright.DistributedNotifications"_s, u"Posted"_s, u"s"_s, this,
                  SLOT(posted(QString)));
}

void BusDistributedNotifications::addObserver(const QString &name, std::function<void()> handler)
{
    m_handlers[name] = std::move(handler);
}

void BusDistributedNotifications::removeAllObservers()
{
    m_handlers.clear();
}

void BusDistributedNotifications::posted(const QString &name)
{
    // A copy, since the handler may remove itself.
    if (const auto handler = m_handlers.value(name))
        handler();
}

} // namespace platform
