#pragma once

#include "scripting/MainWinController+Scripting.h"
#include "scripting/NSApplication+Scripting.h"
#include "scripting/NSWindow+Scripting.h"
#include "scripting/dbus/buscall.h"
#include "scripting/dbus/busvalue.h"
#include "scripting/definition/scriptingdefinition.h"

#include <QStringList>

#include <variant>

namespace sealwright {

class AppDelegate;
class BusObjects;
struct BusInterface;

/// What a path of the bus stands for; nothing where it is only a step on the way to others.
using BusReceiver =
    std::variant<std::monostate, NSApplicationScripting, MainWinControllerScripting, NSWindowScripting>;

/// One object of the bus, as one connection asks for it. Lives no longer than the call.
struct BusObject {
    AppDelegate &application;
    const BusObjects &objects;
    BusReceiver receiver;
    QList<const BusInterface *> interfaces;
    QStringList children; ///< the path elements that go on from this path
    QString caller; ///< empty when nobody asks

    /// A copy, as short-lived as the object. The object is one of that kind.
    template <class Receiver>
    Receiver as() const
    {
        return std::get<Receiver>(receiver);
    }
};

/// The row of a scripting object's property, on whatever object of the bus that is.
using BusRow = ScriptProperty<const BusObject>;

struct BusProperty : BusRow {
    scriptingdefinition::Property definition;
};

struct BusArgument {
    QString name;
    QString type; ///< signature
};

/// When a method is answered; a call that comes too early waits.
enum class Readiness { afterLaunch, atOnce };

struct BusMethod {
    QString name;
    QList<BusArgument> in;
    QList<BusArgument> out;
    /// Answers the call, now or later. The arguments are of the types above.
    std::function<void(const BusObject &, const BusCall &)> handle;
    Readiness readiness = Readiness::afterLaunch;
    QString description = {};
    bool closesADocument = false; ///< in a moment, by the queue of the main thread
};

struct BusSignal {
    QString name;
    QList<BusArgument> arguments;
    QString description = {};
};

/// One list of all that an interface has. Calls, property access and introspection go by it.
struct BusInterface {
    QString name;
    QList<BusProperty> properties = {};
    QList<BusMethod> methods = {};
    QList<BusSignal> signalList = {};

    /// Null if there is none of that name.
    const BusProperty *property(const QString &propertyName) const;
    const BusMethod *method(const QString &methodName) const;
};

/// What carries out the entries of one class of the scripting definition.
struct BusHandlers {
    QList<BusRow> properties;
    /// By the methods of the definition, each made from its entry there.
    QHash<QString, std::function<BusMethod(const scriptingdefinition::Command &)>> methods;
};

const BusHandlers &applicationHandlers();
const BusHandlers &documentHandlers();
const BusHandlers &windowHandlers();

/// The interface of a class. The definition has the names, the types and the order; an entry without a
/// handler is left out.
[[nodiscard]] BusInterface busInterface(const QString &name, const QString &className,
                                        const BusHandlers &handlers);

// The interfaces of the project
const BusInterface &applicationInterface();
const BusInterface &desktopInterface();
const BusInterface &documentInterface();
const BusInterface &windowInterface();
// Standard ones. The library that carries the messages has the others.
const BusInterface &propertiesInterface();
const BusInterface &objectManagerInterface();

/// The values of the interface as they look on the bus, except those whose read is an error.
[[nodiscard]] QVariantMap readAllProperties(const BusObject &object, const BusInterface &interface);
/// The values of all interfaces that have any.
[[nodiscard]] BusInterfaceProperties readAllProperties(const BusObject &object);

/// What stands between the node tags of the object's introspection, but for the standard interfaces that the
/// bus library adds. The format:
/// https://dbus.freedesktop.org/doc/dbus-specification.html#introspection-format
[[nodiscard]] QString introspection(const BusObject &object);

/// Tells whoever listens on the bus of the document's log and status, until `context` goes or is disconnected
/// from the document.
void sendDocumentSignals(MainWinController &document, const QString &path, const QDBusConnection &connection,
                         const QObject *context);
void stopDocumentSignals(MainWinController &document, const QObject *context);

/// The properties of a scripting object as those of the objects of the bus that stand for one.
template <class Receiver>
QList<BusRow> rowsOf(const QList<ScriptProperty<Receiver>> &properties)
{
    QList<BusRow> rows;
    for (const ScriptProperty<Receiver> &property : properties) {
        const auto read = [read = property.read](const BusObject &object) {
            Receiver receiver = object.as<Receiver>();
            return read(receiver);
        };
        const auto write = [write = property.write](const BusObject &object, const QVariant &value) {
            Receiver receiver = object.as<Receiver>();
            write(receiver, value);
        };
        rows.append({property.key, read, property.write ? BusRow::Write(write) : nullptr, property.takes,
                     property.whenAllAreRead});
    }
    return rows;
}

} // namespace sealwright
