#include "scripting/dbus/scriptingbus.h"

#include "app/appdelegate.h"
#include "platform/mainqueue.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"
#include "scripting/logging.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString connectionName = u"sealwright-scripting"_s;
const QString activationConnectionName = u"sealwright-activation"_s;

bool isLibraryCall(const QDBusMessage &message)
{
    const QString interface = message.interface();
    return interface == bus::introspectableInterface || interface == bus::peerInterface
        || (interface.isEmpty() && message.member() == "Introspect"_L1);
}

} // namespace

ScriptingBus::ScriptingBus(AppDelegate &application, std::chrono::milliseconds rejoining)
    : m_application(application)
    , m_lastErrors(std::make_shared<LastErrors>())
    , m_objects(application, m_lastErrors)
    , m_connection(QString())
{
    busvalue::registerTypes();
    m_rejoining.setInterval(rejoining);
    connect(&m_rejoining, &QTimer::timeout, this, &ScriptingBus::rejoinIfAlone);
    connect(&m_callers, &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString &caller) {
        m_lastErrors->forget(caller);
        m_callers.removeWatchedService(caller);
    });
}

ScriptingBus::~ScriptingBus()
{
    if (!m_connection.isConnected())
        return;
    m_connection.unregisterService(bus::service);
    QDBusConnection::disconnectFromBus(connectionName);
}

// Registration

platform::Outcome ScriptingBus::registerOnSessionBus()
{
    m_rejoining.start();
    const auto connected = m_connection.isConnected() ? platform::Outcome::success() : connectToSessionBus();
    if (!connected)
        return connected;
    if (!m_connection.registerService(bus::service))
        return platform::Outcome::failure(u"The name %1 is taken on the session bus."_s.arg(bus::service));
    return platform::Outcome::success();
}

platform::Outcome ScriptingBus::connectToSessionBus()
{
    QDBusConnection::disconnectFromBus(connectionName); // from one that has gone
    // A connection of its own: that of the library takes no calls before the event loop runs.
    m_connection = QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
    if (!m_connection.isConnected())
        return platform::Outcome::failure(m_connection.lastError().message());
    m_callers.setWatchedServices({});
    m_callers.setConnection(m_connection);
    m_callers.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    followApplication();
    if (!m_connection.registerVirtualObject(bus::applicationPath, this, QDBusConnection::SubPath))
        return platform::Outcome::failure(u"The objects could not be put on the session bus."_s);
    return platform::Outcome::success();
}

void ScriptingBus::rejoinIfAlone()
{
    if (!m_connection.isConnected())
        registerOnSessionBus().ignore();
}

/// On a bus after the first one the objects are those that there were.
void ScriptingBus::followApplication()
{
    if (std::exchange(m_followsApplication, true)) {
        for (const DocumentPtr &document : m_application.allControllers())
            followDocument(*document);
        return;
    }
    connect(&m_application, &AppDelegate::documentAdded, this,
            [this](MainWinController *document) { addDocument(*document); });
    connect(&m_application, &AppDelegate::documentRemoved, this,
            [this](MainWinController *document) { removeDocument(*document); });
    connect(&m_application.statusString, &Observable::changed, this, &ScriptingBus::serveWaitingCalls);
    for (const DocumentPtr &document : m_application.allControllers())
        addDocument(*document);
}

void ScriptingBus::takeArrivedCalls()
{
    // The bus answers in order: what it had for us before is here once its answer is.
    if (m_connection.isConnected() && m_connection.interface()->isServiceRegistered(bus::service))
        QCoreApplication::sendPostedEvents(this);
}

bool ScriptingBus::activateRunningInstance()
{
    const auto connection =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, activationConnectionName);
    bool isRunning = false;
    if (connection.isConnected()) {
        QDBusMessage message = QDBusMessage::createMethodCall(bus::service, bus::applicationPath,
                                                              bus::desktopInterface, u"Activate"_s);
        message.setAutoStartService(false);
        message << QVariantMap();
        connection.call(message);
        // Whatever the answer is: one that was about to quit may have gone with the call or after it.
        isRunning = connection.interface()->isServiceRegistered(bus::service);
    }
    QDBusConnection::disconnectFromBus(activationConnectionName);
    return isRunning;
}

// The objects

void ScriptingBus::addDocument(MainWinController &document)
{
    m_objects.add(document, m_maker);
    if (!m_maker.isEmpty())
        m_newDocuments.append(m_objects.path(document).path());
    announce(m_objects.path(document.window()));
    announce(m_objects.path(document));
    followDocument(document);
}

void ScriptingBus::followDocument(MainWinController &document)
{
    stopDocumentSignals(document, this);
    sendDocumentSignals(document, m_objects.path(document).path(), m_connection, this);
}

void ScriptingBus::removeDocument(MainWinController &document)
{
    stopDocumentSignals(document, this);
    withdraw(m_objects.path(document));
    withdraw(m_objects.path(document.window()));
    m_objects.remove(document);
}

void ScriptingBus::announce(const QDBusObjectPath &path) const
{
    const BusInterfaceProperties properties = readAllProperties(*m_objects.find(path.path()));
    sendManagerSignal(u"InterfacesAdded"_s, {QVariant::fromValue(path), QVariant::fromValue(properties)});
}

void ScriptingBus::withdraw(const QDBusObjectPath &path) const
{
    const QStringList names = readAllProperties(*m_objects.find(path.path())).keys();
    sendManagerSignal(u"InterfacesRemoved"_s, {QVariant::fromValue(path), names});
}

void ScriptingBus::sendManagerSignal(const QString &name, const QVariantList &arguments) const
{
    QDBusMessage signal = QDBusMessage::createSignal(bus::applicationPath, bus::objectManagerInterface, name);
    signal.setArguments(arguments);
    m_connection.send(signal);
}

QString ScriptingBus::introspect(const QString &path) const
{
    const auto object = m_objects.find(path);
    return object ? introspection(*object) : QString();
}

// Calls

bool ScriptingBus::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    if (isLibraryCall(message) && m_objects.find(message.path()))
        return false;
    if (message.isReplyRequired()) // others receive no error to ask about, and may be gone by now
        attend(message.service());
    serve(BusCall(message, connection, m_lastErrors));
    return true;
}

void ScriptingBus::attend(const QString &caller)
{
    if (m_lastErrors->attend(caller))
        m_callers.addWatchedService(caller);
}

bool ScriptingBus::isLaunching() const
{
    const QString word = m_application.statusString();
    return word.isEmpty() || word == status::loading;
}

void ScriptingBus::serve(const BusCall &call)
{
    if (const auto held = m_heldCalls.find(call.path()); held != m_heldCalls.end())
        return held->calls.push_back(call);
    serveNow(call);
}

void ScriptingBus::serveNow(const BusCall &call)
{
    qCDebug(scriptingLogging).noquote() << call.caller() << "calls" << call.member() << "of" << call.path();
    const auto object = m_objects.find(call.path(), call.caller());
    if (!object)
        return call.replyWithError(buserror::unknownObject, u"There is no object %1."_s.arg(call.path()));
    bool hasInterface = call.interface().isEmpty();
    for (const BusInterface *const interface : object->interfaces) {
        if (!call.interface().isEmpty() && interface->name != call.interface())
            continue;
        hasInterface = true;
        if (const BusMethod *const method = interface->method(call.member()))
            return serve(call, *object, *interface, *method);
    }
    if (!hasInterface)
        return call.replyWithError(buserror::unknownInterface,
                                   u"%1 has no interface %2."_s.arg(call.path(), call.interface()));
    call.replyWithError(buserror::unknownMethod, u"%1 has no method %2."_s.arg(call.path(), call.member()));
}

void ScriptingBus::serve(const BusCall &call, const BusObject &object, const BusInterface &interface,
                         const BusMethod &method)
{
    QString signature;
    for (const BusArgument &argument : method.in)
        signature += argument.type;
    if (call.signature() != signature)
        return call.replyWithError(buserror::invalidArgs,
                                   u"%1 takes arguments of the types \"%2\", not \"%3\"."_s.arg(
                                       method.name, signature, call.signature()));
    if (isLaunching() && method.readiness == Readiness::afterLaunch) {
        m_waitingCalls.append(call);
        return;
    }
    if (&interface == &applicationInterface())
        m_maker = call.caller();
    method.handle(object, call);
    m_maker.clear();
    if (&interface == &documentInterface())
        holdCallsTo(call.path());
    if (method.closesADocument)
        holdCallsTo(bus::applicationPath); // its lists are still the old ones
    for (const QString &document : std::exchange(m_newDocuments, {})) // the call may have begun work on it
        holdCallsTo(document);
}

/// What the call has queued comes before the next call: the queue of the main thread and the bus are one
/// order.
void ScriptingBus::holdCallsTo(const QString &path)
{
    ++m_heldCalls[path].holds;
    m_application.host().mainQueue.post([bus = QPointer(this), path] {
        if (bus)
            bus->serveHeldCallsTo(path);
    });
}

void ScriptingBus::serveHeldCallsTo(const QString &path)
{
    if (--m_heldCalls[path].holds > 0)
        return;
    auto held = m_heldCalls.take(path).calls;
    while (!held.empty()) {
        const BusCall call = std::move(held.front());
        held.pop_front();
        serveNow(call);
        if (const auto heldAgain = m_heldCalls.find(path); heldAgain != m_heldCalls.end()) {
            heldAgain->calls.swap(held);
            return;
        }
    }
}

void ScriptingBus::serveWaitingCalls()
{
    if (isLaunching())
        return;
    for (const BusCall &call : std::exchange(m_waitingCalls, {}))
        serve(call);
}

} // namespace sealwright
