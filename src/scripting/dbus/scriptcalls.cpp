#include "scripting/dbus/scriptcalls.h"

#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"
#include "scripting/dbus/objectvalues.h"

#include <QDBusObjectPath>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace sealwright::scriptcalls {

namespace {

using scriptingdefinition::Parameter;
using scriptingdefinition::Type;

/// The value as a handler expects it; nothing if it has the wrong type.
std::optional<QVariant> evaluated(const BusObject &object, const QVariant &given, const Parameter &parameter)
{
    // Whatever is no file URL is the handler's to refuse, with a number.
    const Takes takes = parameter.type.type == Type::file ? Takes::anything : Takes::valueOrNothing;
    if (busvalue::isTooLong(given))
        return std::nullopt;
    const auto value = objectvalues::fromBus(object, given, parameter.type, takes);
    const bool isNegative = parameter.type.type == Type::integer && value && value->toLongLong() < 0;
    return isNegative ? std::nullopt : value; // there is no page below 0
}

/// The arguments as a handler expects them; nothing if one has the wrong type, which is then named.
std::optional<QVariantMap> evaluated(const BusObject &object, const QVariantMap &given,
                                     const QList<Parameter> &parameters, QString *wrongKey)
{
    QVariantMap result;
    for (const Parameter &parameter : parameters) {
        if (!given.contains(parameter.key))
            continue;
        const auto value = evaluated(object, given.value(parameter.key), parameter);
        if (!value) {
            *wrongKey = parameter.key;
            return std::nullopt;
        }
        if (value->isValid())
            result.insert(parameter.key, *value);
    }
    return result;
}

QString refusalOf(const scriptingdefinition::Property &definition, const QVariant &value)
{
    const QString type = busSignature(definition.type);
    const bool isWindow = definition.type == scriptingdefinition::ValueType{Type::window};
    if (isWindow && value.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return u"%1 takes a window, and %2 is none."_s.arg(definition.busName,
                                                           value.value<QDBusObjectPath>().path());
    return u"%1 takes a value of the type %2."_s.arg(definition.busName, type);
}

void answer(const BusCall &call, const ScriptReply &reply)
{
    if (reply.isError())
        call.replyWithScriptError(reply);
    else
        call.reply({QVariant::fromValue(QDBusVariant(busvalue::toBus(reply.result)))});
}

} // namespace

BusMethod method(const scriptingdefinition::Command &command, const CommandHandler &handler)
{
    const auto handle = [name = command.busName, parameters = command.parameters,
                         handler](const BusObject &object, const BusCall &call) {
        QString wrongKey;
        const auto values = evaluated(object, call.dictionary(0), parameters, &wrongKey);
        if (!values)
            return call.replyWithError(buserror::invalidArgs,
                                       u"The argument %1 of %2 has the wrong type."_s.arg(wrongKey, name));
        const auto scriptCommand = std::make_shared<ScriptCommand>(
            *values, [call](const ScriptReply &reply) { answer(call, reply); });
        scriptCommand->execute([&](const ScriptCommandPtr &executing) { handler(object, executing); });
    };
    return {command.busName, {{u"arguments"_s, u"a{sv}"_s}}, {{u"result"_s, u"v"_s}}, handle,
            false,           command.term.description};
}

ScriptReply carryOut(const std::function<void()> &work)
{
    ScriptReply ended;
    const auto command =
        std::make_shared<ScriptCommand>(QVariantMap(), [&ended](const ScriptReply &reply) { ended = reply; });
    command->execute([&work](const ScriptCommandPtr &) { work(); });
    return ended;
}

ScriptReply read(const BusObject &object, const BusProperty &property)
{
    QVariant value;
    ScriptReply reply = carryOut([&] { value = property.read(object); });
    reply.result = objectvalues::toBus(object, value);
    return reply;
}

std::optional<QVariant> checkedValue(const BusObject &object, const BusProperty &property,
                                     const QVariant &value, const BusCall &call)
{
    const QString &name = property.definition.busName;
    if (!property.write) {
        call.replyWithError(buserror::propertyReadOnly, u"%1 is read-only."_s.arg(name));
        return std::nullopt;
    }
    if (busvalue::isTooLong(value)) {
        call.replyWithError(buserror::invalidArgs,
                            u"%1 takes at most %2 characters."_s.arg(name).arg(busvalue::mostCharacters));
        return std::nullopt;
    }
    const auto typed = objectvalues::fromBus(object, value, property.definition.type, property.takes);
    if (!typed)
        call.replyWithError(buserror::invalidArgs, refusalOf(property.definition, value));
    return typed;
}

} // namespace sealwright::scriptcalls
