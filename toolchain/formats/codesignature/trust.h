#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

namespace toolchain {

/// What a chain of certificates ends in.
enum class Anchor {
    other, ///< nothing that is trusted
    apple, ///< a root of Apple's
    thisMachine, ///< the authority of this machine
    service ///< the `ca` of the notary service's settings; vouches for time stamps alone
};

/// What a leaf is asked to be good for.
enum class TrustPurpose {
    any, ///< no more than a chain
    codeSigning, ///< extended key usage codeSigning
    packageSigning, ///< a Developer ID certificate for packages, or for code
    timestamping, ///< extended key usage timeStamping (RFC 3161, 2.3)
    tickets ///< Apple's marker 1.2.840.113635.100.6.1.30
};

/// What speaks against a chain, the worst first.
enum class TrustProblem { none, noCertificate, broken, untrusted, wrongPurpose, notYetValid, expired };

/// A judgement on a certificate.
struct Trust {
    QList<QByteArray> chain; ///< in DER form from the leaf upwards, as far as it could be built
    Anchor anchor = Anchor::other; ///< told too where only the dates are wrong
    TrustProblem problem = TrustProblem::noCertificate;

    [[nodiscard]] bool isGood() const { return problem == TrustProblem::none; }
    /// For a person, such as "the certificate has expired"; empty if nothing speaks against it.
    [[nodiscard]] QString text() const;
};

/// Certificates that trust is built on and with.
struct TrustStore {
    QList<QByteArray> apple;
    QList<QByteArray> thisMachine;
    QList<QByteArray> service;
    QList<QByteArray> intermediates; ///< trusted for nothing, only used to complete chains

    /// Apple's roots, the authority of the keychain folder, and the file that SEALWRIGHT_NOTARY_CA or the
    /// notary's settings name as `ca`.
    static TrustStore ofThisMachine();
    /// The same with Apple's anchors for tickets in place of Apple's roots.
    static TrustStore forTickets();
};

/// Builds the chain of a certificate, verifies it (RFC 5280; Apple's critical extensions are taken as known)
/// and judges it for a moment, which is now if it is not valid. `others` may be in any order and hold
/// anything.
[[nodiscard]] Trust trustOf(const QByteArray &leaf, const QList<QByteArray> &others, TrustPurpose purpose,
                            const QDateTime &at, const TrustStore &store);

/// Whether a chain has the form of Developer ID: three certificates, the second with 1.2.840.113635.100.6.2.6
/// and the leaf with 1.2.840.113635.100.6.1.13 (code) or 6.1.14 (packages). Judges no anchor.
[[nodiscard]] bool isDeveloperIdForCode(const QList<QByteArray> &chain);
[[nodiscard]] bool isDeveloperIdForPackages(const QList<QByteArray> &chain);

/// Whether the certificates that came with a signature are those of its chain, as far as that can be told: a
/// whole chain is byte for byte the one that is judged. The store knows the same chain, so that nothing else
/// would tell of a certificate that has been changed.
[[nodiscard]] bool bringsItsChain(const QList<QByteArray> &certificates, const Trust &trust);

} // namespace toolchain
