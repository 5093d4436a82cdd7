#include "notaryd/replies.h"
#include "notaryd/storage.h"

#include <QRegularExpression>

#include <openssl/crypto.h>

#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace toolchain::notary;

namespace notaryd {

namespace {

constexpr qint64 largestSkew = 15 * 60; // seconds

/// What an Authorization header of version 4 says.
struct Claim {
    QByteArray accessKey;
    QByteArray day;
    QByteArray region;
    QByteArrayList signedHeaders;
    QByteArray signature;
};

std::optional<Claim> claimOf(const QByteArray &authorization)
{
    static const QRegularExpression form(
        uR"(\AAWS4-HMAC-SHA256 Credential=([^/, ]+)/(\d{8})/([a-z0-9-]+)/s3/aws4_request, ?SignedHeaders=([a-z0-9;-]+), ?Signature=([0-9a-f]{64})\z)"_s);
    const auto match = form.match(QString::fromUtf8(authorization));
    if (!match.hasMatch())
        return std::nullopt;
    return Claim{match.captured(1).toUtf8(), match.captured(2).toUtf8(), match.captured(3).toUtf8(),
                 match.captured(4).toUtf8().split(';'), match.captured(5).toUtf8()};
}

/// The path as S3 signs it: each byte decoded and encoded anew, once.
QByteArray canonicalPath(const QByteArray &path)
{
    return percentEncoded(QByteArray::fromPercentEncoding(path), Slash::kept);
}

SignableRequest signedPartOf(const Request &request, const Claim &claim)
{
    SignableRequest part{request.method,
                         canonicalPath(request.askedPath),
                         request.query,
                         {},
                         request.headers.value("x-amz-content-sha256")};
    for (const QByteArray &name : claim.signedHeaders)
        part.headers.append(HttpHeader{name, request.headers.value(name)});
    return part;
}

bool areEqual(const QByteArray &one, const QByteArray &other)
{
    return one.size() == other.size()
        && CRYPTO_memcmp(one.constData(), other.constData(), size_t(one.size())) == 0;
}

/// Everything that speaks for the caller has to be covered by the signature.
bool coversEnough(const Request &request, const Claim &claim)
{
    for (const QByteArray name : {"host", "x-amz-date"}) {
        if (!claim.signedHeaders.contains(name))
            return false;
    }
    for (auto header = request.headers.keyBegin(); header != request.headers.keyEnd(); ++header) {
        if (header->startsWith("x-amz-") && !claim.signedHeaders.contains(*header))
            return false;
    }
    return true;
}

QDateTime dateOf(const Request &request)
{
    QDateTime date = QDateTime::fromString(QString::fromLatin1(request.headers.value("x-amz-date")),
                                           u"yyyyMMdd'T'HHmmss'Z'"_s);
    date.setTimeSpec(Qt::UTC);
    return date;
}

QString objectionToTimes(const Request &request, const UploadSession &session, const QDateTime &now)
{
    const QDateTime date = dateOf(request);
    if (!date.isValid() || std::abs(date.secsTo(now)) > largestSkew)
        return u"RequestTimeTooSkewed"_s;
    return session.expires < now ? u"ExpiredToken"_s : QString();
}

bool isFor(const Request &request, const UploadSession &session)
{
    return QByteArray::fromPercentEncoding(request.path) == "/s3/" + session.bucket + '/' + session.object;
}

} // namespace

StorageCaller callerOf(Service &service, const Request &request)
{
    const auto claim = claimOf(request.headers.value("authorization"));
    if (!claim)
        return {std::nullopt, storageError(u"AccessDenied"_s)};
    const auto session = service.submissions().sessionOf(claim->accessKey);
    if (!session)
        return {std::nullopt, storageError(u"InvalidAccessKeyId"_s)};
    if (request.headers.value("x-amz-security-token") != session->credentials.sessionToken)
        return {std::nullopt, storageError(u"InvalidToken"_s)};
    const QString late = objectionToTimes(request, *session, service.now(request));
    if (!late.isEmpty())
        return {std::nullopt, storageError(late)};
    const QByteArray date = request.headers.value("x-amz-date");
    const QByteArray expected = awsSignature(canonicalRequest(signedPartOf(request, *claim)), date,
                                             claim->region, session->credentials.secretKey);
    const bool isRight = date.startsWith(claim->day) && claim->region == "us-west-2"
        && coversEnough(request, *claim) && areEqual(expected, claim->signature);
    if (!isRight)
        return {std::nullopt, storageError(u"SignatureDoesNotMatch"_s)};
    if (!isFor(request, *session))
        return {std::nullopt, storageError(u"AccessDenied"_s)};
    return {session, {}};
}

} // namespace notaryd
