#include "formats/notary/notaryapi.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace toolchain::notary {

namespace {

constexpr qint64 correctedSeconds = 30;
constexpr qint64 largestLog = 50'000'000;
constexpr int logTries = 3;
constexpr Milliseconds logPause{2'000};

ServiceFailure notUnderstood(const QString &what)
{
    return {u"The service's reply was not understood: %1."_s.arg(what), 200};
}

Submission submissionFrom(const QJsonValue &data)
{
    const QJsonValue attributes = data[u"attributes"];
    return {data[u"id"].toString(), attributes[u"name"].toString(),
            QDateTime::fromString(attributes[u"createdDate"].toString(), Qt::ISODateWithMs).toUTC(),
            attributes[u"status"].toString()};
}

QJsonObject objectOf(const HttpReply &reply)
{
    return QJsonDocument::fromJson(reply.body).object();
}

bool isLog(const QByteArray &bytes, const QString &id)
{
    return QJsonDocument::fromJson(bytes).object()[u"jobId"].toString().compare(id, Qt::CaseInsensitive) == 0;
}

QByteArray bytesOf(const QJsonValue &value)
{
    return value.toString().toUtf8();
}

UploadPlace placeFrom(const QJsonObject &reply)
{
    const QJsonValue data = reply[u"data"];
    const QJsonValue attributes = data[u"attributes"];
    return {data[u"id"].toString(),
            bytesOf(attributes[u"bucket"]),
            bytesOf(attributes[u"object"]),
            {bytesOf(attributes[u"awsAccessKeyId"]), bytesOf(attributes[u"awsSecretAccessKey"]),
             bytesOf(attributes[u"awsSessionToken"])}};
}

bool namesPlace(const QJsonObject &reply)
{
    const UploadPlace place = placeFrom(reply);
    return isRequestId(place.id) && !place.bucket.isEmpty() && !place.object.isEmpty()
        && !place.credentials.accessKey.isEmpty() && !place.credentials.secretKey.isEmpty();
}

bool holdsList(const QJsonObject &reply)
{
    return reply[u"data"].isArray();
}

bool holdsStatus(const QJsonObject &reply)
{
    return !reply[u"data"][u"attributes"][u"status"].toString().isEmpty();
}

bool namesLog(const QJsonObject &reply)
{
    return isAcceptable(QUrl(reply[u"data"][u"attributes"][u"developerLogUrl"].toString()));
}

} // namespace

void ServiceClock::learn(const HttpReply &reply)
{
    const QDateTime date = reply.date();
    if (!date.isValid())
        return;
    const qint64 offset = QDateTime::currentDateTimeUtc().secsTo(date);
    m_wasCorrected = std::abs(offset - m_offset) > correctedSeconds;
    if (m_wasCorrected)
        m_offset = offset;
}

bool isRequestId(const QString &text)
{
    static const QRegularExpression form(uR"(\A[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\z)"_s);
    return form.match(text).hasMatch();
}

NotaryApi::NotaryApi(const ServiceConfig &config, ApiKey key)
    : m_config(config)
    , m_key(std::move(key))
    , m_http(config)
{
}

NextStep NotaryApi::judge(const HttpReply &reply, IsUsable isUsable)
{
    m_clock.learn(reply);
    if (reply.status == 401)
        return NextStep::TryAtOnce; // with a new token, and by the service's own clock
    if (reply.status == 200 && !isUsable(objectOf(reply)))
        return NextStep::TryLater; // a gateway's page, or half a reply
    return mayPass(reply) ? NextStep::TryLater : NextStep::Take;
}

HttpReply NotaryApi::call(const QByteArray &method, const QString &path, IsUsable isUsable,
                          const QByteArray &body)
{
    const auto attempt = [&](HttpRequest request) {
        request.method = method;
        request.url = (m_config.api + path).toUtf8();
        request.headers.append(HttpHeader{"Authorization", "Bearer " + makeToken(m_key, m_clock.now())});
        if (!body.isEmpty())
            request.headers.append(HttpHeader{"Content-Type", "application/json"});
        request.body = body;
        return m_http.perform(request);
    };
    return Retries().run(attempt, [&](const HttpReply &reply) { return judge(reply, isUsable); });
}

Answer<UploadPlace> NotaryApi::submit(const QString &name, const QByteArray &sha256)
{
    const QJsonObject form{{u"submissionName"_s, name}, {u"sha256"_s, QString::fromLatin1(sha256)}};
    const HttpReply reply =
        call("POST", u"/submissions"_s, namesPlace, QJsonDocument(form).toJson(QJsonDocument::Compact));
    if (reply.status != 200 && reply.status != 201)
        return failureOf(reply);
    if (!namesPlace(objectOf(reply)))
        return notUnderstood(u"it does not say which submission this is and where its file goes"_s);
    return placeFrom(objectOf(reply));
}

Answer<QList<Submission>> NotaryApi::history()
{
    const HttpReply reply = call("GET", u"/submissions"_s, holdsList);
    if (reply.status == 404)
        return QList<Submission>();
    if (reply.status != 200)
        return failureOf(reply);
    const QJsonObject form = objectOf(reply);
    if (!form[u"data"].isArray())
        return notUnderstood(u"it holds no list"_s);
    QList<Submission> submissions;
    for (const QJsonValue &entry : form[u"data"].toArray()) {
        if (isRequestId(entry[u"id"].toString()))
            submissions.append(submissionFrom(entry));
    }
    std::stable_sort(submissions.begin(), submissions.end(),
                     [](const Submission &a, const Submission &b) { return a.created > b.created; });
    return submissions;
}

Answer<std::optional<Submission>> NotaryApi::status(const QString &id)
{
    const HttpReply reply = call("GET", u"/submissions/"_s + id, holdsStatus);
    if (reply.status == 404)
        return std::optional<Submission>();
    if (reply.status != 200)
        return failureOf(reply);
    Submission submission = submissionFrom(objectOf(reply)[u"data"]);
    if (submission.status.isEmpty())
        return notUnderstood(u"it holds no status"_s); // which is no refusal
    submission.id = id;
    return std::optional(submission);
}

Answer<QByteArray> NotaryApi::fetchLog(const QByteArray &url)
{
    const auto attempt = [&](HttpRequest request) {
        request.url = url;
        request.largestReply = largestLog;
        request.redirects = RedirectPolicy::OnceToHttps;
        return m_http.perform(request);
    };
    const auto judgeLog = [](const HttpReply &reply) {
        return mayPass(reply) ? NextStep::TryLater : NextStep::Take;
    };
    const HttpReply reply = Retries().run(attempt, judgeLog);
    return reply.status == 200 ? Answer<QByteArray>(reply.body) : Answer<QByteArray>(failureOf(reply));
}

Answer<QByteArray> NotaryApi::log(const QString &id)
{
    ServiceFailure failure;
    for (int attempt = 0; attempt < logTries; ++attempt) {
        if (attempt > 0)
            sleepFor(scaled(logPause));
        const HttpReply reply = call("GET", u"/submissions/%1/logs"_s.arg(id), namesLog);
        if (reply.status != 200) {
            failure = failureOf(reply);
            if (reply.status != 404) // which says that it is not there yet
                return failure;
            continue;
        }
        const QUrl url(objectOf(reply)[u"data"][u"attributes"][u"developerLogUrl"].toString());
        const auto log =
            namesLog(objectOf(reply)) ? fetchLog(url.toEncoded()) : notUnderstood(u"it names no log"_s);
        const auto *bytes = std::get_if<QByteArray>(&log);
        if (bytes && isLog(*bytes, id))
            return *bytes;
        failure =
            bytes ? notUnderstood(u"the log is not this submission's"_s) : std::get<ServiceFailure>(log);
        if (failure.code < 0)
            return failure;
    }
    return failure;
}

} // namespace toolchain::notary
