#include "ctl/logfollower.h"

#include "scripting/dbus/busnames.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr int longestFinish = 5000; // milliseconds

} // namespace

LogFollower::LogFollower(const Client &client, const QString &documentPath, Entry entry, Documents documents)
    : m_client(client)
    , m_entry(std::move(entry))
    , m_documents(documents)
    , m_documentPaths(documentPath.isEmpty() ? QStringList() : QStringList{documentPath})
{
    QDBusConnection connection = client.connection();
    connection.connect(bus::service, bus::applicationPath, bus::objectManagerInterface, u"InterfacesAdded"_s,
                       this, SLOT(objectAdded(QDBusMessage)));
    connection.connect(bus::service, {}, bus::documentInterface, u"LogAppended"_s, this,
                       SLOT(entryAppended(QDBusMessage)));
}

void LogFollower::objectAdded(const QDBusMessage &signal)
{
    if ((m_documents == Documents::first && !m_documentPaths.isEmpty())
        || signal.signature() != "oa{sa{sv}}"_L1)
        return;
    const auto interfaces = qdbus_cast<QMap<QString, QVariantMap>>(signal.arguments().at(1));
    const QString caller = interfaces.value(bus::documentInterface).value(u"Caller"_s).toString();
    if (caller != m_client.connection().baseService())
        return;
    m_documentPaths.append(signal.arguments().at(0).value<QDBusObjectPath>().path());
    Q_EMIT documentFound();
}

void LogFollower::entryAppended(const QDBusMessage &signal)
{
    if (m_documentPaths.contains(signal.path()))
        m_entry(signal.arguments().value(0).toString());
}

void LogFollower::finish()
{
    // An answer can overtake entries that are on their way to the window; those of this one cannot. The
    // document may have been closed meanwhile, and then there is nothing left to tell.
    for (const QString &path : std::as_const(m_documentPaths))
        [[maybe_unused]] const Answer answer =
            m_client.call(Client::getProperty(path, bus::documentInterface, u"UniqueID"_s), longestFinish);
}

} // namespace sealwright
