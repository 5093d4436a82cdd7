#include "scripting/dbus/bushandlers.h"

#include "scripting/dbus/scriptcalls.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

QList<BusProperty> propertiesOf(const scriptingdefinition::Class &definition, const BusAccessByKey &access)
{
    QList<BusProperty> properties;
    for (const scriptingdefinition::Property &property : definition.properties) {
        if (const auto found = access.constFind(property.key); found != access.constEnd())
            properties.append({property, found->read, found->write, found->takes, found->whenAllAreRead});
    }
    return properties;
}

QList<BusMethod> methodsOf(const scriptingdefinition::Class &definition, const BusHandlers &handlers)
{
    QList<BusMethod> methods;
    for (const scriptingdefinition::Command &command : definition.commands) {
        if (const auto found = handlers.commands.constFind(command.method);
            found != handlers.commands.constEnd())
            methods.append(scriptcalls::method(command, *found));
        if (const auto found = handlers.ownCalls.constFind(command.method);
            found != handlers.ownCalls.constEnd())
            methods.append(
                {command.busName, found->in, found->out, found->handle, false, command.term.description});
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

} // namespace

BusInterface busInterface(const QString &name, const QString &className, const BusHandlers &handlers)
{
    const scriptingdefinition::Class *const definition = scriptingdefinition::classNamed(className);
    if (!definition)
        return {.name = name};
    return {.name = name,
            .properties = propertiesOf(*definition, handlers.properties),
            .methods = methodsOf(*definition, handlers),
            .signalList = signalsOf(*definition)};
}

} // namespace sealwright
