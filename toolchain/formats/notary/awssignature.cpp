#include "formats/notary/awssignature.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>

#include <algorithm>

namespace toolchain::notary {

namespace {

QByteArray keyed(const QByteArray &message, const QByteArray &key)
{
    return QMessageAuthenticationCode::hash(message, key, QCryptographicHash::Sha256);
}

QByteArray scopeOf(const QByteArray &date, const QByteArray &region)
{
    return date.left(8) + '/' + region + "/s3/aws4_request";
}

QList<HttpHeader> sorted(QList<HttpHeader> headers)
{
    std::sort(headers.begin(), headers.end(),
              [](const HttpHeader &a, const HttpHeader &b) { return a.name < b.name; });
    return headers;
}

} // namespace

QByteArray percentEncoded(const QByteArray &plain, Slash slash)
{
    return plain.toPercentEncoding(slash == Slash::kept ? "/" : "");
}

QByteArray canonicalQuery(const QList<QPair<QByteArray, QByteArray>> &query)
{
    QList<QPair<QByteArray, QByteArray>> encoded;
    for (const auto &[name, value] : query)
        encoded.append({percentEncoded(name, Slash::encoded), percentEncoded(value, Slash::encoded)});
    std::sort(encoded.begin(), encoded.end()); // by name first: '=' would sort behind '-'
    QByteArrayList parts;
    for (const auto &[name, value] : encoded)
        parts.append(name + '=' + value);
    return parts.join('&');
}

QByteArray canonicalRequest(const SignableRequest &request)
{
    QByteArray headers;
    for (const HttpHeader &header : sorted(request.headers))
        headers += header.name + ':' + header.value.simplified() + '\n';
    return request.method + '\n' + request.path + '\n' + canonicalQuery(request.query) + '\n' + headers + '\n'
        + signedHeaderNames(request) + '\n' + request.payloadDigest;
}

QByteArray amzDate(const QDateTime &time)
{
    return time.toUTC().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'")).toLatin1();
}

QByteArray awsSignature(const QByteArray &canonical, const QByteArray &date, const QByteArray &region,
                        const QByteArray &secretKey)
{
    const QByteArray text = "AWS4-HMAC-SHA256\n" + date + '\n' + scopeOf(date, region) + '\n'
        + QCryptographicHash::hash(canonical, QCryptographicHash::Sha256).toHex();
    const QByteArray key =
        keyed("aws4_request", keyed("s3", keyed(region, keyed(date.left(8), "AWS4" + secretKey))));
    return keyed(text, key).toHex();
}

QByteArray signedHeaderNames(const SignableRequest &request)
{
    QByteArrayList names;
    for (const HttpHeader &header : sorted(request.headers))
        names.append(header.name);
    return names.join(';');
}

QByteArray awsAuthorization(const SignableRequest &request, const QByteArray &date, const QByteArray &region,
                            const UploadCredentials &credentials)
{
    return "AWS4-HMAC-SHA256 Credential=" + credentials.accessKey + '/' + scopeOf(date, region)
        + ",SignedHeaders=" + signedHeaderNames(request)
        + ",Signature=" + awsSignature(canonicalRequest(request), date, region, credentials.secretKey);
}

} // namespace toolchain::notary
