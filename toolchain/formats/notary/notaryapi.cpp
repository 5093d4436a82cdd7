#include "formats/notary/notaryapi.h"

#include <QJsonDocument>
#include <QJsonObject>

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

template <auto read>
bool isReadable(const QByteArray &body)
{
    return read(body).has_value();
}

} // namespace

void ServiceClock::learn(const HttpReply &reply)
{
    const QDateTime date = reply.date();
    if (!date.isValid())
        return;
    const qint64 offset = QDateTime::currentDateTimeUtc().secsTo(date);
    if (std::abs(offset - m_offset) > correctedSeconds)
        m_offset = offset;
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
        return NextStep::tryAtOnce; // with a new token, and by the service's own clock
    if (reply.status == 200 && !isUsable(reply.body))
        return NextStep::tryLater; // a gateway's page, or half a reply
    return mayPass(reply) ? NextStep::tryLater : NextStep::take;
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
    const HttpReply reply = call("POST", u"/submissions"_s, isReadable<readPlace>,
                                 QJsonDocument(form).toJson(QJsonDocument::Compact));
    if (reply.status != 200 && reply.status != 201)
        return failureOf(reply);
    const auto place = readPlace(reply.body);
    if (!place)
        return notUnderstood(u"it does not say which submission this is and where its file goes"_s);
    return *place;
}

Answer<QList<Submission>> NotaryApi::history()
{
    const HttpReply reply = call("GET", u"/submissions"_s, isReadable<readHistory>);
    if (reply.status == 404)
        return QList<Submission>();
    if (reply.status != 200)
        return failureOf(reply);
    const auto submissions = readHistory(reply.body);
    if (!submissions)
        return notUnderstood(u"it holds no list"_s);
    return *submissions;
}

Answer<std::optional<Submission>> NotaryApi::status(const QString &id)
{
    const HttpReply reply = call("GET", u"/submissions/"_s + id, isReadable<readStatus>);
    if (reply.status == 404)
        return std::optional<Submission>();
    if (reply.status != 200)
        return failureOf(reply);
    auto submission = readStatus(reply.body);
    if (!submission)
        return notUnderstood(u"it holds no status"_s); // which is no refusal
    submission->id = id;
    return submission;
}

Answer<QByteArray> NotaryApi::fetchLog(const QByteArray &url)
{
    const auto attempt = [&](HttpRequest request) {
        request.url = url;
        request.largestReply = largestLog;
        request.redirects = RedirectPolicy::onceToHttps;
        return m_http.perform(request);
    };
    const auto judgeLog = [](const HttpReply &reply) {
        return mayPass(reply) ? NextStep::tryLater : NextStep::take;
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
        const HttpReply reply = call("GET", u"/submissions/%1/logs"_s.arg(id), isReadable<readLogAddress>);
        if (reply.status != 200) {
            failure = failureOf(reply);
            if (reply.status != 404) // which says that it is not there yet
                return failure;
            continue;
        }
        const auto url = readLogAddress(reply.body);
        const auto log = url ? fetchLog(url->toEncoded()) : notUnderstood(u"it names no log"_s);
        const auto *bytes = std::get_if<QByteArray>(&log);
        if (bytes && isLogOf(id, *bytes))
            return *bytes;
        failure =
            bytes ? notUnderstood(u"the log is not this submission's"_s) : std::get<ServiceFailure>(log);
        if (failure.code < 0)
            return failure;
    }
    return failure;
}

} // namespace toolchain::notary
