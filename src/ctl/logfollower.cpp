#include "ctl/logfollower.h"

#include "ctl/output.h"
#include "scripting/dbus/busnames.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestFinish = 5000; // milliseconds

} // namespace

LogFollower::LogFollower(const Client &client, const QString &documentPath)
    : m_client(client)
    , m_documentPath(documentPath)
{
    QDBusConnection connection = client.connection();
    connection.connect(bus::service, bus::applicationPath, bus::objectManagerInterface, u"InterfacesAdded"_s,
                       this, SLOT(objectAdded(QDBusMessage)));
    connection.connect(bus::service, {}, bus::documentInterface, u"LogAppended"_s, this,
                       SLOT(entryAppended(QDBusMessage)));
    connect(&m_interrupt, &Interrupt::arrived, this, [this] {
        if (m_cancel == Cancel::notAsked)
            m_cancel = Cancel::asked;
        cancelOnce();
    });
}

void LogFollower::objectAdded(const QDBusMessage &signal)
{
    if (!m_documentPath.isEmpty() || signal.signature() != "oa{sa{sv}}"_L1)
        return;
    const auto interfaces = qdbus_cast<QMap<QString, QVariantMap>>(signal.arguments().at(1));
    const QString caller = interfaces.value(bus::documentInterface).value(u"Caller"_s).toString();
    if (caller != m_client.connection().baseService())
        return;
    m_documentPath = signal.arguments().at(0).value<QDBusObjectPath>().path();
    cancelOnce();
}

void LogFollower::entryAppended(const QDBusMessage &signal)
{
    if (signal.path() == m_documentPath)
        output::printError(signal.arguments().value(0).toString());
}

void LogFollower::cancelOnce()
{
    if (m_cancel != Cancel::asked || m_documentPath.isEmpty())
        return;
    m_cancel = Cancel::sent;
    m_client.connection().send(Client::method(m_documentPath, bus::documentInterface, u"Cancel"_s));
}

void LogFollower::finish()
{
    if (m_documentPath.isEmpty())
        return;
    // An answer can overtake entries that are on their way to the window; those of this one cannot. The
    // document may have been closed meanwhile, and then there is nothing left to print.
    const auto property = Client::getProperty(m_documentPath, bus::documentInterface, u"UniqueID"_s);
    [[maybe_unused]] const Answer answer = m_client.call(property, longestFinish);
}
