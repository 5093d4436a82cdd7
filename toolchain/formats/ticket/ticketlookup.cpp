#include "formats/ticket/ticketlookup.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace toolchain::ticket {

namespace {

LookupAnswer answerOf(const QJsonObject &record)
{
    const QString value =
        record.value(u"fields"_s).toObject().value(u"signedTicket"_s).toObject().value(u"value"_s).toString();
    const auto ticket =
        QByteArray::fromBase64Encoding(value.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!value.isEmpty() && ticket)
        return {LookupAnswer::Kind::found, ticket.decoded, {}};
    const QJsonValue reason = record.value(u"reason"_s);
    return {LookupAnswer::Kind::notFound, {}, reason.isString() ? reason.toString() : QString()};
}

} // namespace

QByteArray lookupBody(const QString &recordName)
{
    const QJsonObject record{{u"recordName"_s, recordName}};
    return QJsonDocument(QJsonObject{{u"records"_s, QJsonArray{record}}}).toJson(QJsonDocument::Compact);
}

LookupAnswer readLookupReply(const QByteArray &body, const QString &recordName)
{
    const QJsonArray records = QJsonDocument::fromJson(body).object().value(u"records"_s).toArray();
    for (const QJsonValue &value : records) {
        const QJsonObject record = value.toObject();
        if (record.value(u"recordName"_s).toString() == recordName)
            return answerOf(record);
    }
    return {};
}

} // namespace toolchain::ticket
