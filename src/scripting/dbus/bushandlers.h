#pragma once

#include "scripting/dbus/busobject.h"
#include "scripting/scriptproperty.h"

#include <QHash>

namespace sealwright {

/// How one property is read and written on an object of the bus.
struct BusAccess {
    std::function<QVariant(const BusObject &)> read;
    std::function<void(const BusObject &, const QVariant &)> write = nullptr;
    Takes takes = Takes::value;
    WhenAllAreRead whenAllAreRead = WhenAllAreRead::isRead;
};
using BusAccessByKey = QHash<QString, BusAccess>;

using CommandHandler = std::function<void(const BusObject &, const ScriptCommandPtr &)>;

/// A call that is no script command and takes and gives values of its own.
struct OwnCall {
    QList<BusArgument> in;
    QList<BusArgument> out;
    std::function<void(const BusObject &, const BusCall &)> handle;
};

/// What carries out the entries of one class of the scripting definition.
struct BusHandlers {
    BusAccessByKey properties; ///< by their keys
    QHash<QString, CommandHandler> commands; ///< by their methods
    QHash<QString, OwnCall> ownCalls; ///< by their methods
};

const BusHandlers &applicationHandlers();
const BusHandlers &documentHandlers();
const BusHandlers &windowHandlers();

/// The interface of a class. The definition has the names, the types and the order; an entry without a
/// handler is left out.
[[nodiscard]] BusInterface busInterface(const QString &name, const QString &className,
                                        const BusHandlers &handlers);

/// The properties of a scripting object, which `receiver` finds, or makes for the moment, for an object of
/// the bus.
template <class Object, class Found>
BusAccessByKey accessTo(const QList<ScriptProperty<Object>> &properties, Found (*receiver)(const BusObject &))
{
    BusAccessByKey access;
    for (const ScriptProperty<Object> &property : properties) {
        BusAccess one{[read = property.read, receiver](const BusObject &object) {
                          Found found = receiver(object);
                          return read(found);
                      },
                      nullptr, property.takes};
        if (property.write)
            one.write = [write = property.write, receiver](const BusObject &object, const QVariant &value) {
                Found found = receiver(object);
                write(found, value);
            };
        access.insert(property.key, one);
    }
    return access;
}

} // namespace sealwright
