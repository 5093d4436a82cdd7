#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

#include "formats/notary/awssignature.h"

/// Takes the bodies apart that the notary service and the storage answer with. They are foreign bytes:
/// whatever is missing or of another form is nothing.
namespace toolchain::notary {

/// One entry of the history, and the answer to a question for a request.
struct Submission {
    QString id; ///< as the service gave it
    QString name;
    QDateTime created; ///< UTC; not valid if the service gave none
    QString status; ///< in the service's words
};

/// Where a new submission's file goes.
struct UploadPlace {
    QString id; ///< passed `isRequestId`
    QByteArray bucket;
    QByteArray object;
    UploadCredentials credentials;
};

/// Eight, four, four, four and twelve hexadecimal digits.
[[nodiscard]] bool isRequestId(const QString &text);

/// https://developer.apple.com/documentation/notaryapi/newsubmissionresponse; nothing unless all that an
/// upload needs is there.
[[nodiscard]] std::optional<UploadPlace> readPlace(const QByteArray &body);

/// .../submissionlistresponse, newest first; entries without an identifier are left out.
[[nodiscard]] std::optional<QList<Submission>> readHistory(const QByteArray &body);

/// .../submissionresponse; nothing without a status.
[[nodiscard]] std::optional<Submission> readStatus(const QByteArray &body);

/// .../submissionlogurlresponse; nothing for an address that may not be asked.
[[nodiscard]] std::optional<QUrl> readLogAddress(const QByteArray &body);

/// Whether the bytes are the log of that request.
[[nodiscard]] bool isLogOf(const QString &id, const QByteArray &bytes);

/// The identifier of a multipart upload
/// (https://docs.aws.amazon.com/AmazonS3/latest/API/API_CreateMultipartUpload.html); empty if there is none.
[[nodiscard]] QByteArray uploadIdIn(const QByteArray &xml);

} // namespace toolchain::notary
