#include "examine/choices.h"

#include "platform/propertylist/propertylist.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace sealwright::examine {

namespace {

QStringList texts(const QJsonArray &array)
{
    QStringList list;
    for (const auto &value : array)
        list.append(value.toString());
    return list;
}

/// An object, or the text of a property list, which knows kinds of values that JSON has not.
QVariantMap entitlementsIn(const QJsonValue &value)
{
    if (value.isString())
        return platform::propertyListFromData(value.toString().toUtf8()).valueOr({}).toMap();
    return value.toObject().toVariantMap();
}

} // namespace

platform::Result<Choices> choicesFromJson(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (!document.isObject())
        return platform::Error{u"The choices are no JSON object: %1."_s.arg(error.errorString())};
    const QJsonObject object = document.object();
    Choices choices;
    choices.entitlements = entitlementsIn(object.value("entitlements"_L1));
    choices.entitlementsError = object.value("entitlementsError"_L1).toString();
    choices.skipPaths = texts(object.value("skipPaths"_L1).toArray());
    choices.signsMainItemOnly = object.value("signsMainItemOnly"_L1).toBool();
    choices.packing = object.value("packing"_L1).toString() == "dmg"_L1 ? Packing::diskImage : Packing::zip;
    choices.signsDeep = object.value("signsDeep"_L1).toBool();
    choices.replacesSignatures = object.value("replacesSignatures"_L1).toBool(true);
    choices.team = object.value("team"_L1).toString();
    choices.fileTool = object.value("fileTool"_L1).toString();
    choices.countsSize = object.value("countsSize"_L1).toBool();
    return choices;
}

QByteArray toJson(const Choices &choices)
{
    const QJsonObject object{
        {u"entitlements"_s,
         QString::fromUtf8(platform::xmlPropertyListData(choices.entitlements).valueOr({}))},
        {u"entitlementsError"_s, choices.entitlementsError},
        {u"skipPaths"_s, QJsonArray::fromStringList(choices.skipPaths)},
        {u"signsMainItemOnly"_s, choices.signsMainItemOnly},
        {u"packing"_s, choices.packing == Packing::diskImage ? u"dmg"_s : u"zip"_s},
        {u"signsDeep"_s, choices.signsDeep},
        {u"replacesSignatures"_s, choices.replacesSignatures},
        {u"team"_s, choices.team},
        {u"fileTool"_s, choices.fileTool},
        {u"countsSize"_s, choices.countsSize},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace sealwright::examine
