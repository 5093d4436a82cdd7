#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include "formats/codesignature/trust.h"
#include "formats/cryptography.h"
#include "formats/identities.h"
#include "platform/result.h"

namespace toolchain {

/// An identity that is ready to sign.
struct SigningIdentity {
    QList<QByteArray> chain; ///< in DER form from the leaf to the root, as far as it is known
    QString commonName; ///< of the leaf
    QString team; ///< the leaf's organisational unit where the chain has the form of Developer ID or is
                  ///< Apple's, else empty
    Anchor anchor = Anchor::other; ///< what the chain ends in
    SharedKey key; ///< in memory, or a handle on a token's
};

/// The one identity of the keychain folder that is meant by a certificate's name, a part of it, or its SHA-1.
/// For code, certificates for code signing go before all others whose key is there. The error is the text
/// that codesign prints after the name: "no identity found", "ambiguous (matches …)", or why the key cannot
/// be had.
[[nodiscard]] platform::Result<SigningIdentity> findSigningIdentity(const QString &wanted, IdentityKind kind);

} // namespace toolchain
