#include "notaryd/storage.h"

#include "notaryd/filedigest.h"
#include "notaryd/multipart.h"
#include "notaryd/replies.h"

#include <QDir>
#include <QFile>
#include <QUuid>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace notaryd {

namespace {

constexpr qint64 largestPut = 5LL << 30;

/// What a PUT's query and headers ask for beside the object or the part itself; null if there is nothing.
/// Some clients name the operation in the query.
QString moreThanPut(const Request &request)
{
    for (const auto &[name, value] : request.query) {
        if (name != "partNumber" && name != "uploadId" && name != "x-id")
            return u"NotImplemented"_s; // another property of the object, as its tags
    }
    if (request.headers.contains("x-amz-copy-source"))
        return u"NotImplemented"_s;
    return request.asks("partNumber") == request.asks("uploadId") ? QString() : u"InvalidArgument"_s;
}

/// Takes an object or a part of one: into a file of its own, which gets its place when it is whole and right.
class PutHandler : public Handler {
public:
    PutHandler(Service &service, Request request)
        : m_service(service)
        , m_request(std::move(request))
        , m_md5(m_request.headers.contains("content-md5") ? std::make_unique<Digest>(Digest::Kind::md5)
                                                          : nullptr)
    {
    }

    ~PutHandler() override
    {
        if (m_file.isOpen())
            m_file.remove();
    }

    Response begin() override
    {
        const Response refusal = objection();
        if (refusal.status != 0)
            return refusal;
        m_file.setFileName(m_service.submissions().folderOf(m_session.id) + u"/put-"_s
                           + QUuid::createUuid().toString(QUuid::Id128));
        return m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)
            ? Handler::begin()
            : storageError(u"InternalError"_s, m_file.errorString());
    }

    bool take(const char *bytes, qint64 length) override
    {
        m_sha256.add(bytes, length);
        if (m_md5)
            m_md5->add(bytes, length);
        m_isStored = m_isStored && m_file.write(bytes, length) == length;
        return true;
    }

    Response end() override
    {
        if (!m_isStored)
            return storageError(u"InternalError"_s, u"The storage is full"_s);
        const QByteArray digest = m_sha256.result().toHex();
        const QByteArray announced = m_request.headers.value("x-amz-content-sha256");
        if (announced != "UNSIGNED-PAYLOAD" && announced != digest)
            return storageError(u"XAmzContentSHA256Mismatch"_s);
        if (m_md5 && m_md5->result().toBase64() != m_request.headers.value("content-md5"))
            return storageError(u"BadDigest"_s);
        return place(digest);
    }

private:
    Response objection()
    {
        const StorageCaller caller = callerOf(m_service, m_request);
        if (!caller.session)
            return caller.refusal;
        m_session = *caller.session;
        if (const QString more = moreThanPut(m_request); !more.isNull())
            return storageError(more);
        if (!m_request.headers.contains("content-length"))
            return storageError(u"MissingContentLength"_s);
        if (m_request.headers.value("content-length").toLongLong() > largestPut)
            return storageError(u"EntityTooLarge"_s);
        if (m_request.headers.value("x-amz-content-sha256").startsWith("STREAMING-"))
            return storageError(u"NotImplemented"_s);
        if (!m_service.submissions().isOpen(m_session.id))
            return storageError(u"AccessDenied"_s, u"The object is under review"_s);
        return isPart() && !MultipartUpload(folder(), m_request.queryValue("uploadId")).isOpen()
            ? storageError(u"NoSuchUpload"_s)
            : Handler::begin();
    }

    [[nodiscard]] bool isPart() const { return m_request.asks("partNumber"); }
    [[nodiscard]] QString folder() const { return m_service.submissions().folderOf(m_session.id); }

    Response place(const QByteArray &digest)
    {
        m_file.close();
        const QByteArray etag = '"' + digest.left(32) + '"';
        if (isPart()) {
            const bool isKept =
                MultipartUpload(folder(), m_request.queryValue("uploadId"))
                    .keepPart(m_request.queryValue("partNumber"), m_file.fileName(), digest.left(32));
            return isKept ? done(etag) : storageError(u"InvalidArgument"_s);
        }
        const auto refusal = m_service.submissions().place(m_session.id, m_file.fileName());
        if (refusal)
            m_file.remove();
        return refusal ? storageError(refusal->code, refusal->reason) : done(etag);
    }

    static Response done(const QByteArray &etag)
    {
        return {.status = 200, .body = {}, .type = "application/xml", .headers = {{"ETag", etag}}};
    }

    Service &m_service;
    const Request m_request;
    UploadSession m_session;
    QFile m_file;
    Digest m_sha256;
    const std::unique_ptr<Digest> m_md5;
    bool m_isStored = true;
};

Response listedParts(const MultipartUpload &upload)
{
    QByteArray body = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ListPartsResult>";
    for (const auto &part : upload.parts())
        body += "<Part><PartNumber>" + QByteArray::number(part.number) + "</PartNumber><ETag>\"" + part.etag
            + "\"</ETag><Size>" + QByteArray::number(part.size) + "</Size></Part>";
    return {.status = 200, .body = body + "</ListPartsResult>", .type = "application/xml", .headers = {}};
}

/// Answers before any of the body has been read.
class Refusal : public Handler {
public:
    explicit Refusal(Response answer)
        : m_answer(std::move(answer))
    {
    }
    Response begin() override { return m_answer; }
    bool take(const char *, qint64) override { return false; }
    Response end() override { return m_answer; }

private:
    const Response m_answer;
};

bool concernsParts(const Request &request)
{
    if (request.asks("uploadId"))
        return request.method == "POST" || request.method == "GET" || request.method == "DELETE";
    return request.method == "POST" && request.asks("uploads");
}

class MultipartCall {
public:
    MultipartCall(Service &service, Request request)
        : m_service(service)
        , m_request(std::move(request))
    {
    }

    Response answer(const QByteArray &body)
    {
        const StorageCaller caller = callerOf(m_service, m_request);
        if (!caller.session)
            return caller.refusal;
        const QByteArray announced = m_request.headers.value("x-amz-content-sha256");
        Digest digest;
        digest.add(body.constData(), body.size());
        if (announced != "UNSIGNED-PAYLOAD" && announced != digest.result().toHex())
            return storageError(u"XAmzContentSHA256Mismatch"_s);
        if (!m_service.submissions().isOpen(caller.session->id))
            return storageError(u"AccessDenied"_s, u"The object is under review"_s);
        return carryOut(*caller.session, body);
    }

private:
    Response carryOut(const UploadSession &session, const QByteArray &body)
    {
        const QString folder = m_service.submissions().folderOf(session.id);
        if (m_request.method == "POST" && m_request.asks("uploads"))
            return begin(session, folder);
        MultipartUpload upload(folder, m_request.queryValue("uploadId"));
        if (m_request.method == "POST" && upload.isCompleted())
            return kept(session, upload); // asked again, since the reply was lost
        if (!upload.isOpen())
            return storageError(u"NoSuchUpload"_s);
        if (m_request.method == "DELETE") {
            upload.abort();
            return {.status = 204, .body = {}, .type = {}, .headers = {}};
        }
        return m_request.method == "GET" ? listedParts(upload) : complete(session, upload, body);
    }

    static Response begin(const UploadSession &session, const QString &folder)
    {
        const QByteArray identifier = MultipartUpload::begin(folder);
        if (identifier.isEmpty())
            return storageError(u"InternalError"_s);
        return {.status = 200,
                .body = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<InitiateMultipartUploadResult><Bucket>"
                    + session.bucket + "</Bucket><Key>" + session.object + "</Key><UploadId>" + identifier
                    + "</UploadId></InitiateMultipartUploadResult>",
                .type = "application/xml",
                .headers = {}};
    }

    Response complete(const UploadSession &session, MultipartUpload &upload, const QByteArray &body)
    {
        const auto isComplete = upload.complete(body);
        return isComplete ? kept(session, upload) : storageError(isComplete.error());
    }

    Response kept(const UploadSession &session, const MultipartUpload &upload)
    {
        const auto refusal = m_service.submissions().place(session.id, upload.listPath());
        return refusal ? storageError(refusal->code, refusal->reason) : completed(session, upload);
    }

    static Response completed(const UploadSession &session, const MultipartUpload &upload)
    {
        return {.status = 200,
                .body = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<CompleteMultipartUploadResult><Bucket>"
                    + session.bucket + "</Bucket><Key>" + session.object + "</Key><ETag>\""
                    + upload.identifier().left(32) + "-multipart\"</ETag></CompleteMultipartUploadResult>",
                .type = "application/xml",
                .headers = {}};
    }

    Service &m_service;
    const Request m_request;
};

} // namespace

std::unique_ptr<Handler> storageHandler(Service &service, const Request &request)
{
    if (request.method == "PUT")
        return std::make_unique<PutHandler>(service, request);
    if (concernsParts(request))
        return std::make_unique<WholeBodyHandler>([call = std::make_shared<MultipartCall>(service, request)](
                                                      const QByteArray &body) { return call->answer(body); },
                                                  4 << 20);
    return std::make_unique<Refusal>(storageError(u"MethodNotAllowed"_s));
}

} // namespace notaryd
