#include "app/appdelegate.h"
#include "platform/preferences.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/busvalue.h"
#include "scripting/dbus/scriptcalls.h"

#include <QDBusVariant>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

/// The interfaces of the object that go by the name: all of them for an empty one. With none the call has
/// been answered.
QList<const BusInterface *> namedInterfaces(const BusObject &object, const BusCall &call)
{
    const QString name = call.text(0);
    if (name.isEmpty())
        return object.interfaces;
    for (const BusInterface *const interface : object.interfaces) {
        if (interface->name == name)
            return {interface};
    }
    call.replyWithError(buserror::unknownInterface, u"%1 has no interface %2."_s.arg(call.path(), name));
    return {};
}

/// The property that the call names, or null after the call has been answered.
const BusProperty *namedProperty(const BusObject &object, const BusCall &call)
{
    const QString name = call.text(1);
    const auto interfaces = namedInterfaces(object, call);
    for (const BusInterface *const interface : interfaces) {
        if (const BusProperty *const property = interface->property(name))
            return property;
    }
    if (!interfaces.isEmpty())
        call.replyWithError(buserror::unknownProperty, u"%1 has no property %2."_s.arg(call.path(), name));
    return nullptr;
}

void get(const BusObject &object, const BusCall &call)
{
    const BusProperty *const property = namedProperty(object, call);
    if (!property)
        return;
    const ScriptReply reply = scriptcalls::read(object, *property);
    if (reply.isError())
        call.replyWithScriptError(reply);
    else
        call.reply({QVariant::fromValue(QDBusVariant(reply.result))});
}

void set(const BusObject &object, const BusCall &call)
{
    const BusProperty *const property = namedProperty(object, call);
    if (!property)
        return;
    const auto value = scriptcalls::checkedValue(object, *property, call.variant(2), call);
    if (!value)
        return;
    const ScriptReply reply = scriptcalls::carryOut([&] { property->write(object, *value); });
    object.application.host().preferences.save(); // the next command of a script may read the file
    if (reply.isError())
        call.replyWithScriptError(reply);
    else
        call.reply();
}

void getAll(const BusObject &object, const BusCall &call)
{
    const auto interfaces = namedInterfaces(object, call);
    if (interfaces.isEmpty())
        return;
    QVariantMap values;
    for (const BusInterface *const interface : interfaces)
        values.insert(readAllProperties(object, *interface));
    call.reply({values});
}

void getManagedObjects(const BusObject &object, const BusCall &call)
{
    BusManagedObjects managed;
    const auto paths = object.objects.managedPaths();
    for (const QDBusObjectPath &path : paths) {
        if (const auto found = object.objects.find(path.path(), call.caller()))
            managed.insert(path, readAllProperties(*found));
    }
    call.reply({QVariant::fromValue(managed)});
}

const BusArgument interfaceName{u"interface_name"_s, u"s"_s};
const BusArgument propertyName{u"property_name"_s, u"s"_s};

} // namespace

const BusInterface &propertiesInterface()
{
    static const BusInterface interface {
        .name = bus::propertiesInterface, .methods = {
            {u"Get"_s, {interfaceName, propertyName}, {{u"value"_s, u"v"_s}}, get, Readiness::atOnce},
            {u"Set"_s, {interfaceName, propertyName, {u"value"_s, u"v"_s}}, {}, set, Readiness::atOnce},
            {u"GetAll"_s, {interfaceName}, {{u"properties"_s, u"a{sv}"_s}}, getAll, Readiness::atOnce},
        }
    };
    return interface;
}

const BusInterface &objectManagerInterface()
{
    static const BusInterface interface {
        .name = bus::objectManagerInterface,
        .methods = {{u"GetManagedObjects"_s,
                     {},
                     {{u"objects"_s, u"a{oa{sa{sv}}}"_s}},
                     getManagedObjects,
                     Readiness::atOnce}},
        .signalList = {
            {u"InterfacesAdded"_s, {{u"object"_s, u"o"_s}, {u"interfaces"_s, u"a{sa{sv}}"_s}}},
            {u"InterfacesRemoved"_s, {{u"object"_s, u"o"_s}, {u"interfaces"_s, u"as"_s}}},
        }
    };
    return interface;
}

} // namespace sealwright
