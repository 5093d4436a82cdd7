#include "scripting/definition/reference.h"

#include "scripting/definition/scriptingdefinition.h"

using namespace Qt::StringLiterals;

namespace sealwright {

using scriptingdefinition::Class;
using scriptingdefinition::Command;
using scriptingdefinition::Event;
using scriptingdefinition::Parameter;
using scriptingdefinition::Type;
using scriptingdefinition::ValueType;

namespace {

const QString beginMarker = u"<!-- made from resources/Sealwright.sdef: begin -->\n"_s;
const QString endMarker = u"<!-- made from resources/Sealwright.sdef: end -->\n"_s;

QString row(const QStringList &cells)
{
    return u"| "_s + cells.join(u" | "_s) + u" |\n"_s;
}

QString heading(const QStringList &cells)
{
    return row(cells) + u'|' + u"---|"_s.repeated(cells.size()) + u'\n';
}

QString code(const QString &text)
{
    return u'`' + text + u'`';
}

QString described(ValueType type)
{
    return u"%1 %2"_s.arg(name(type), code(busSignature(type)));
}

QString described(const Parameter &parameter)
{
    const QString need = parameter.isOptional ? QString() : u", needed"_s;
    return u"%1 (%2%3): %4"_s.arg(code(parameter.key), name(parameter.type), need,
                                  parameter.term.description);
}

QString described(const QList<Parameter> &parameters)
{
    QStringList lines;
    for (const Parameter &parameter : parameters)
        lines.append(described(parameter));
    return lines.join(u"<br>"_s);
}

/// What a command with a form of its own takes: the properties of what it makes, if it makes something.
QString ownArguments(const Command &command)
{
    return command.result.type == Type::document ? u"`properties` `a{sv}`"_s : QString();
}

QString resultOf(const Command &command)
{
    if (command.result.type == Type::none)
        return {};
    const QString type = command.hasOwnForm ? described(command.result) : name(command.result);
    return u"%1: %2"_s.arg(type, command.resultDescription);
}

QString propertiesOf(const Class &definition)
{
    QString text = heading({u"Property"_s, u"Type"_s, u"Access"_s, u"Term, code"_s, u"What it is"_s});
    for (const auto &property : definition.properties) {
        if (property.type.type == Type::record)
            continue;
        const QString termCode = property.term.code.isNull() ? QString() : u", "_s + code(property.term.code);
        text += row({code(property.busName), described(property.type),
                     property.isWritable ? u"read, write"_s : u"read"_s, property.term.name + termCode,
                     property.term.description});
    }
    return text;
}

QString methodsOf(const Class &definition)
{
    QString text = heading({u"Method"_s, u"Arguments"_s, u"Result"_s, u"Term, code"_s, u"What it does"_s});
    for (const Command &command : definition.commands)
        text += row({code(command.busName),
                     command.hasOwnForm ? ownArguments(command) : described(command.parameters),
                     resultOf(command), command.term.name + u", "_s + code(command.term.code),
                     command.term.description});
    return text;
}

QString signalsOf(const Class &definition)
{
    if (definition.events.isEmpty())
        return {};
    QString text = u'\n' + heading({u"Signal"_s, u"Arguments"_s, u"When it comes"_s});
    for (const Event &event : definition.events) {
        QStringList arguments;
        for (const Parameter &parameter : event.parameters)
            arguments.append(u"%1 %2: %3"_s.arg(code(parameter.term.name), code(busSignature(parameter.type)),
                                                parameter.term.description));
        text += row({code(event.busName), arguments.join(u"<br>"_s), event.term.description});
    }
    return text;
}

QString capitalized(const QString &word)
{
    return word.left(1).toUpper() + word.mid(1);
}

} // namespace

QString scriptingReference()
{
    QString text;
    for (const Class &each : scriptingdefinition::classes())
        text += u"\n### %1\n\n`org.sealwright.%1`. %2\n\n"_s.arg(capitalized(each.term.name),
                                                                 each.term.description)
            + propertiesOf(each) + u'\n' + methodsOf(each) + signalsOf(each);
    return text + u'\n';
}

QString withScriptingReference(const QString &text)
{
    const qsizetype begin = text.indexOf(beginMarker);
    const qsizetype end = text.indexOf(endMarker, begin);
    if (begin < 0 || end < 0)
        return {};
    return text.left(begin + beginMarker.size()) + scriptingReference() + text.mid(end);
}

} // namespace sealwright
