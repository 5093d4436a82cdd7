#pragma once

#include <QString>

#include "formats/notary/httpclient.h"

namespace toolchain::notary {

/// Why a call has failed.
struct ServiceFailure {
    QString text; ///< for a person; without addresses and secrets
    int code = 0; ///< the HTTP status, or -(1000 + CURLcode)
};

/// Reads what a service says with a refusal: the two JSON layouts of the notary service, or the first line of
/// plain text; of a gateway's HTML page the status alone. A request's identifier is always named.
[[nodiscard]] ServiceFailure failureOf(const HttpReply &reply);

/// The code of the storage's XML error (https://docs.aws.amazon.com/AmazonS3/latest/API/ErrorResponses.html);
/// empty if the body is none.
[[nodiscard]] QByteArray storageErrorCode(const QByteArray &body);

/// The failure of a request to the storage.
[[nodiscard]] ServiceFailure storageFailureOf(const HttpReply &reply);

/// Foreign text as it may stand in a terminal: no control characters, 500 characters at most.
[[nodiscard]] QString printable(const QString &text);

} // namespace toolchain::notary
