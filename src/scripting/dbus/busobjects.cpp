#include "scripting/dbus/busobjects.h"

#include "document/mainwincontroller.h"
#include "scripting/dbus/busnames.h"

#include <algorithm>

using namespace Qt::StringLiterals;

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
    m_entries.append(
        {&document, bus::pathElement(document.uniqueID), QString::number(++m_lastWindowNumber), caller});
}

void BusObjects::remove(MainWinController &document)
{
    m_entries.removeIf([&document](const Entry &entry) { return entry.document == &document; });
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
        found.children = elements(path == bus::documentsPath ? &Entry::element : &Entry::windowElement);
        return found;
    }
    for (const Entry &entry : m_entries) {
        if (path == below(bus::documentsPath, entry.element))
            return object(entry.document, {&documentInterface(), &propertiesInterface()}, caller);
        if (path == below(bus::windowsPath, entry.windowElement))
            return object(entry.document, {&windowInterface(), &propertiesInterface()}, caller);
    }
    return std::nullopt;
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

QStringList BusObjects::elements(QString Entry::*element) const
{
    QStringList all;
    for (const Entry &entry : m_entries)
        all.append(entry.*element);
    return all;
}

QList<QDBusObjectPath> BusObjects::managedPaths() const
{
    QList<QDBusObjectPath> all;
    for (const Entry &entry : m_entries)
        all << path(*entry.document) << path(entry.document->window());
    return all;
}

const BusObjects::Entry *BusObjects::entry(const MainWinController &document) const
{
    const auto found = std::find_if(m_entries.cbegin(), m_entries.cend(),
                                    [&document](const Entry &each) { return each.document == &document; });
    return found == m_entries.cend() ? nullptr : &*found;
}

QDBusObjectPath BusObjects::path(const MainWinController &document) const
{
    return QDBusObjectPath(below(bus::documentsPath, bus::pathElement(document.uniqueID)));
}

QDBusObjectPath BusObjects::path(const platform::Window &window) const
{
    const auto found = std::find_if(m_entries.cbegin(), m_entries.cend(), [&window](const Entry &each) {
        return &each.document->window() == &window;
    });
    return found == m_entries.cend() ? QDBusObjectPath(u"/"_s)
                                     : QDBusObjectPath(below(bus::windowsPath, found->windowElement));
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
    const auto found = std::find_if(m_entries.cbegin(), m_entries.cend(), [&path](const Entry &each) {
        return path.path() == below(bus::windowsPath, each.windowElement);
    });
    return found == m_entries.cend() ? nullptr : &found->document->window();
}

MainWinController *BusObjects::document(const QDBusObjectPath &path) const
{
    const auto found = std::find_if(m_entries.cbegin(), m_entries.cend(), [&path](const Entry &each) {
        return path.path() == below(bus::documentsPath, each.element);
    });
    return found == m_entries.cend() ? nullptr : found->document;
}

QString BusObjects::callerOf(const MainWinController &document) const
{
    const Entry *const found = entry(document);
    return found ? found->caller : QString();
}
