#pragma once

#include "platform/result.h"
#include "scripting/dbus/buscall.h"
#include "scripting/dbus/busobjects.h"

#include <QDBusServiceWatcher>
#include <QDBusVirtualObject>
#include <QHash>
#include <QTimer>

#include <chrono>

#include <deque>

namespace sealwright {

/// The application on the session bus: one tree of objects below one path. Main thread.
class ScriptingBus : public QDBusVirtualObject {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds usualRejoining = std::chrono::seconds(5);

    /// The application outlives this object. `rejoining` is the time between tries to come onto a bus, where
    /// there is none or it has gone.
    explicit ScriptingBus(AppDelegate &application, std::chrono::milliseconds rejoining = usualRejoining);
    /// Gives the name back, and has sent every answer by then.
    ~ScriptingBus() override;

    /// Puts the objects on the session bus and then takes the name; before the first document or after it.
    /// Calls other than `Open` and reads wait while the application's status is "loading". Fails where there
    /// is no bus or another process has the name, and may be tried again then; from now on it is also tried
    /// again by itself.
    platform::Outcome registerOnSessionBus();
    /// Takes the calls that have arrived so far without an event loop: what was to be opened by the call that
    /// started the application is there when launch asks for it.
    void takeArrivedCalls();

    /// Has the process that owns the name come to the front. False if none owns it, be it that it ended over
    /// this.
    [[nodiscard]] static bool activateRunningInstance();

    // For the bus library
    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

private:
    platform::Outcome connectToSessionBus();
    void rejoinIfAlone();
    void followApplication();
    void followDocument(MainWinController &document);
    void addDocument(MainWinController &document);
    void removeDocument(MainWinController &document);
    void announce(const QDBusObjectPath &path) const;
    void withdraw(const QDBusObjectPath &path) const;
    void sendManagerSignal(const QString &name, const QVariantList &arguments) const;

    void attend(const QString &caller);
    bool isLaunching() const;
    void serve(const BusCall &call);
    void serveNow(const BusCall &call);
    void serve(const BusCall &call, const BusObject &object, const BusInterface &interface,
               const BusMethod &method);
    void serveWaitingCalls();
    void holdCallsTo(const QString &path);
    void serveHeldCallsTo(const QString &path);

    AppDelegate &m_application;
    const std::shared_ptr<LastErrors> m_lastErrors;
    BusObjects m_objects;
    QDBusConnection m_connection;
    QDBusServiceWatcher m_callers;
    QTimer m_rejoining;
    bool m_followsApplication = false;
    QList<BusCall> m_waitingCalls; ///< for the end of launch
    struct HeldCalls {
        int holds = 0; ///< what has been queued, and has not run
        std::deque<BusCall> calls;
    };
    /// By the paths of documents whose latest command has queued work that has not begun: the status word
    /// tells of it only then, and the document knows one command at a time. And by the application's, while a
    /// document that is closed is still in its lists.
    QHash<QString, HeldCalls> m_heldCalls;
    QStringList m_newDocuments; ///< paths of those that the call being served has made
    QString m_maker; ///< the connection whose call is being served, if documents made now are its own
};

} // namespace sealwright
