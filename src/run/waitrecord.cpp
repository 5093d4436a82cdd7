#include "run/waitrecord.h"

#include "platform/itempath.h"
#include "run/item.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

/// What was uploaded for the item.
QString packingOf(const WaitRecord &record)
{
    if (!Item(record.original).isBundle())
        return u"none"_s;
    return Item(record.item).isBundle() ? u"zip"_s : u"dmg"_s;
}

/// A name and no way to another folder.
bool isName(const QString &text)
{
    return !text.isEmpty() && !text.contains(u'/') && !text.contains(QChar::Null) && text != "."_L1
        && text != ".."_L1;
}

bool isUsable(const WaitRecord &record)
{
    return !record.isNone() && record.folder.startsWith(u'/') && isName(record.item)
        && isName(record.original);
}

} // namespace

QString WaitRecord::itemPath() const
{
    return itempath::appending(folder, item);
}

QString WaitRecord::originalPath() const
{
    return itempath::appending(itempath::folder(folder), original);
}

QByteArray toJson(const WaitRecord &record)
{
    const QJsonObject object{{u"identifier"_s, record.identifier},
                             {u"folder"_s, record.folder},
                             {u"item"_s, record.item},
                             {u"original"_s, record.original},
                             {u"kind"_s, itempath::lowerExtension(record.original)},
                             {u"packing"_s, packingOf(record)},
                             {u"since"_s, record.since.toUTC().toString(Qt::ISODate)},
                             {u"service"_s, record.service},
                             {u"appleID"_s, record.credentials.appleID},
                             {u"passwordItem"_s, record.credentials.passwordKey},
                             {u"provider"_s, record.credentials.providerName},
                             {u"logsToFile"_s, record.logsToFile},
                             {u"itemState"_s, QString::fromLatin1(record.itemState.toHex())}};
    return QJsonDocument(object).toJson();
}

std::optional<WaitRecord> waitRecordFromJson(const QByteArray &json)
{
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const auto text = [&object](const QString &key) { return object.value(key).toString(); };
    const WaitRecord record{.identifier = text(u"identifier"_s),
                            .folder = text(u"folder"_s),
                            .item = text(u"item"_s),
                            .original = text(u"original"_s),
                            .since = QDateTime::fromString(text(u"since"_s), Qt::ISODate),
                            .service = text(u"service"_s),
                            .credentials = {.appleID = text(u"appleID"_s),
                                            .passwordKey = text(u"passwordItem"_s),
                                            .providerName = text(u"provider"_s)},
                            .logsToFile = object.value("logsToFile"_L1).toBool(),
                            .itemState = QByteArray::fromHex(text(u"itemState"_s).toLatin1())};
    return isUsable(record) ? std::optional(record) : std::nullopt;
}

} // namespace sealwright
