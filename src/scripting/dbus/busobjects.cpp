#include "scripting/dbus/busobjects.h"

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
    if (path == bus::applicationPath) {
        BusObject found = object(
            nullptr,
            {&applicationInterface(), &desktopInterface(), &objectManagerInterface(), &propertiesInterface()},
            caller);
        found.children = {u"document"_s, u"window"_s};
        return found;
    }
    if (path == bus::documentsPath || path == bus::windowsPath) {
        BusObject found = object(nullptr, {}, caller);
        found.children = elements(path == bus::documentsPath ? &Entry::path : &Entry::windowPath);
        return found;
    }
    const EntryPtr entry = entryAt(path);
    if (!entry)
        return std::nullopt;
    const BusInterface &own = path == entry->path ? documentInterface() : windowInterface();
    return object(entry->document, {&own, &propertiesInterface()}, caller);
}

BusObject BusObjects::object(MainWinController *document, const QList<const BusInterface *> &interfaces,
                             const QString &caller) const
{
    return {.application = m_application,
            .objects = *this,
            .document = document,
            .interfaces = interfaces,
            .children = {},
            .caller = caller};
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

QList<QDBusObjectPath> BusObjects::paths(const QList<MainWinController *> &documents) const
{
    QList<QDBusObjectPath> all;
    for (const MainWinController *const document : documents)
        all.append(path(*document));
    return all;
}

QList<QDBusObjectPath> BusObjects::paths(const QList<platform::Window *> &windows) const
{
    QList<QDBusObjectPath> all;
    for (const platform::Window *const window : windows)
        all.append(path(*window));
    return all;
}

platform::Window *BusObjects::window(const QDBusObjectPath &path) const
{
    const EntryPtr entry = entryAt(path.path());
    return entry && path.path() == entry->windowPath ? &entry->document->window() : nullptr;
}

MainWinController *BusObjects::document(const QDBusObjectPath &path) const
{
    const EntryPtr entry = entryAt(path.path());
    return entry && path.path() == entry->path ? entry->document : nullptr;
}

QString BusObjects::callerOf(const MainWinController &document) const
{
    const EntryPtr entry = m_byObject.value(&document);
    return entry ? entry->caller : QString();
}

} // namespace sealwright
