#include "notaryd/apicalls.h"

#include "notaryd/replies.h"
#include "notaryd/tokencheck.h"

#include <QFile>
#include <QJsonDocument>
#include <QMessageAuthenticationCode>
#include <QRegularExpression>

#include "formats/notary/serviceconfig.h"
#include "formats/statefolder.h"

using namespace Qt::StringLiterals;
using toolchain::Verdict;

namespace notaryd {

namespace {

constexpr qsizetype longestHistory = 100;
constexpr qint64 logLifetime = 6 * 60 * 60; // seconds
constexpr qsizetype longestName = 1024;

QString statusWord(const NotaryRequest &request)
{
    switch (request.verdict()) {
    case Verdict::inProgress:
        return u"In Progress"_s;
    case Verdict::success:
        return u"Accepted"_s;
    case Verdict::invalid:
        return u"Invalid"_s;
    }
    Q_UNREACHABLE();
}

QJsonObject withMeta(const QJsonValue &data)
{
    return {{u"data"_s, data}, {u"meta"_s, QJsonObject()}};
}

/// The media type alone, which may be written in any case and have parameters (RFC 9110, section 8.3.1).
bool isJson(const Request &request)
{
    const QByteArray type = request.headers.value("content-type").split(';').first();
    return type.trimmed().toLower() == "application/json";
}

class ApiCall {
public:
    ApiCall(Service &service, const Request &request)
        : m_service(service)
        , m_request(request)
        , m_rest(QString::fromUtf8(request.path.mid(QByteArrayView("/notary/v2/submissions").size())))
    {
    }

    Response answer(const QByteArray &body)
    {
        if (m_request.method != m_request.method.toUpper())
            return statusReply(400); // by the gateway, to which methods are the same in one case alone
        const QString keys = toolchain::notary::serviceFolder() + u"/keys"_s;
        const QString objection =
            objectionToToken(m_request.headers.value("authorization"), keys, m_service.now(m_request));
        if (!objection.isEmpty())
            return statusReply(401);
        if (m_rest.isEmpty())
            return m_request.method == "POST" ? submit(body) : history();
        return m_request.method == "GET" ? ofSubmission() : statusReply(404);
    }

private:
    Response submit(const QByteArray &body)
    {
        static const QRegularExpression digest(uR"(\A[0-9A-Fa-f]{64}\z)"_s);
        const QJsonObject form = QJsonDocument::fromJson(body).object();
        NotaryRequest request;
        request.archiveName = form[u"submissionName"].toString();
        request.archiveDigest = form[u"sha256"].toString().toLower().toLatin1();
        request.uploaded = QDateTime::currentDateTimeUtc();
        request.team = keyIdIn(m_request.headers.value("authorization")); // a key of this machine is a team's
        if (!isJson(m_request) || request.archiveName.isEmpty() || request.archiveName.size() > longestName
            || !digest.match(form[u"sha256"].toString()).hasMatch() || !readNotifications(form, request))
            return refused();
        const auto session = m_service.submissions().begin(request, m_service.now(m_request));
        return session ? placeReply(*session) : failedReply(session.error());
    }

    static bool readNotifications(const QJsonObject &form, NotaryRequest &request)
    {
        const QJsonValue list = form[u"notifications"];
        if (list.isUndefined())
            return true;
        for (const QJsonValue &entry : list.toArray()) {
            const QString target = entry[u"target"].toString();
            if (entry[u"channel"].toString() != u"webhook"_s
                || !toolchain::notary::isAcceptable(QUrl(target)))
                return false;
            request.webhooks.append(target);
        }
        return list.isArray();
    }

    static Response refused()
    {
        Response response =
            jsonReply({{u"errors"_s,
                        QJsonArray{QJsonObject{
                            {u"status"_s, u"400"_s},
                            {u"code"_s, u"PARAMETER_ERROR.INVALID"_s},
                            {u"title"_s, u"A parameter has an invalid value"_s},
                            {u"detail"_s,
                             u"application/json with a submissionName and a sha256 of 64 hexadecimal digits "
                             "is needed, and notifications go to https addresses"_s}}}}});
        response.status = 400;
        return response;
    }

    static Response placeReply(const UploadSession &session)
    {
        const QJsonObject attributes{
            {u"awsAccessKeyId"_s, QString::fromLatin1(session.credentials.accessKey)},
            {u"awsSecretAccessKey"_s, QString::fromLatin1(session.credentials.secretKey)},
            {u"awsSessionToken"_s, QString::fromLatin1(session.credentials.sessionToken)},
            {u"bucket"_s, QString::fromLatin1(session.bucket)},
            {u"object"_s, QString::fromLatin1(session.object)}};
        return jsonReply(withMeta(QJsonObject{
            {u"type"_s, u"newSubmissions"_s}, {u"id"_s, session.id}, {u"attributes"_s, attributes}}));
    }

    Response history()
    {
        if (m_request.method != "GET")
            return statusReply(400);
        QJsonArray list;
        for (const NotaryRequest &request : m_service.submissions().all()) {
            if (list.size() < longestHistory && !hasVanished(request))
                list.append(form(request));
        }
        return list.isEmpty() ? statusReply(404) : jsonReply(withMeta(list));
    }

    Response ofSubmission()
    {
        static const QRegularExpression call(
            uR"(\A/([0-9A-Fa-f]{8}(?:-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12})(/logs)?\z)"_s);
        const auto match = call.match(m_rest);
        if (!match.hasMatch())
            return statusReply(404);
        const QString id = match.captured(1).toLower();
        return match.captured(2).isEmpty() ? status(id) : log(id);
    }

    Response status(const QString &id)
    {
        if (isUnknownStill(u"unknown-at-first"_s, id))
            return unknownReply(u"submissions"_s, id);
        const auto request = m_service.submissions().ask(id);
        return request && !hasVanished(*request) ? jsonReply(withMeta(form(*request)))
                                                 : unknownReply(u"submissions"_s, id);
    }

    Response log(const QString &id)
    {
        const auto request = m_service.submissions().find(id);
        if (!request || request->verdict() == Verdict::inProgress || hasVanished(*request)
            || isUnknownStill(u"no-log-at-first"_s, id))
            return unknownReply(u"submissionsLog"_s, id);
        const QJsonObject attributes{{u"developerLogUrl"_s, logAddress(id)}};
        return jsonReply(withMeta(
            QJsonObject{{u"type"_s, u"submissionsLog"_s}, {u"id"_s, id}, {u"attributes"_s, attributes}}));
    }

    [[nodiscard]] QString logAddress(const QString &id) const;

    /// Whether the first so many questions for this submission are not over yet.
    bool isUnknownStill(const QString &fault, const QString &id)
    {
        const auto found = m_service.faults().holding(fault, id, m_request);
        return found && m_service.countQuestion(fault, id) <= qint64(found->number(0));
    }

    bool hasVanished(const NotaryRequest &request)
    {
        const auto fault = m_service.faults().holding(u"vanishes"_s, request.uuid, m_request);
        return fault && double(request.uploaded.secsTo(QDateTime::currentDateTimeUtc())) >= fault->number(0);
    }

    QJsonObject form(const NotaryRequest &request)
    {
        const bool isHeldBack =
            m_service.faults().holding(u"never-decided"_s, request.uuid, m_request).has_value();
        const QJsonObject attributes{
            {u"createdDate"_s, request.uploaded.toUTC().toString(u"yyyy-MM-dd'T'HH:mm:ss.zzz'Z'"_s)},
            {u"name"_s, request.archiveName},
            {u"status"_s, isHeldBack ? u"In Progress"_s : statusWord(request)}};
        return {{u"type"_s, u"submissions"_s}, {u"id"_s, request.uuid}, {u"attributes"_s, attributes}};
    }

    Service &m_service;
    const Request m_request;
    const QString m_rest; ///< of the path, behind the calls' common beginning
};

QByteArray logSignature(const Service &service, const QString &id, const QByteArray &expires)
{
    return QMessageAuthenticationCode::hash(id.toLatin1() + '\n' + expires, service.facts().logSecret,
                                            QCryptographicHash::Sha256)
        .toHex();
}

QString ApiCall::logAddress(const QString &id) const
{
    const QByteArray expires =
        QByteArray::number(QDateTime::currentDateTimeUtc().addSecs(logLifetime).toSecsSinceEpoch());
    return u"%1/artifacts/%2/developer_log.json?Expires=%3&Signature=%4"_s.arg(
        m_service.facts().origin, id, QString::fromLatin1(expires),
        QString::fromLatin1(logSignature(m_service, id, expires)));
}

Response artifact(Service &service, const Request &request)
{
    static const QRegularExpression form(uR"(\A/artifacts/([0-9a-f-]{36})/developer_log\.json\z)"_s);
    const auto match = form.match(QString::fromUtf8(request.path));
    const QString id = match.captured(1);
    const QByteArray expires = request.queryValue("Expires");
    if (request.method != "GET" && request.method != "HEAD")
        return storageError(u"MethodNotAllowed"_s);
    if (request.headers.contains("authorization"))
        return storageError(u"InvalidArgument"_s, u"Only one auth mechanism allowed"_s);
    if (!match.hasMatch() || request.queryValue("Signature") != logSignature(service, id, expires)
        || expires.toLongLong() < QDateTime::currentSecsSinceEpoch())
        return storageError(u"AccessDenied"_s, u"Request has expired"_s);
    QFile file(toolchain::NotaryState(toolchain::notaryFolder()).logPath(id));
    if (!file.open(QIODevice::ReadOnly))
        return storageError(u"NoSuchKey"_s);
    return {.status = 200, .body = file.readAll(), .headers = {}};
}

} // namespace

std::unique_ptr<Handler> apiHandler(Service &service, const Request &request)
{
    return std::make_unique<WholeBodyHandler>([call = std::make_shared<ApiCall>(service, request)](
                                                  const QByteArray &body) { return call->answer(body); });
}

std::unique_ptr<Handler> artifactHandler(Service &service, const Request &request)
{
    return std::make_unique<WholeBodyHandler>(
        [&service, request](const QByteArray &) { return artifact(service, request); });
}

} // namespace notaryd
