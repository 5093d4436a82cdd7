#pragma once

#include <QByteArray>
#include <QString>

#include "formats/codesignature/cms.h"
#include "formats/codesignature/trust.h"
#include "platform/result.h"

namespace toolchain {

/// Where time stamps come from.
struct TimestampService {
    QString url; ///< http or https
    QString ca; ///< PEM file with certificates that are trusted beside the system's for https; may be empty
    QCryptographicHash::Algorithm imprint =
        QCryptographicHash::Sha256; ///< SHA-1 for packages with SHA-1 checksums
};

/// Apple's own, which codesign asks.
[[nodiscard]] QString appleTimestampUrl();

/// A stamper that asks a time-stamp authority (RFC 3161 over HTTP) and refuses an answer that is not over the
/// signature, not to this question, or not by a signer whose chain ends in a trusted root. Its errors begin
/// with "The timestamp service is not available." where the service did not answer. Gives up after 30 s,
/// which SEALWRIGHT_WAIT_SCALE shortens.
[[nodiscard]] Stamper timestampClient(const TimestampService &service);

/// The question for a time stamp: a nonce of 64 bits, and a wish for the certificates.
struct TimestampQuery {
    QByteArray der;
    QByteArray nonce; ///< as `VerifiedTimestamp` has it
};
[[nodiscard]] TimestampQuery timestampQueryFor(const QByteArray &stamped,
                                               QCryptographicHash::Algorithm imprint, const QString &policy);

/// The token in a reply, verified as an answer to the question.
[[nodiscard]] platform::Result<QByteArray> tokenInReply(const QByteArray &reply, const QByteArray &stamped,
                                                        const QByteArray &nonce, const TrustStore &store);

} // namespace toolchain
