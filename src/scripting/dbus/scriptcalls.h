#pragma once

#include "scripting/dbus/busobject.h"
#include "scripting/scriptcommand.h"

#include <optional>

/// Calls that reach a handler as script commands.
namespace scriptcalls {

enum class ArgumentType { fileUrl, boolean, pageNumber, text };

struct CommandArgument {
    QString key;
    ArgumentType type;
};

/// A command as a method: a dictionary of arguments in, one variant out. Keys that the command does not list
/// are not looked at.
[[nodiscard]] BusMethod command(const QString &name, const QList<CommandArgument> &arguments,
                                std::function<void(const BusObject &, const ScriptCommandPtr &)> handler);

/// Reads or writes as a command that ends at once. Main thread.
[[nodiscard]] ScriptReply read(const BusObject &object, const BusProperty &property);

struct Assignment {
    const BusProperty *property;
    QVariant value;
};
/// The assignment, if the property can be written and the value, as it came over the bus, is of its type;
/// nothing after the call has been answered.
[[nodiscard]] std::optional<Assignment> checkedAssignment(const BusProperty &property, const QVariant &value,
                                                          const BusCall &call);
/// All assignments are made, also when one of them is an error.
[[nodiscard]] ScriptReply write(const BusObject &object, const QList<Assignment> &assignments);

/// The number by which some properties refuse a write.
inline constexpr qint64 readOnlyNumber = -10003;
/// Sets the number on the executing command, without a text.
void fail(qint64 number);

} // namespace scriptcalls
