#pragma once

#include <QByteArray>
#include <QDateTime>

#include "formats/codesignature/trust.h"
#include "platform/result.h"

namespace toolchain {

/// A time stamp that holds: over the bytes that are meant, and by a signer that is trusted.
struct VerifiedTimestamp {
    QDateTime time; ///< UTC
    Anchor anchor = Anchor::other;
    QByteArray
        nonce; ///< of the question that it answers, as an unsigned big-endian number; empty if it had none
    QByteArray serialNumber; ///< the same form
};

/// Verifies a time-stamp token (RFC 3161, a ContentInfo) over these bytes: imprint, signature,
/// signing-certificate attribute (RFC 5035), and the signer's chain for the moment that the token tells. The
/// error says what speaks against it.
[[nodiscard]] platform::Result<VerifiedTimestamp>
checkTimestamp(const QByteArray &token, const QByteArray &stamped, const TrustStore &store);

} // namespace toolchain
