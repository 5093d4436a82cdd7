#pragma once

#include "scripting/dbus/buscall.h"
#include "scripting/definition/scriptingdefinition.h"
#include "scripting/scriptproperty.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

namespace sealwright {

class AppDelegate;
class BusObjects;
class MainWinController;
struct BusInterface;

/// One object of the bus, as one connection asks for it. Lives no longer than the call.
struct BusObject {
    AppDelegate &application;
    const BusObjects &objects;
    MainWinController *document; ///< the document, or the window's; null on the application
    QList<const BusInterface *> interfaces;
    QStringList children; ///< the path elements that go on from this path
    QString caller; ///< empty when nobody asks
};

struct BusArgument {
    QString name;
    QString type; ///< signature
};

/// Whether the answer with all properties has this one.
enum class WhenAllAreRead { isRead, isLeftOut };

struct BusProperty {
    scriptingdefinition::Property definition;
    /// As a `ScriptProperty` has them, on an object of the bus.
    std::function<QVariant(const BusObject &)> read;
    std::function<void(const BusObject &, const QVariant &)> write = nullptr;
    Takes takes = Takes::value;
    WhenAllAreRead whenAllAreRead = WhenAllAreRead::isRead;
};

struct BusMethod {
    QString name;
    QList<BusArgument> in;
    QList<BusArgument> out;
    /// Answers the call, now or later. The arguments are of the types above.
    std::function<void(const BusObject &, const BusCall &)> handle;
    bool worksDuringLaunch = false; ///< the others wait until launch has ended
    QString description = {};
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

// The interfaces of the project, each in a file of its own.
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
[[nodiscard]] QMap<QString, QVariantMap> readAllProperties(const BusObject &object);

} // namespace sealwright
