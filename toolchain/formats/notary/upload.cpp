#include "formats/notary/upload.h"

#include <QCryptographicHash>

#include <future>

using namespace Qt::StringLiterals;

namespace toolchain::notary {

namespace {

constexpr qint64 slowestBytesInMillisecond = 50; // below that a transfer is given up in the end
const QByteArray nothingsDigest = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";

QByteArray addressOf(const ServiceConfig &config, const UploadPlace &place)
{
    QByteArray address = config.upload.toUtf8();
    address.replace("{bucket}", percentEncoded(place.bucket, Slash::encoded));
    return address.replace("{object}", percentEncoded(place.object, Slash::kept));
}

/// The request line's path, as it stands in the address.
QByteArray pathOf(const QByteArray &address)
{
    const qsizetype host = address.indexOf("://") + 3;
    const qsizetype path = address.indexOf('/', host);
    return path < 0 ? QByteArray("/") : address.mid(path);
}

QByteArray hostOf(const QByteArray &address)
{
    const QByteArray rest = address.mid(address.indexOf("://") + 3);
    return rest.split('/').first();
}

ServiceFailure notUnderstood(const HttpReply &reply)
{
    return {u"The upload failed: the storage's reply was not understood."_s, reply.status};
}

bool isError(const HttpReply &reply)
{
    return reply.status >= 300 || !storageErrorCode(reply.body).isEmpty();
}

} // namespace

Upload::Upload(NotaryApi &api, const ServiceConfig &config, const UploadFile &file, Progress progress)
    : m_api(api)
    , m_config(config)
    , m_file(file)
    , m_progress(std::move(progress))
{
}

Answer<QString> Upload::run()
{
    for (bool isFirst = true;; isFirst = false) {
        m_sent = 0;
        m_mustStartAgain = false;
        const auto answer = m_api.submit(m_file.name(), m_file.sha256());
        const auto *place = std::get_if<UploadPlace>(&answer);
        if (!place)
            return std::get<ServiceFailure>(answer);
        const auto problem = send(*place);
        if (!problem)
            return place->id;
        if (!m_mustStartAgain || !isFirst)
            return *problem;
    }
}

std::optional<ServiceFailure> Upload::send(const UploadPlace &place)
{
    const auto problem = m_file.pieces().size() == 1 ? sendWhole(place) : sendInParts(place);
    if (!problem && m_file.hasChanged())
        return ServiceFailure{u"The upload failed: the file was changed while it was being uploaded."_s, -1};
    return problem;
}

std::optional<ServiceFailure> Upload::sendWhole(const UploadPlace &place)
{
    const HttpReply reply = call(place, {"PUT", {}, {{"content-type", "application/octet-stream"}}, {}, 0});
    return !reply.isWhole() || isError(reply) ? std::optional(failure(reply)) : std::nullopt;
}

std::optional<ServiceFailure> Upload::sendInParts(const UploadPlace &place)
{
    const HttpReply begun =
        call(place, {"POST", {{"uploads", {}}}, {{"content-type", "application/octet-stream"}}, {}});
    if (!begun.isWhole() || isError(begun))
        return failure(begun);
    const QByteArray uploadId = uploadIdIn(begun.body);
    if (uploadId.isEmpty())
        return notUnderstood(begun);
    PartQueue parts(m_file.pieces().size());
    const auto problem = sendParts(place, uploadId, parts);
    if (problem)
        return problem;
    const HttpReply ended =
        call(place, {"POST", {{"uploadId", uploadId}}, {{"content-type", "application/xml"}}, parts.list()});
    return !ended.isWhole() || isError(ended) ? std::optional(failure(ended)) : std::nullopt;
}

/// A storage takes longer to look at bytes than a client to send them, and an own processor for each
/// connection. What the second one cannot send is left to the first.
std::optional<ServiceFailure> Upload::sendParts(const UploadPlace &place, const QByteArray &uploadId,
                                                PartQueue &parts)
{
    const auto help = std::async(std::launch::async, [&] { lendAHand(parts, place, uploadId); });
    Lane lane{m_api.http(), &parts};
    sendShare(lane, place, uploadId);
    help.wait();
    sendShare(lane, place, uploadId);
    const auto failed = parts.failedReply();
    return failed ? std::optional(failure(*failed)) : std::nullopt;
}

void Upload::sendShare(Lane &lane, const UploadPlace &place, const QByteArray &uploadId)
{
    for (qsizetype part = lane.parts->next(); part >= 0; part = lane.parts->next())
        settle(lane, part, call(lane, place, callForPart(part, uploadId)));
}

/// Over a connection of its own, which ends with the first trouble: some services have room for one alone.
void Upload::lendAHand(PartQueue &parts, const UploadPlace &place, const QByteArray &uploadId)
{
    HttpClient http(m_config);
    Lane lane{http, &parts, Retries::Tries::one};
    for (qsizetype part = parts.next(); part >= 0; part = parts.next()) {
        const HttpReply reply = call(lane, place, callForPart(part, uploadId));
        if (judge(reply) != NextStep::take) {
            show(lane, 0);
            return parts.giveBack(part);
        }
        settle(lane, part, reply);
    }
}

void Upload::settle(Lane &lane, qsizetype part, const HttpReply &reply)
{
    const QByteArray etag = reply.headers.value("etag");
    if (!reply.isWhole() || isError(reply) || etag.isEmpty())
        return lane.parts->failed(reply);
    lane.parts->done(part, etag);
    show(lane, m_file.pieces().at(part).length);
    lane.sent = 0;
}

Upload::StorageCall Upload::callForPart(qsizetype part, const QByteArray &uploadId)
{
    return {"PUT", {{"partNumber", QByteArray::number(part + 1)}, {"uploadId", uploadId}}, {}, {}, part};
}

HttpReply Upload::call(const UploadPlace &place, const StorageCall &call)
{
    Lane lane{m_api.http()};
    return Upload::call(lane, place, call);
}

HttpReply Upload::call(Lane &lane, const UploadPlace &place, const StorageCall &call)
{
    const qint64 length = call.piece < 0 ? 0 : m_file.pieces().at(call.piece).length;
    const auto isWanted = [&lane] { return !lane.parts || !lane.parts->hasFailed(); };
    const auto attempt = [&](const HttpRequest &limits) {
        HttpRequest request = requestFor(place, call);
        request.idleLimit = limits.idleLimit;
        request.wholeLimit = limits.wholeLimit;
        request.isWanted = isWanted;
        if (call.piece >= 0)
            request.progress = [&](qint64 sent) { show(lane, sent); };
        return lane.http.perform(request);
    };
    return Retries(Milliseconds(length / slowestBytesInMillisecond), isWanted, lane.tries)
        .run(attempt, [&](const HttpReply &reply) { return isWanted() ? judge(reply) : NextStep::take; });
}

void Upload::show(Lane &lane, qint64 sent)
{
    const std::scoped_lock lock(m_progressMutex);
    m_sent += sent - lane.sent;
    lane.sent = sent;
    if (m_progress)
        m_progress(m_sent, m_file.size());
}

HttpRequest Upload::requestFor(const UploadPlace &place, const StorageCall &call) const
{
    const QByteArray address = addressOf(m_config, place);
    const QByteArray date = amzDate(m_api.clock().now());
    SignableRequest signable{call.method, pathOf(address), call.query, call.headers, nothingsDigest};
    if (call.piece >= 0)
        signable.payloadDigest = m_file.digestOf(call.piece);
    else if (!call.body.isEmpty())
        signable.payloadDigest = QCryptographicHash::hash(call.body, QCryptographicHash::Sha256).toHex();
    signable.headers += QList<HttpHeader>{
        {"host", hostOf(address)}, {"x-amz-content-sha256", signable.payloadDigest}, {"x-amz-date", date}};
    if (!place.credentials.sessionToken.isEmpty())
        signable.headers.append(HttpHeader{"x-amz-security-token", place.credentials.sessionToken});
    HttpRequest request;
    request.method = call.method;
    request.url = call.query.isEmpty() ? address : address + '?' + canonicalQuery(call.query);
    request.headers = signable.headers;
    request.headers.append(HttpHeader{
        "authorization", awsAuthorization(signable, date, m_config.region.toUtf8(), place.credentials)});
    request.body = call.body;
    if (call.piece >= 0)
        request.piece = m_file.pieces().at(call.piece);
    return request;
}

NextStep Upload::judge(const HttpReply &reply)
{
    m_api.clock().learn(reply);
    if (m_file.hasChanged())
        return NextStep::take;
    const QByteArray code = reply.isWhole() ? storageErrorCode(reply.body) : QByteArray();
    if (code == "RequestTimeTooSkewed")
        return NextStep::tryAtOnce; // signed by the storage's own clock
    const bool isPassing = code == "RequestTimeout" || code == "InternalError" || code == "SlowDown";
    return isPassing || mayPass(reply) ? NextStep::tryLater : NextStep::take;
}

ServiceFailure Upload::failure(const HttpReply &reply)
{
    if (m_file.hasChanged())
        return {u"The upload failed: the file was changed while it was being uploaded."_s, -1};
    if (reply.isWhole() && !isError(reply))
        return notUnderstood(reply);
    const QByteArray code = reply.isWhole() ? storageErrorCode(reply.body) : QByteArray();
    m_mustStartAgain = code == "ExpiredToken" || code == "NoSuchUpload";
    return storageFailureOf(reply);
}

} // namespace toolchain::notary
