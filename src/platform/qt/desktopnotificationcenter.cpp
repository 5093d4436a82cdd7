#include "platform/qt/desktopnotificationcenter.h"

#include "platform/mainqueue.h"

#include <QDBusMessage>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace platform {

DesktopNotificationCenter::DesktopNotificationCenter(MainQueue &mainQueue, QDBusConnection bus,
                                                     ActivityTest isActive)
    : m_mainQueue(mainQueue)
    , m_bus(std::move(bus))
    , m_isActive(std::move(isActive))
{
}

bool DesktopNotificationCenter::isApplicationActive()
{
    return QGuiApplication::applicationState() == Qt::ApplicationActive;
}

void DesktopNotificationCenter::setShouldPresent(Presenter shouldPresent)
{
    m_shouldPresent = std::move(shouldPresent);
}

void DesktopNotificationCenter::deliver(const UserNotification &notification)
{
    m_mainQueue.post([this, notification] {
        const bool isWanted = !m_isActive() || (m_shouldPresent && m_shouldPresent(notification));
        if (isWanted)
            present(notification);
    });
}

void DesktopNotificationCenter::present(const UserNotification &notification)
{
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.Notifications"_s,
                                                       u"/org/freedesktop/Notifications"_s,
                                                       u"org.freedesktop.Notifications"_s, u"Notify"_s);
    constexpr uint replacesNone = 0;
    constexpr int usualTimeout = -1;
    // The service may take the body for markup.
    call << QCoreApplication::applicationName() << replacesNone << QGuiApplication::desktopFileName()
         << notification.title << notification.informativeText.toHtmlEscaped() << QStringList()
         << QVariantMap{{u"desktop-entry"_s, QGuiApplication::desktopFileName()}} << usualTimeout;
    m_bus.send(call);
}

} // namespace platform
