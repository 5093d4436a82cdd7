#pragma once

#include "scripting/dbus/busobject.h"

#include <optional>

namespace sealwright {

/// Calls that reach a scripting object as script commands, reads and writes. Main thread.
namespace scriptcalls {

using MethodMaker = std::function<BusMethod(const scriptingdefinition::Command &)>;
using CommandHandler = std::function<void(const BusObject &, const ScriptCommandPtr &)>;

/// A command as a method: a dictionary of arguments in, one variant out. Keys that the command does not list
/// are not looked at.
[[nodiscard]] MethodMaker command(const CommandHandler &handler);

/// The same of a scripting object's handler.
template <class Receiver>
MethodMaker command(void (Receiver::*handler)(const ScriptCommandPtr &))
{
    return command([handler](const BusObject &object, const ScriptCommandPtr &executing) {
        (object.as<Receiver>().*handler)(executing);
    });
}

/// The commands that the application and a document have alike, by their methods in the definition.
template <class Receiver>
QHash<QString, MethodMaker> sharedCommands()
{
    return {
        {QStringLiteral("AESubmitForNotarizing:"), command(&Receiver::AESubmitForNotarizing)},
        {QStringLiteral("AEStapleOnly:"), command(&Receiver::AEStapleOnly)},
        {QStringLiteral("AESignOnly:"), command(&Receiver::AESignOnly)},
        {QStringLiteral("AEFetchHistory:"), command(&Receiver::AEFetchHistory)},
        {QStringLiteral("AEPrepareForNotarizing:"), command(&Receiver::AEPrepareForNotarizing)},
        {QStringLiteral("AEExamine:"), command(&Receiver::AEExamine)},
    };
}

/// A call that is no script command and takes and gives values of its own.
[[nodiscard]] MethodMaker ownCall(const QList<BusArgument> &in, const QList<BusArgument> &out,
                                  const std::function<void(const BusObject &, const BusCall &)> &handle);

/// Does the work as a command that ends at once, with its errors.
[[nodiscard]] ScriptReply carryOut(const std::function<void()> &work);

/// Reads as such a command; the result is as it looks on the bus.
[[nodiscard]] ScriptReply read(const BusObject &object, const BusProperty &property);

/// The value, as it came over the bus, for the property's write; nothing if there is no write or the value is
/// of another type, after the call has been answered.
[[nodiscard]] std::optional<QVariant> checkedValue(const BusObject &object, const BusProperty &property,
                                                   const QVariant &value, const BusCall &call);

} // namespace scriptcalls

} // namespace sealwright
