#include "ctl/logfollower.h"

#include "scripting/dbus/busnames.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

using namespace Qt::StringLiterals;

namespace {

constexpr int longestFinish = 5000; // milliseconds

} // namespace

LogFollower::LogFollower(const Client &client, const QString &documentPath, Entry entry)
    : m_client(client)
    , m_entry(std::move(entry))
    , m_documentPath(documentPath)
{
    QDBusConnection connection = client.connection();
    connection.connect(bus::service, bus::applicationPath, bus::objectManagerInterface, u"InterfacesAdded"_s,
                       this, SLOT(objectAdded(QDBusMessage)));
    connection.connect(bus::service, {}, bus::documentInterface, u"LogAppended"_s, this,
                       SLOT(entryAppended(QDBusMessage)));
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
    Q_EMIT documentFound();
}

void LogFollower::entryAppended(const QDBusMessage &signal)
{
    if (signal.path() == m_documentPath)
        m_entry(signal.arguments().value(0).toString());
}

void LogFollower::finish()
{
    if (m_documentPath.isEmpty())
        return;
    // An answer can overtake entries that are on their way to the window; those of this one cannot. The
    // document may have been closed meanwhile, and then there is nothing left to tell.
    const auto property = Client::getProperty(m_documentPath, bus::documentInterface, u"UniqueID"_s);
    [[maybe_unused]] const Answer answer = m_client.call(property, longestFinish);
}
