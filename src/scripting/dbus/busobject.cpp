#include "scripting/dbus/busobject.h"

#include "scripting/dbus/scriptcalls.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

template <class Entry>
const Entry *found(const QList<Entry> &entries, const QString &name, const QString &(*nameOf)(const Entry &))
{
    const auto entry = std::find_if(entries.cbegin(), entries.cend(),
                                    [&](const Entry &each) { return nameOf(each) == name; });
    return entry == entries.cend() ? nullptr : &*entry;
}

const QString &keyOf(const BusRow &row)
{
    return row.key;
}

const QString &nameOf(const BusProperty &property)
{
    return property.definition.busName;
}

const QString &nameOf(const BusMethod &method)
{
    return method.name;
}

// From the definition

QList<BusProperty> propertiesOf(const scriptingdefinition::Class &definition, const BusHandlers &handlers)
{
    QList<BusProperty> properties;
    for (const scriptingdefinition::Property &property : definition.properties) {
        if (const BusRow *const row = found(handlers.properties, property.key, keyOf))
            properties.append({*row, property});
    }
    return properties;
}

QList<BusMethod> methodsOf(const scriptingdefinition::Class &definition, const BusHandlers &handlers)
{
    QList<BusMethod> methods;
    for (const scriptingdefinition::Command &command : definition.commands) {
        if (const auto make = handlers.methods.value(command.method))
            methods.append(make(command));
    }
    return methods;
}

QList<BusSignal> signalsOf(const scriptingdefinition::Class &definition)
{
    QList<BusSignal> all;
    for (const scriptingdefinition::Event &event : definition.events) {
        BusSignal signal{event.busName, {}, event.term.description};
        for (const scriptingdefinition::Parameter &parameter : event.parameters)
            signal.arguments.append({parameter.term.name, busSignature(parameter.type)});
        all.append(signal);
    }
    return all;
}

// Introspection

QString lines(const QList<BusArgument> &arguments, const QString &direction)
{
    QString text;
    for (const auto &[name, type] : arguments)
        text += u"      <arg name=\"%1\" type=\"%2\"%3/>\n"_s.arg(name, type, direction);
    return text;
}

QString annotation(const QString &name, const QString &value)
{
    return u"      <annotation name=\"%1\" value=\"%2\"/>\n"_s.arg(name, value.toHtmlEscaped());
}

/// What browsers of the bus show as the entry's documentation.
QString documentation(const QString &description)
{
    return description.isEmpty() ? QString() : annotation(u"org.gtk.GDBus.DocString"_s, description);
}

QString lines(const BusMethod &method)
{
    return u"    <method name=\"%1\">\n"_s.arg(method.name) + documentation(method.description)
        + lines(method.in, u" direction=\"in\""_s) + lines(method.out, u" direction=\"out\""_s)
        + u"    </method>\n"_s;
}

QString lines(const BusSignal &signal)
{
    return u"    <signal name=\"%1\">\n"_s.arg(signal.name) + documentation(signal.description)
        + lines(signal.arguments, {}) + u"    </signal>\n"_s;
}

QString lines(const BusProperty &property)
{
    const auto &[term, key, name, type, isWritable, isWithdrawn] = property.definition;
    return u"    <property name=\"%1\" type=\"%2\" access=\"%3\">\n"_s.arg(
               name, busSignature(type), isWritable ? u"readwrite"_s : u"read"_s)
        + annotation(u"org.freedesktop.DBus.Property.EmitsChangedSignal"_s, u"false"_s)
        + (isWithdrawn ? annotation(u"org.freedesktop.DBus.Deprecated"_s, u"true"_s) : QString())
        + documentation(term.description) + u"    </property>\n"_s;
}

template <class Entry>
QString lines(const QList<Entry> &entries)
{
    QString text;
    for (const Entry &entry : entries)
        text += lines(entry);
    return text;
}

} // namespace

const BusProperty *BusInterface::property(const QString &propertyName) const
{
    return found<BusProperty>(properties, propertyName, nameOf);
}

const BusMethod *BusInterface::method(const QString &methodName) const
{
    return found<BusMethod>(methods, methodName, nameOf);
}

BusInterface busInterface(const QString &name, const QString &className, const BusHandlers &handlers)
{
    const scriptingdefinition::Class *const definition = scriptingdefinition::classNamed(className);
    if (!definition)
        return {.name = name};
    return {.name = name,
            .properties = propertiesOf(*definition, handlers),
            .methods = methodsOf(*definition, handlers),
            .signalList = signalsOf(*definition)};
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

QString introspection(const BusObject &object)
{
    QString text;
    for (const BusInterface *const interface : object.interfaces) {
        if (interface != &propertiesInterface()) // the library adds it
            text += u"  <interface name=\"%1\">\n"_s.arg(interface->name) + lines(interface->methods)
                + lines(interface->signalList) + lines(interface->properties) + u"  </interface>\n"_s;
    }
    for (const QString &child : object.children)
        text += u"  <node name=\"%1\"/>\n"_s.arg(child);
    return text;
}

} // namespace sealwright
