#include "notaryd/tickets.h"

#include "notaryd/replies.h"

#include <QJsonDocument>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

constexpr qsizetype mostRecords = 200; // CloudKit's own bound

QJsonObject missing(const QString &name)
{
    return {{u"recordName"_s, name},
            {u"reason"_s, u"Record not found"_s},
            {u"serverErrorCode"_s, u"NOT_FOUND"_s}};
}

Response badRequest(const QString &reason)
{
    Response response = jsonReply({{u"serverErrorCode"_s, u"BAD_REQUEST"_s}, {u"reason"_s, reason}});
    response.status = 400;
    return response;
}

QJsonObject stampOf(const NotaryRequest &request)
{
    return {{u"timestamp"_s, request.decided.toMSecsSinceEpoch()},
            {u"userRecordName"_s, u"_local"_s},
            {u"deviceID"_s, u"2"_s}};
}

QJsonObject found(const QString &name, const NotaryRequest &request, const QByteArray &ticket)
{
    const QJsonObject value{{u"value"_s, QString::fromLatin1(ticket.toBase64())}, {u"type"_s, u"BYTES"_s}};
    return {{u"recordName"_s, name},
            {u"recordType"_s, u"DeveloperIDTicket"_s},
            {u"fields"_s, QJsonObject{{u"signedTicket"_s, value}}},
            {u"pluginFields"_s, QJsonObject()},
            {u"recordChangeTag"_s, request.uuid.left(8)},
            {u"created"_s, stampOf(request)},
            {u"modified"_s, stampOf(request)},
            {u"deleted"_s, false}};
}

bool vouchesFor(const NotaryRequest &request, int hashType, const QByteArray &hash)
{
    return std::any_of(request.ticketContents.begin(), request.ticketContents.end(),
                       [&](const toolchain::TicketEntry &entry) {
                           return entry.hashType == hashType && entry.hash == hash;
                       });
}

QJsonObject lookUp(Service &service, const Request &request, const QList<NotaryRequest> &submissions,
                   const QString &name)
{
    static const QRegularExpression form(uR"(\A2/([12])/([0-9a-f]{40})\z)"_s);
    const auto match = form.match(name);
    const QByteArray hash = match.captured(2).toLatin1();
    for (const NotaryRequest &candidate : submissions) {
        if (!match.hasMatch() || candidate.verdict() != toolchain::Verdict::success
            || !vouchesFor(candidate, match.captured(1).toInt(), hash))
            continue;
        const auto late = service.faults().holding(u"no-ticket-for"_s, candidate.uuid, request);
        const qint64 age = candidate.decided.secsTo(QDateTime::currentDateTimeUtc());
        if (late && double(age) < late->number(0))
            continue;
        const QByteArray ticket = service.vouching().ticketOf(candidate);
        if (!ticket.isEmpty())
            return found(name, candidate, ticket);
    }
    return missing(name);
}

Response answer(Service &service, const Request &request, const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    const QJsonArray records = document[u"records"].toArray();
    if (request.method != "POST" || !document[u"records"].isArray() || records.size() > mostRecords)
        return badRequest(u"a list of records is needed"_s);
    const auto submissions = service.submissions().all(); // read once for all records
    QJsonArray answers;
    for (const QJsonValue &record : records)
        answers.append(lookUp(service, request, submissions, record[u"recordName"].toString()));
    return jsonReply({{u"records"_s, answers}});
}

Response stamp(Service &service, const Request &request, const QByteArray &body)
{
    if (request.method != "POST" || request.headers.value("content-type") != "application/timestamp-query")
        return statusReply(400);
    const qint64 ahead = QDateTime::currentDateTimeUtc().secsTo(service.now(request));
    const QByteArray reply = service.vouching().timestamp(body, std::chrono::seconds(ahead));
    if (reply.isEmpty())
        return statusReply(503);
    return {.status = 200, .body = reply, .type = "application/timestamp-reply", .headers = {}};
}

} // namespace

std::unique_ptr<Handler> ticketHandler(Service &service, const Request &request)
{
    return std::make_unique<WholeBodyHandler>(
        [&service, request](const QByteArray &body) { return answer(service, request, body); });
}

std::unique_ptr<Handler> timestampHandler(Service &service, const Request &request)
{
    return std::make_unique<WholeBodyHandler>(
        [&service, request](const QByteArray &body) { return stamp(service, request, body); });
}

} // namespace notaryd
