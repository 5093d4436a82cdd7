#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QDateTime>
#include <QList>

#include <functional>

#include "formats/signingidentity.h"
#include "platform/result.h"

namespace toolchain {

/// The digest of a code directory by its own hash type, as cs_blobs.h of Apple's xnu numbers them: 1 SHA-1, 2
/// SHA-256, 3 SHA-256 cut to 20 bytes, 4 SHA-384, 5 SHA-512.
struct DirectoryDigest {
    int hashType = 0;
    QByteArray digest; ///< in full length, also for type 3
};

/// What the signature of code says.
struct CodeCmsOrder {
    QByteArray contentDigest; ///< SHA-256 of the code directory in slot 0, whatever its own hash type
    QList<DirectoryDigest> directories; ///< of all code directories
    QDateTime signingTime; ///< now if it is not valid
};

/// Gets a time-stamp token (RFC 3161, a ContentInfo in DER form) over the value of a signature.
/// `timestampClient` of timestamp.h makes one; an empty function stands for no time stamp.
using Stamper = std::function<platform::Result<QByteArray>(const QByteArray &signatureValue)>;

/// The CMS (RFC 5652) that goes into slot 0x10000 of a code signature: detached, with Apple's attributes of
/// the code directories' digests, the whole chain, in the form that codesign writes.
[[nodiscard]] platform::Result<QByteArray> makeCodeCms(const SigningIdentity &identity,
                                                       const CodeCmsOrder &order, const Stamper &stamper);

/// The CMS of a flat package over its table's checksum, digested with the table's own algorithm (SHA-1,
/// SHA-256 or SHA-512).
[[nodiscard]] platform::Result<QByteArray> makePackageCms(const SigningIdentity &identity,
                                                          const QByteArray &checksum,
                                                          QCryptographicHash::Algorithm algorithm,
                                                          const Stamper &stamper);

/// The RSA value of a flat package: PKCS #1 v1.5 with the checksum itself as the digest. Fails for keys of
/// other kinds.
[[nodiscard]] platform::Result<QByteArray> makePackageSignature(const SigningIdentity &identity,
                                                                const QByteArray &checksum,
                                                                QCryptographicHash::Algorithm algorithm);

/// Whether an RSA value is that of this checksum, in the form that `makePackageSignature` writes or in the
/// older one, of the checksum's digest. `certificate` is the leaf in DER form. Judges no certificate.
[[nodiscard]] bool packageSignatureFits(const QByteArray &value, const QByteArray &certificate,
                                        const QByteArray &checksum, QCryptographicHash::Algorithm algorithm);

} // namespace toolchain
