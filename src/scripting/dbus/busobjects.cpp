#include "scripting/dbus/busobjects.h"

#include "app/appdelegate.h"
#include "document/mainwincontroller.h"
#include "scripting/dbus/busnames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QString below(const QString &path, const QString &element)
{
    return path + u'/' + element;
}

} // namespace

BusObjects::BusObjects(AppDelegate &application, std::shared_ptr<LastErrors> lastErrors)
    : m_application(application)
    , m_lastErrors(std::move(lastErrors))
{
}

void BusObjects::add(MainWinController &document, const QString &caller)
{
    const auto entry = std::make_shared<const Entry>(
        Entry{&document, &document.window(), path(document).path(),
              below(bus::windowsPath, QString::number(++m_lastWindowNumber)), caller});
    m_entries.append(entry);
    for (const QString &path : {entry->path, entry->windowPath})
        m_byPath.insert(path, entry);
    m_byObject.insert(entry->document, entry);
    m_byObject.insert(entry->window, entry);
}

void BusObjects::remove(MainWinController &document)
{
    const EntryPtr entry = m_byObject.take(&document);
    if (!entry)
        return;
    m_byObject.remove(entry->window);
    for (const QString &path : {entry->path, entry->windowPath})
        m_byPath.remove(path);
    m_entries.removeOne(entry);
}

std::optional<BusObject> BusObjects::find(const QString &path, const QString &caller) const
{
    if (path == bus::applicationPath)
        return object(
            NSApplicationScripting(m_application),
            {&applicationInterface(), &desktopInterface(), &objectManagerInterface(), &propertiesInterface()},
            {u"document"_s, u"window"_s}, caller);
    if (path == bus::documentsPath)
        return object({}, {}, elements(&Entry::path), caller);
    if (path == bus::windowsPath)
        return object({}, {}, elements(&Entry::windowPath), caller);
    const EntryPtr entry = m_byPath.value(path);
    if (!entry)
        return std::nullopt;
    MainWinController &document = *entry->document;
    if (path == entry->path)
        return object(MainWinControllerScripting(document), {&documentInterface(), &propertiesInterface()},
                      {}, caller);
    return object(NSWindowScripting(document), {&windowInterface(), &propertiesInterface()}, {}, caller);
}

BusObject BusObjects::object(const BusReceiver &receiver, const QList<const BusInterface *> &interfaces,
                             const QStringList &children, const QString &caller) const
{
    return {m_application, *this, receiver, interfaces, children, caller};
}

QStringList BusObjects::elements(QString Entry::*path) const
{
    QStringList all;
    for (const EntryPtr &entry : m_entries)
        all.append(((*entry).*path).section(u'/', -1));
    return all;
}

QList<QDBusObjectPath> BusObjects::managedPaths() const
{
    QList<QDBusObjectPath> all;
    for (const EntryPtr &entry : m_entries)
        all << QDBusObjectPath(entry->path) << QDBusObjectPath(entry->windowPath);
    return all;
}

QDBusObjectPath BusObjects::path(const MainWinController &document) const
{
    return QDBusObjectPath(below(bus::documentsPath, bus::pathElement(document.uniqueID)));
}

QDBusObjectPath BusObjects::path(const platform::Window &window) const
{
    const EntryPtr entry = m_byObject.value(&window);
    return QDBusObjectPath(entry ? entry->windowPath : u"/"_s);
}

QString BusObjects::callerOf(const MainWinController &document) const
{
    const EntryPtr entry = m_byObject.value(&document);
    return entry ? entry->caller : QString();
}

} // namespace sealwright
