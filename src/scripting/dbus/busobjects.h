#pragma once

#include "scripting/dbus/busobject.h"

#include <QDBusObjectPath>
#include <QHash>

#include <memory>
#include <optional>

namespace sealwright {

/// Which objects there are and under which paths. Main thread.
class BusObjects {
public:
    BusObjects(AppDelegate &application, std::shared_ptr<LastErrors> lastErrors);

    /// `caller` is the connection that had the document made; empty if it was nobody on the bus.
    void add(MainWinController &document, const QString &caller);
    void remove(MainWinController &document);

    /// The object at a path. One without interfaces is only a step on the way to others.
    [[nodiscard]] std::optional<BusObject> find(const QString &path, const QString &caller = {}) const;
    /// All paths below the application's.
    [[nodiscard]] QList<QDBusObjectPath> managedPaths() const;

    [[nodiscard]] QDBusObjectPath path(const MainWinController &document) const;
    [[nodiscard]] QDBusObjectPath path(const platform::Window &window) const;

    /// Of documents or windows.
    template <class Object>
    [[nodiscard]] QList<QDBusObjectPath> paths(const QList<Object *> &objects) const
    {
        QList<QDBusObjectPath> all;
        for (const Object *const object : objects)
            all.append(path(*object));
        return all;
    }

    [[nodiscard]] QString callerOf(const MainWinController &document) const;
    const LastErrors &lastErrors() const { return *m_lastErrors; }

private:
    struct Entry {
        MainWinController *document;
        const platform::Window *window;
        QString path;
        QString windowPath; ///< never used again
        QString caller;
    };
    using EntryPtr = std::shared_ptr<const Entry>;

    BusObject object(const BusReceiver &receiver, const QList<const BusInterface *> &interfaces,
                     const QStringList &children, const QString &caller) const;
    QStringList elements(QString Entry::*path) const;

    AppDelegate &m_application;
    std::shared_ptr<LastErrors> m_lastErrors;
    QList<EntryPtr> m_entries;
    QHash<QString, EntryPtr> m_byPath; ///< each under both of its paths: there may be thousands
    QHash<const void *, EntryPtr> m_byObject; ///< and under its document and its window
    quint64 m_lastWindowNumber = 0;
};

} // namespace sealwright
