#include "scripting/dbus/scriptcalls.h"

#include "scripting/dbus/busnames.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace scriptcalls {

namespace {

QVariant fileUrlOrAsItIs(const QVariant &value)
{
    const QUrl url =
        busvalue::fileUrl(value.metaType() == QMetaType::fromType<QString>() ? value.toString() : QString());
    return url.isEmpty() ? value : url;
}

/// There is no page below 0.
std::optional<QVariant> pageNumber(const QVariant &given)
{
    const auto number = busvalue::fromBus(given, u"x"_s);
    return number && number->toLongLong() < 0 ? std::nullopt : number;
}

/// The value as a handler expects it; nothing if it has the wrong type.
std::optional<QVariant> evaluated(const QVariant &given, ArgumentType type)
{
    switch (type) {
    case ArgumentType::fileUrl:
        return fileUrlOrAsItIs(given); // whatever is no file URL is the handler's to refuse, with a number
    case ArgumentType::boolean:
        return busvalue::fromBus(given, u"b"_s);
    case ArgumentType::pageNumber:
        return pageNumber(given);
    case ArgumentType::text:
        return busvalue::fromBus(given, u"s"_s);
    }
    return std::nullopt;
}

/// The arguments as a handler expects them; nothing if one has the wrong type, which is then named.
std::optional<QVariantMap> evaluated(const QVariantMap &given, const QList<CommandArgument> &arguments,
                                     QString *wrongKey)
{
    QVariantMap result;
    for (const auto &[key, type] : arguments) {
        if (!given.contains(key))
            continue;
        const auto value = evaluated(given.value(key), type);
        if (!value) {
            *wrongKey = key;
            return std::nullopt;
        }
        if (value->isValid())
            result.insert(key, *value);
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

ScriptReply carryOut(const std::function<void()> &work, const QVariant *result = nullptr)
{
    ScriptReply ended;
    const auto command =
        std::make_shared<ScriptCommand>(QVariantMap(), [&ended](const ScriptReply &reply) { ended = reply; });
    command->execute([&](const ScriptCommandPtr &executing) {
        work();
        executing->resumeExecutionWithResult(result ? *result : QVariant());
    });
    return ended;
}

} // namespace

BusMethod command(const QString &name, const QList<CommandArgument> &arguments,
                  std::function<void(const BusObject &, const ScriptCommandPtr &)> handler)
{
    const auto handle = [name, arguments, handler = std::move(handler)](const BusObject &object,
                                                                        const BusCall &call) {
        QString wrongKey;
        const auto values = evaluated(call.dictionary(0), arguments, &wrongKey);
        if (!values)
            return call.replyWithError(buserror::invalidArgs,
                                       u"The argument %1 of %2 has the wrong type."_s.arg(wrongKey, name));
        const auto scriptCommand = std::make_shared<ScriptCommand>(
            *values, [call](const ScriptReply &reply) { answer(call, reply); });
        scriptCommand->execute([&](const ScriptCommandPtr &executing) { handler(object, executing); });
    };
    return {name, {{u"arguments"_s, u"a{sv}"_s}}, {{u"result"_s, u"v"_s}}, handle};
}

ScriptReply read(const BusObject &object, const BusProperty &property)
{
    QVariant value;
    return carryOut([&] { value = property.read(object); }, &value);
}

std::optional<Assignment> checkedAssignment(const BusProperty &property, const QVariant &value,
                                            const BusCall &call)
{
    if (!property.write) {
        call.replyWithError(buserror::propertyReadOnly, u"%1 is read-only."_s.arg(property.name));
        return std::nullopt;
    }
    const auto typed =
        property.refusesEveryValue ? std::optional(value) : busvalue::fromBus(value, property.type);
    if (!typed) {
        call.replyWithError(buserror::invalidArgs,
                            u"%1 takes a value of the type %2."_s.arg(property.name, property.type));
        return std::nullopt;
    }
    return Assignment{&property, *typed};
}

ScriptReply write(const BusObject &object, const QList<Assignment> &assignments)
{
    return carryOut([&] {
        for (const auto &[property, value] : assignments)
            property->write(object, value);
    });
}

void fail(qint64 number)
{
    if (const auto executing = ScriptCommand::executingCommand())
        executing->setScriptErrorNumber(number);
}

} // namespace scriptcalls
