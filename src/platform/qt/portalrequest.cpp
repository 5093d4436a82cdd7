#include "platform/qt/portalrequest.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString interface = u"org.freedesktop.portal.Request"_s;
constexpr int forever = 2'147'483'647; // milliseconds, which is no limit to the library

QString handleOf(const QDBusConnection &bus, const QString &token)
{
    const QString sender = bus.baseService().remove(u':').replace(u'.', u'_');
    return u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(sender, token);
}

} // namespace

PortalRequest::PortalRequest(QDBusConnection bus, const QString &token, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    follow(handleOf(m_bus, token));
}

void PortalRequest::follow(const QString &handle)
{
    if (!m_handle.isEmpty())
        m_bus.disconnect(service, m_handle, interface, u"Response"_s, this,
                         SLOT(response(uint, QVariantMap)));
    m_handle = handle;
    m_bus.connect(service, m_handle, interface, u"Response"_s, this, SLOT(response(uint, QVariantMap)));
}

void PortalRequest::begin(const QDBusMessage &call)
{
    auto *const answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call, forever), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *answer;
        if (reply.isError())
            end(failure, {});
        else if (reply.value().path() != m_handle) // of a portal before version 0.9
            follow(reply.value().path());
    });
}

void PortalRequest::close()
{
    disconnect(this, &PortalRequest::ended, nullptr, nullptr);
    m_bus.send(QDBusMessage::createMethodCall(service, m_handle, interface, u"Close"_s));
    deleteLater();
}

void PortalRequest::response(uint code, const QVariantMap &results)
{
    end(code == success ? success : cancelled, results); // 2 is "ended in some other way"
}

void PortalRequest::end(uint code, const QVariantMap &results)
{
    deleteLater();
    Q_EMIT ended(code, results);
}

} // namespace platform
