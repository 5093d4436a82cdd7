#include "scripting/definition/scriptingdefinition.h"

#include "scripting/definition/xmlelement.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace sealwright::scriptingdefinition {

namespace {

struct TypeForm {
    Type type;
    QLatin1StringView name;
    QLatin1StringView busSignature;
};

constexpr TypeForm typeForms[] = {
    {Type::text, "text"_L1, "s"_L1},       {Type::boolean, "boolean"_L1, "b"_L1},
    {Type::integer, "integer"_L1, "x"_L1}, {Type::real, "real"_L1, "d"_L1},
    {Type::file, "file"_L1, "s"_L1},       {Type::rectangle, "rectangle"_L1, "(nnnn)"_L1},
    {Type::window, "window"_L1, "o"_L1},   {Type::document, "document"_L1, "o"_L1},
    {Type::any, "any"_L1, "v"_L1},         {Type::record, "record"_L1, ""_L1},
};

/// The row of a type; that of no type has empty texts.
TypeForm formOf(Type type)
{
    const auto *const found = std::find_if(std::begin(typeForms), std::end(typeForms),
                                           [type](const TypeForm &form) { return form.type == type; });
    return found == std::end(typeForms) ? TypeForm{} : *found;
}

Type typeNamed(const QString &name)
{
    const auto *const found = std::find_if(std::begin(typeForms), std::end(typeForms),
                                           [&name](const TypeForm &form) { return form.name == name; });
    return found == std::end(typeForms) ? Type::none : found->type;
}

QString capitalized(const QString &word)
{
    return word.left(1).toUpper() + word.mid(1);
}

/// The name on the bus of a key or a method.
QString busNameOf(QString key)
{
    key.truncate(key.indexOf(u':') < 0 ? key.size() : key.indexOf(u':'));
    return capitalized(key.startsWith("AE"_L1) ? key.mid(2) : key);
}

QString inOneWord(const QString &name)
{
    QString word;
    for (const QString &part : name.split(u' '))
        word += capitalized(part);
    return word;
}

Term termOf(const XmlElement &element)
{
    return {element.attribute(u"name"_s), element.attribute(u"code"_s), element.attribute(u"description"_s)};
}

bool isYes(const XmlElement &element, const QString &attribute)
{
    return element.attribute(attribute) == "yes"_L1;
}

QString keyOf(const XmlElement &element)
{
    return element.child(u"cocoa"_s).attribute(u"key"_s);
}

ValueType typeOf(const XmlElement &element)
{
    if (element.hasAttribute(u"type"_s))
        return {.type = typeNamed(element.attribute(u"type"_s)), .isList = false};
    const XmlElement type = element.child(u"type"_s);
    return {typeNamed(type.attribute(u"type"_s)), isYes(type, u"list"_s)};
}

QList<Parameter> parametersOf(const XmlElement &command)
{
    QList<Parameter> parameters;
    for (const XmlElement &parameter : command.childrenNamed(u"parameter"_s))
        parameters.append(
            {termOf(parameter), keyOf(parameter), typeOf(parameter), isYes(parameter, u"optional"_s)});
    return parameters;
}

Property propertyOf(const XmlElement &element)
{
    const QString key = keyOf(element);
    Property property{
        .term = termOf(element),
        .key = key,
        .busName = busNameOf(key),
        .type = typeOf(element),
        .isWritable = element.attribute(u"access"_s).contains(u'w'),
        .isWithdrawn = isYes(element, u"hidden"_s),
    };
    if (element.name == "element"_L1) {
        property.term.name = element.attribute(u"type"_s) + u's';
        property.type.isList = true;
    }
    return property;
}

Command commandOf(const XmlElement &response, const QList<XmlElement> &commands)
{
    const auto command =
        std::find_if(commands.cbegin(), commands.cend(), [&response](const XmlElement &each) {
            return each.attribute(u"name"_s) == response.attribute(u"command"_s);
        });
    if (command == commands.cend())
        return {};
    const QString method = response.child(u"cocoa"_s).attribute(u"method"_s);
    const bool hasOwnForm = response.hasAttribute(u"bus:name"_s);
    const XmlElement result = command->child(u"result"_s);
    return {
        .term = termOf(*command),
        .method = method,
        .busName = hasOwnForm ? response.attribute(u"bus:name"_s) : busNameOf(method),
        .parameters = parametersOf(*command),
        .result = typeOf(result),
        .resultDescription = result.attribute(u"description"_s),
        .hasOwnForm = hasOwnForm,
    };
}

Class classOf(const XmlElement &element, const QList<XmlElement> &commands, const QList<XmlElement> &events)
{
    Class made{.term = termOf(element), .properties = {}, .commands = {}, .events = {}};
    for (const XmlElement &list : element.childrenNamed(u"element"_s))
        made.properties.append(propertyOf(list));
    for (const XmlElement &property : element.childrenNamed(u"property"_s))
        made.properties.append(propertyOf(property));
    for (const XmlElement &response : element.childrenNamed(u"responds-to"_s))
        made.commands.append(commandOf(response, commands));
    for (const XmlElement &event : events) {
        if (event.child(u"direct-parameter"_s).attribute(u"type"_s) == made.term.name)
            made.events.append({termOf(event), inOneWord(event.attribute(u"name"_s)), parametersOf(event)});
    }
    return made;
}

QList<Class> readClasses()
{
    QFile file(u":/scripting/Sealwright.sdef"_s);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<XmlElement> commands;
    QList<XmlElement> events;
    QList<XmlElement> classElements;
    for (const XmlElement &suite : XmlElement::parse(file.readAll()).childrenNamed(u"suite"_s)) {
        commands += suite.childrenNamed(u"command"_s);
        events += suite.childrenNamed(u"event"_s);
        classElements += suite.childrenNamed(u"class"_s);
    }
    QList<Class> all;
    for (const XmlElement &element : classElements)
        all.append(classOf(element, commands, events));
    return all;
}

} // namespace

QString name(ValueType type)
{
    const QString word = formOf(type.type).name;
    return type.isList ? u"list of "_s + word : word;
}

QString busSignature(ValueType type)
{
    const QString signature = formOf(type.type).busSignature;
    return type.isList ? u'a' + signature : signature;
}

const Property *Class::property(const QString &key) const
{
    const auto found = std::find_if(properties.cbegin(), properties.cend(),
                                    [&key](const Property &property) { return property.key == key; });
    return found == properties.cend() ? nullptr : &*found;
}

const Command *Class::command(const QString &method) const
{
    const auto found = std::find_if(commands.cbegin(), commands.cend(),
                                    [&method](const Command &command) { return command.method == method; });
    return found == commands.cend() ? nullptr : &*found;
}

const QList<Class> &classes()
{
    static const QList<Class> all = readClasses();
    return all;
}

const Class *classNamed(const QString &name)
{
    const auto found = std::find_if(classes().cbegin(), classes().cend(),
                                    [&name](const Class &each) { return each.term.name == name; });
    return found == classes().cend() ? nullptr : &*found;
}

} // namespace sealwright::scriptingdefinition
