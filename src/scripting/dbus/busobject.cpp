#include "scripting/dbus/busobject.h"

#include "scripting/dbus/busvalue.h"
#include "scripting/dbus/scriptcalls.h"

#include <algorithm>

namespace sealwright {

namespace {

const QString &nameOf(const BusProperty &property)
{
    return property.definition.busName;
}

const QString &nameOf(const BusMethod &method)
{
    return method.name;
}

template <class Entry>
const Entry *named(const QList<Entry> &entries, const QString &name)
{
    const auto found = std::find_if(entries.cbegin(), entries.cend(),
                                    [&name](const Entry &entry) { return nameOf(entry) == name; });
    return found == entries.cend() ? nullptr : &*found;
}

} // namespace

const BusProperty *BusInterface::property(const QString &propertyName) const
{
    return named(properties, propertyName);
}

const BusMethod *BusInterface::method(const QString &methodName) const
{
    return named(methods, methodName);
}

QVariantMap readAllProperties(const BusObject &object, const BusInterface &interface)
{
    QVariantMap values;
    for (const BusProperty &property : interface.properties) {
        if (property.whenAllAreRead == WhenAllAreRead::isLeftOut)
            continue;
        const ScriptReply reply = scriptcalls::read(object, property);
        if (!reply.isError())
            values.insert(property.definition.busName, reply.result);
    }
    return values;
}

BusInterfaceProperties readAllProperties(const BusObject &object)
{
    BusInterfaceProperties values;
    for (const BusInterface *const interface : object.interfaces) {
        if (!interface->properties.isEmpty())
            values.insert(interface->name, readAllProperties(object, *interface));
    }
    return values;
}

} // namespace sealwright
