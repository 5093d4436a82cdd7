#include "scripting/dbus/busintrospection.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

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
