#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QPair>

#include "formats/notary/httpclient.h"

namespace toolchain::notary {

/// What a submission's reply hands out for its upload.
struct UploadCredentials {
    QByteArray accessKey;
    QByteArray secretKey;
    QByteArray sessionToken;
};

/// A request as version 4 of AWS's request signatures sees it
/// (https://docs.aws.amazon.com/AmazonS3/latest/API/sig-v4-header-based-auth.html).
struct SignableRequest {
    QByteArray method;
    QByteArray path; ///< in the percent form that stands in the request line
    QList<QPair<QByteArray, QByteArray>> query; ///< plain names and values, in any order
    QList<HttpHeader> headers; ///< those that are signed; names in lower case
    QByteArray payloadDigest; ///< 64 hexadecimal digits, or UNSIGNED-PAYLOAD
};

/// Every byte but A-Za-z0-9-._~ (and the slash, where it is kept) in upper-case percent form.
enum class Slash { kept, encoded };
[[nodiscard]] QByteArray percentEncoded(const QByteArray &plain, Slash slash);

/// The query as it is sent and signed: sorted, each part with its '='.
[[nodiscard]] QByteArray canonicalQuery(const QList<QPair<QByteArray, QByteArray>> &query);

[[nodiscard]] QByteArray canonicalRequest(const SignableRequest &request);

/// "20221121T101010Z"
[[nodiscard]] QByteArray amzDate(const QDateTime &time);

/// The signature's 64 hexadecimal digits. `date` is the form of `amzDate`.
[[nodiscard]] QByteArray awsSignature(const QByteArray &canonical, const QByteArray &date,
                                      const QByteArray &region, const QByteArray &secretKey);

/// The names of the signed headers, in order, with semicolons between.
[[nodiscard]] QByteArray signedHeaderNames(const SignableRequest &request);

/// The value of the Authorization header for a request that has `x-amz-date` among its headers.
[[nodiscard]] QByteArray awsAuthorization(const SignableRequest &request, const QByteArray &date,
                                          const QByteArray &region, const UploadCredentials &credentials);

} // namespace toolchain::notary
