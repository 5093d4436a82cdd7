#pragma once

#include "scripting/dbus/busobject.h"

#include <QDBusObjectPath>
#include <QHash>

#include <memory>
#include <optional>

namespace platform {
class Window;
}

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
    [[nodiscard]] QList<QDBusObjectPath> paths(const QList<MainWinController *> &documents) const;
    [[nodiscard]] QList<QDBusObjectPath> paths(const QList<platform::Window *> &windows) const;

    /// The window of a path; null if there is none.
    [[nodiscard]] platform::Window *window(const QDBusObjectPath &path) const;
    /// The document of a path; null if there is none.
    [[nodiscard]] MainWinController *document(const QDBusObjectPath &path) const;

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

    EntryPtr entryAt(const QString &path) const { return m_byPath.value(path); }
    BusObject object(MainWinController *document, const QList<const BusInterface *> &interfaces,
                     const QString &caller) const;
    QStringList elements(QString Entry::*path) const;

    AppDelegate &m_application;
    std::shared_ptr<LastErrors> m_lastErrors;
    QList<EntryPtr> m_entries;
    QHash<QString, EntryPtr> m_byPath; ///< each under both of its paths: there may be thousands
    QHash<const void *, EntryPtr> m_byObject; ///< and under its document and its window
    quint64 m_lastWindowNumber = 0;
};

} // namespace sealwright
