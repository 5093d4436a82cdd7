#pragma once

#include <QList>
#include <QString>

namespace sealwright {

/// What scripts can reach, as resources/Sealwright.sdef lays it down: the one source of names, types and
/// descriptions. The format:
/// https://developer.apple.com/library/archive/documentation/Cocoa/Conceptual/ScriptableCocoaApplications/SApps_creating_sdef/SAppsCreateSdef.html
namespace scriptingdefinition {

enum class Type { none, text, boolean, integer, real, file, rectangle, window, document, any, record };

struct ValueType {
    Type type = Type::none;
    bool isList = false;
    bool operator==(const ValueType &) const = default;
};

/// The word in the definition: "text", or "list of text".
[[nodiscard]] QString name(ValueType type);
/// How such a value looks on the bus; empty for a record, which is no single value there.
[[nodiscard]] QString busSignature(ValueType type);

/// What everything with a name has.
struct Term {
    QString name; ///< as a script writes it
    QString code; ///< four characters, or eight of a command or an event
    QString description;
};

struct Parameter {
    Term term;
    QString key; ///< in a command's arguments
    ValueType type;
    bool isOptional = false;
};

/// A property of a class, or a list of its elements.
struct Property {
    Term term;
    QString key;
    QString busName;
    ValueType type;
    bool isWritable = false;
    bool isWithdrawn = false;
};

/// A command as one class takes it.
struct Command {
    Term term;
    QString method; ///< with its colons
    QString busName;
    QList<Parameter> parameters;
    ValueType result;
    QString resultDescription;
    /// On the bus its arguments and its result are its own, and not a dictionary and one value.
    bool hasOwnForm = false;
};

struct Event {
    Term term;
    QString busName;
    QList<Parameter> parameters; ///< but for the object, which is the sender on the bus
};

struct Class {
    Term term;
    QList<Property> properties;
    QList<Command> commands;
    QList<Event> events;

    /// Null if there is none with that key or method.
    const Property *property(const QString &key) const;
    const Command *command(const QString &method) const;
};

/// The classes "application", "document" and "window".
[[nodiscard]] const QList<Class> &classes();
/// Null if there is none of that name.
[[nodiscard]] const Class *classNamed(const QString &name);

} // namespace scriptingdefinition

} // namespace sealwright
