#pragma once

#include "scripting/dbus/buscall.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <functional>

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

struct BusProperty {
    QString name;
    QString type; ///< signature, of a value that is there
    /// An invalid value for none. What it sets on the executing command is the caller's error.
    std::function<QVariant(const BusObject &)> read;
    /// Takes a value of the type, or an invalid one for no value. Errors as above. Null if there is no write.
    std::function<void(const BusObject &, const QVariant &)> write = nullptr;
    /// The write has an error of its own for each value, whatever its type.
    bool refusesEveryValue = false;
};

struct BusMethod {
    QString name;
    QList<BusArgument> in;
    QList<BusArgument> out;
    /// Answers the call, now or later. The arguments are of the types above.
    std::function<void(const BusObject &, const BusCall &)> handle;
    bool worksDuringLaunch = false; ///< the others wait until launch has ended
};

struct BusSignal {
    QString name;
    QList<BusArgument> arguments;
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

/// The values of the interface, except those whose read is an error.
[[nodiscard]] QVariantMap readAllProperties(const BusObject &object, const BusInterface &interface);
/// The values of all interfaces that have any.
[[nodiscard]] QMap<QString, QVariantMap> readAllProperties(const BusObject &object);
