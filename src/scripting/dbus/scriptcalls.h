#pragma once

#include "scripting/dbus/bushandlers.h"

#include <optional>

namespace sealwright {

/// Calls that reach a handler as script commands.
namespace scriptcalls {

/// A command as a method: a dictionary of arguments in, one variant out. Keys that the command does not list
/// are not looked at.
[[nodiscard]] BusMethod method(const scriptingdefinition::Command &command, const CommandHandler &handler);

/// Does the work as a command that ends at once, with its errors. Main thread.
[[nodiscard]] ScriptReply carryOut(const std::function<void()> &work);

/// Reads as such a command; the result is as it looks on the bus.
[[nodiscard]] ScriptReply read(const BusObject &object, const BusProperty &property);

/// The value, as it came over the bus, for the property's write; nothing if there is no write or the value is
/// of another type, after the call has been answered.
[[nodiscard]] std::optional<QVariant> checkedValue(const BusObject &object, const BusProperty &property,
                                                   const QVariant &value, const BusCall &call);

} // namespace scriptcalls

} // namespace sealwright
