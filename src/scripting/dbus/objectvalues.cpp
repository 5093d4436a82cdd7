#include "scripting/dbus/objectvalues.h"

#include "document/mainwincontroller.h"
#include "scripting/dbus/busobjects.h"
#include "scripting/dbus/busvalue.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

namespace sealwright::objectvalues {

namespace {

using scriptingdefinition::Type;
using scriptingdefinition::ValueType;

template <class Value>
bool holds(const QVariant &value)
{
    return value.metaType() == QMetaType::fromType<Value>();
}

template <class Object>
QVariant pathTo(const BusObject &object, const QVariant &value)
{
    const Object *const found = value.value<Object *>();
    return found ? QVariant::fromValue(object.objects.path(*found)) : busvalue::toBus({});
}

template <class Object>
QVariant pathsTo(const BusObject &object, const QVariant &value)
{
    return QVariant::fromValue(object.objects.paths(value.value<QList<Object *>>()));
}

/// A file's URL, or a text that is none.
QVariant fileFrom(const QVariant &text)
{
    const QUrl url = busvalue::fileUrl(text.toString());
    return url.isEmpty() ? text : url;
}

std::optional<QVariant> windowFrom(const BusObject &object, const QVariant &path)
{
    platform::Window *const window = object.objects.window(path.value<QDBusObjectPath>());
    return window ? std::optional<QVariant>(QVariant::fromValue(window)) : std::nullopt;
}

std::optional<QVariant> documentFrom(const BusObject &object, const QVariant &path)
{
    MainWinController *const document = object.objects.document(path.value<QDBusObjectPath>());
    return document ? std::optional<QVariant>(QVariant::fromValue(document)) : std::nullopt;
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
    if (type == ValueType{Type::text, true})
        return qdbus_cast<QStringList>(*plain);
    return plain;
}

} // namespace

QVariant toBus(const BusObject &object, const QVariant &value)
{
    if (holds<platform::Window *>(value))
        return pathTo<platform::Window>(object, value);
    if (holds<MainWinController *>(value))
        return pathTo<MainWinController>(object, value);
    if (holds<QList<platform::Window *>>(value))
        return pathsTo<platform::Window>(object, value);
    if (holds<QList<MainWinController *>>(value))
        return pathsTo<MainWinController>(object, value);
    return busvalue::toBus(value);
}

std::optional<QVariant> fromBus(const BusObject &object, const QVariant &value, ValueType type, Takes takes)
{
    const auto result = typed(object, value, type);
    if (takes == Takes::anything)
        return result.value_or(value);
    return result && !result->isValid() && takes == Takes::value ? std::nullopt : result;
}

} // namespace sealwright::objectvalues
