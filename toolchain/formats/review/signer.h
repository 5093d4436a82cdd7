#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace toolchain::review {

/// What a CMS signature tells of who made it and when.
struct SignerFacts {
    QStringList names; ///< common names of the certificates, the signer's first
    bool isDeveloperId = false; ///< rests on a trusted anchor and has the form of Developer ID for code
    QDateTime timestamp; ///< of the time-stamp token, in UTC; not valid if there is none
};

/// Reads a CMS signature in DER or BER form; nothing of it is verified against what was signed. Empty facts
/// for what is none. Format: RFC 5652, and RFC 3161 for the token.
[[nodiscard]] SignerFacts signerFacts(const QByteArray &cms);

} // namespace toolchain::review
