#include "platform/qt/desktopnotificationcenter.h"

#include "platform/mainqueue.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

const QString service = u"org.freedesktop.Notifications"_s;
const QString path = u"/org/freedesktop/Notifications"_s;
const QString interface = service;
const QString clickOnTheMessage = u"default"_s; // as the protocol calls that action

/// The actions of a message, each with its title, which services do not show of this one.
QStringList actionsOf(const UserNotification &notification)
{
    return notification.wasClicked ? QStringList{clickOnTheMessage, QString()} : QStringList();
}

} // namespace

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
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, u"Notify"_s);
    constexpr uint replacesNone = 0;
    constexpr int usualTimeout = -1;
    // The service may take the body for markup.
    call << QCoreApplication::applicationName() << replacesNone << QGuiApplication::desktopFileName()
         << notification.title << notification.informativeText.toHtmlEscaped() << actionsOf(notification)
         << QVariantMap{{u"desktop-entry"_s, QGuiApplication::desktopFileName()}} << usualTimeout;
    if (!notification.wasClicked) {
        m_bus.send(call);
        return;
    }
    hearOfClicks();
    auto *const number = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(number, &QDBusPendingCallWatcher::finished, this, [this, number, notification] {
        number->deleteLater();
        if (const QDBusPendingReply<uint> reply = *number; !reply.isError())
            m_clickable.insert(reply.value(), {notification.wasClicked, {}});
    });
}

void DesktopNotificationCenter::hearOfClicks()
{
    if (std::exchange(m_hearsOfClicks, true))
        return;
    m_bus.connect(service, path, interface, u"ActivationToken"_s, this, SLOT(activationToken(uint, QString)));
    m_bus.connect(service, path, interface, u"ActionInvoked"_s, this, SLOT(actionInvoked(uint, QString)));
    m_bus.connect(service, path, interface, u"NotificationClosed"_s, this,
                  SLOT(notificationClosed(uint, uint)));
}

// The service tells all applications of all messages.

void DesktopNotificationCenter::activationToken(uint message, const QString &token)
{
    if (const auto found = m_clickable.find(message); found != m_clickable.end())
        found->token = token;
}

void DesktopNotificationCenter::actionInvoked(uint message, const QString &action)
{
    if (action != clickOnTheMessage)
        return;
    if (const Clickable clicked = m_clickable.take(message); clicked.wasClicked)
        clicked.wasClicked(clicked.token);
}

void DesktopNotificationCenter::notificationClosed(uint message, uint)
{
    m_clickable.remove(message);
}

} // namespace platform
