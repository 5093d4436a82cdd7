#include "scripting/dbus/scriptcalls.h"

#include "document/mainwincontroller.h"
#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busobjects.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace sealwright::scriptcalls {

namespace {

using platform::Error;
using platform::Result;
using scriptingdefinition::Parameter;
using scriptingdefinition::Type;
using scriptingdefinition::ValueType;

// Values, which may be windows and documents, and how they look on the bus

template <class Object>
std::optional<QVariant> pathTo(const BusObjects &objects, const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<QList<Object *>>())
        return QVariant::fromValue(objects.paths(value.value<QList<Object *>>()));
    if (value.metaType() != QMetaType::fromType<Object *>())
        return std::nullopt;
    const Object *const found = value.value<Object *>();
    return found ? QVariant::fromValue(objects.path(*found)) : busvalue::toBus({});
}

QVariant toBus(const BusObject &object, const QVariant &value)
{
    if (const auto path = pathTo<platform::Window>(object.objects, value))
        return *path;
    return pathTo<MainWinController>(object.objects, value).value_or(busvalue::toBus(value));
}

/// A file's URL, or a text that is none.
QVariant fileFrom(const QVariant &text)
{
    const QUrl url = busvalue::fileUrl(text.toString());
    return url.isEmpty() ? text : url;
}

/// The document of the object at that path, if it is one of that kind; null otherwise.
template <class Receiver>
MainWinController *controllerAt(const BusObject &object, const QVariant &path)
{
    const auto found = object.objects.find(path.value<QDBusObjectPath>().path());
    const auto *const receiver = found ? std::get_if<Receiver>(&found->receiver) : nullptr;
    return receiver ? &receiver->controller() : nullptr;
}

std::optional<QVariant> windowFrom(const BusObject &object, const QVariant &path)
{
    MainWinController *const controller = controllerAt<NSWindowScripting>(object, path);
    return controller ? std::optional(QVariant::fromValue(&controller->window())) : std::nullopt;
}

std::optional<QVariant> documentFrom(const BusObject &object, const QVariant &path)
{
    MainWinController *const document = controllerAt<MainWinControllerScripting>(object, path);
    return document ? std::optional(QVariant::fromValue(document)) : std::nullopt;
}

std::optional<QVariant> typed(const BusObject &object, const QVariant &value, ValueType type)
{
    const auto plain = busvalue::fromBus(value, busSignature(type));
    if (!plain || !plain->isValid())
        return plain;
    if (type == ValueType{Type::file})
        return fileFrom(*plain);
    if (type == ValueType{Type::window})
        return windowFrom(object, *plain);
    if (type == ValueType{Type::document})
        return documentFrom(object, *plain);
    if (type == ValueType{Type::rectangle})
        return QVariant::fromValue(qdbus_cast<platform::QDRect>(*plain));
    if (type == ValueType{.type = Type::text, .isList = true})
        return qdbus_cast<QStringList>(*plain);
    return plain;
}

/// The value that came over the bus, as a scripting object takes it; nothing if it is not of the type, or
/// names a window that is not there. A value that may be anything is taken as it came then.
std::optional<QVariant> fromBus(const BusObject &object, const QVariant &value, ValueType type, Takes takes)
{
    const auto result = typed(object, value, type);
    if (takes == Takes::anything)
        return result.value_or(value);
    return result && !result->isValid() && takes == Takes::value ? std::nullopt : result;
}

// Commands

/// The value as a handler expects it; nothing if it has the wrong type.
std::optional<QVariant> evaluated(const BusObject &object, const QVariant &given, const Parameter &parameter)
{
    // Whatever is no file URL is the handler's to refuse, with a number.
    const Takes takes = parameter.type.type == Type::file ? Takes::anything : Takes::valueOrNothing;
    if (busvalue::isTooLong(given))
        return std::nullopt;
    const auto value = fromBus(object, given, parameter.type, takes);
    const bool isNegative = parameter.type.type == Type::integer && value && value->toLongLong() < 0;
    return isNegative ? std::nullopt : value; // there is no page below 0
}

/// Why a command does not take the argument.
QString refusalOf(const scriptingdefinition::Command &command, const Parameter &parameter,
                  const QVariant &given)
{
    const bool isDocument = parameter.type == ValueType{Type::document};
    if (isDocument && given.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return u"There is no object %1."_s.arg(given.value<QDBusObjectPath>().path());
    return u"The argument %1 of %2 has the wrong type."_s.arg(parameter.key, command.busName);
}

/// The arguments as a handler expects them; fails where one is not what it should be.
Result<QVariantMap> evaluated(const BusObject &object, const QVariantMap &given,
                              const scriptingdefinition::Command &command)
{
    QVariantMap result;
    for (const Parameter &parameter : command.parameters) {
        if (!given.contains(parameter.key))
            continue;
        const auto value = evaluated(object, given.value(parameter.key), parameter);
        if (!value)
            return Error{refusalOf(command, parameter, given.value(parameter.key))};
        if (value->isValid())
            result.insert(parameter.key, *value);
    }
    return result;
}

void answer(const BusCall &call, const ScriptReply &reply)
{
    if (reply.isError())
        call.replyWithScriptError(reply);
    else
        call.reply({QVariant::fromValue(QDBusVariant(busvalue::toBus(reply.result)))});
}

QString refusalOf(const scriptingdefinition::Property &definition, const QVariant &value)
{
    const bool isWindow = definition.type == ValueType{Type::window};
    if (isWindow && value.metaType() == QMetaType::fromType<QDBusObjectPath>())
        return u"%1 takes a window, and %2 is none."_s.arg(definition.busName,
                                                           value.value<QDBusObjectPath>().path());
    return u"%1 takes a value of the type %2."_s.arg(definition.busName, busSignature(definition.type));
}

} // namespace

MethodMaker command(const CommandHandler &handler)
{
    return [handler](const scriptingdefinition::Command &definition) {
        const auto handle = [definition, handler](const BusObject &object, const BusCall &call) {
            const auto values = evaluated(object, call.dictionary(0), definition);
            if (!values)
                return call.replyWithError(buserror::invalidArgs, values.error());
            const auto scriptCommand = std::make_shared<ScriptCommand>(
                *values, [call](const ScriptReply &reply) { answer(call, reply); });
            scriptCommand->execute([&](const ScriptCommandPtr &executing) { handler(object, executing); });
        };
        return ownCall({{u"arguments"_s, u"a{sv}"_s}}, {{u"result"_s, u"v"_s}}, handle)(definition);
    };
}

MethodMaker ownCall(const QList<BusArgument> &in, const QList<BusArgument> &out,
                    const std::function<void(const BusObject &, const BusCall &)> &handle)
{
    return [=](const scriptingdefinition::Command &definition) {
        return BusMethod{.name = definition.busName,
                         .in = in,
                         .out = out,
                         .handle = handle,
                         .description = definition.term.description};
    };
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
    reply.result = toBus(object, value);
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
    const auto taken = fromBus(object, value, property.definition.type, property.takes);
    if (!taken)
        call.replyWithError(buserror::invalidArgs, refusalOf(property.definition, value));
    return taken;
}

} // namespace sealwright::scriptcalls
