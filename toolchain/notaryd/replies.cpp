#include "notaryd/replies.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

struct ErrorTexts {
    QString code;
    QString title;
    QString detail;
    QString see = {}; ///< where a person is sent to; empty: nowhere
};

ErrorTexts textsOf(int status, const QString &kind)
{
    if (kind == u"agreement"_s)
        return {u"FORBIDDEN.REQUIRED_AGREEMENTS_MISSING_OR_EXPIRED"_s,
                u"A required agreement is missing or has expired."_s,
                u"This request requires an in-effect agreement that has not been signed or has expired."_s};
    if (kind == u"provider"_s)
        return {u"FORBIDDEN.MISSING_PROVIDER"_s, u"This provider does not exist."_s,
                u"The provider of the API key could not be found."_s, u"/landing"_s};
    switch (status) {
    case 403:
        return {u"FORBIDDEN_ERROR"_s, u"This request is forbidden for security reasons"_s,
                u"The API key in use does not allow this request"_s};
    case 404:
        return {u"NOT_FOUND"_s, u"The specified resource does not exist"_s, u"There is no such resource"_s};
    case 429:
        return {u"RATE_LIMIT_EXCEEDED"_s, u"The request rate limit has been reached."_s,
                u"We've received too many requests for this API. Please wait and try again."_s};
    default:
        return {u"UNEXPECTED_ERROR"_s, u"An unexpected error occurred."_s,
                u"An unexpected error occurred on the server side."_s};
    }
}

QString requestId()
{
    return QString::number(QRandomGenerator::global()->generate64(), 36).toUpper().left(10) + u".0.0"_s;
}

Response errorReply(int status, const ErrorTexts &texts)
{
    QJsonObject error{{u"id"_s, requestId()},
                      {u"status"_s, QString::number(status)},
                      {u"code"_s, texts.code},
                      {u"title"_s, texts.title},
                      {u"detail"_s, texts.detail}};
    if (!texts.see.isEmpty())
        error.insert(u"links"_s, QJsonObject{{u"see"_s, texts.see}});
    Response response = jsonReply({{u"errors"_s, QJsonArray{error}}});
    response.status = status;
    if (status == 429) // https://developer.apple.com/documentation/appstoreconnectapi/identifying-rate-limits
        response.headers = {{"X-Rate-Limit", "user-hour-lim:3500;user-hour-rem:0;"}};
    return response;
}

QString usualKind(int status)
{
    if (status == 401)
        return u"text"_s;
    const bool isGateway = status == 400 || (status >= 502 && status <= 504) || status < 400;
    return isGateway ? u"html"_s : u"json"_s;
}

QByteArray page(int status)
{
    const QByteArray number = QByteArray::number(status);
    return "<html>\r\n<head><title>" + number + " Error</title></head>\r\n<body>\r\n<center><h1>" + number
        + " Error</h1></center>\r\n<hr><center>gateway</center>\r\n</body>\r\n</html>\r\n";
}

QJsonValue without(const QJsonValue &value, const QString &field)
{
    if (value.isArray()) {
        QJsonArray list;
        for (const QJsonValue &entry : value.toArray())
            list.append(without(entry, field));
        return list;
    }
    if (!value.isObject())
        return value;
    QJsonObject form;
    const QJsonObject whole = value.toObject();
    for (auto entry = whole.begin(); entry != whole.end(); ++entry) {
        if (entry.key() != field)
            form.insert(entry.key(), without(entry.value(), field));
    }
    return form;
}

QJsonValue withStatus(const QJsonValue &value, const QString &word)
{
    if (value.isArray()) {
        QJsonArray list;
        for (const QJsonValue &entry : value.toArray())
            list.append(withStatus(entry, word));
        return list;
    }
    if (!value.isObject())
        return value;
    QJsonObject form = value.toObject();
    for (auto entry = form.begin(); entry != form.end(); ++entry)
        entry.value() = entry.key() == u"status"_s ? QJsonValue(word) : withStatus(entry.value(), word);
    return form;
}

} // namespace

Response jsonReply(const QJsonObject &form)
{
    return {.status = 200, .body = QJsonDocument(form).toJson(QJsonDocument::Compact), .headers = {}};
}

Response statusReply(int status, const QString &kind)
{
    const QString form = kind.isEmpty() ? usualKind(status) : kind;
    if (form == u"text"_s)
        return {.status = status,
                .body = "Unauthenticated\n\nRequest ID: " + requestId().toLatin1() + "\n",
                .type = "text/plain",
                .headers = {}};
    if (form == u"html"_s)
        return {.status = status, .body = page(status), .type = "text/html", .headers = {}};
    return errorReply(status, textsOf(status, form));
}

Response failedReply(const QString &detail)
{
    ErrorTexts texts = textsOf(500, {});
    texts.detail = detail;
    return errorReply(500, texts);
}

Response unknownReply(const QString &type, const QString &id)
{
    return errorReply(404,
                      {u"NOT_FOUND"_s, u"The specified resource does not exist"_s,
                       u"There is no resource of type '%1' with id '%2'"_s.arg(type, id)});
}

Response storageError(const QString &code, const QString &message)
{
    const QByteArray text = message.isEmpty() ? code.toUtf8() : message.toHtmlEscaped().toUtf8();
    return {.status = storageStatus(code),
            .body = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Error><Code>" + code.toUtf8()
                + "</Code><Message>" + text + "</Message><RequestId>" + requestId().toLatin1()
                + "</RequestId></Error>",
            .type = "application/xml",
            .headers = {}};
}

Response faultReply(const Fault &fault)
{
    if (!fault.value.isObject())
        return statusReply(fault.value.toInt());
    Response response = statusReply(fault.member(u"code"_s).toInt(), fault.member(u"kind"_s).toString());
    const QJsonValue pause = fault.member(u"retryAfter"_s);
    if (pause.isDouble())
        response.headers.append({"Retry-After", QByteArray::number(pause.toInt())});
    return response;
}

Response spoilt(Response response, const Fault &fault)
{
    const QJsonDocument document = QJsonDocument::fromJson(response.body);
    if (fault.name == u"not-json"_s)
        return {.status = 200, .body = page(200), .type = "text/html", .headers = {}};
    if (fault.name == u"log-not-json"_s)
        return {.status = 200, .body = "this is not the log", .type = "text/plain", .headers = {}};
    if (fault.name == u"missing-field"_s && document.isObject())
        response.body = QJsonDocument(without(document.object(), fault.value.toString()).toObject()).toJson();
    if (fault.name == u"unknown-status"_s && document.isObject())
        response.body =
            QJsonDocument(withStatus(document.object(), fault.value.toString()).toObject()).toJson();
    if (fault.name == u"huge"_s && document.isObject()) {
        QJsonObject form = document.object();
        form.insert(u"padding"_s, QString(qsizetype(fault.number(0)), u'x'));
        response.body = QJsonDocument(form).toJson(QJsonDocument::Compact);
    }
    return response;
}

} // namespace notaryd
