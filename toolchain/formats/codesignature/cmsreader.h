#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QDateTime>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

#include "formats/codesignature/cms.h"
#include "formats/codesignature/trust.h"
#include "platform/result.h"

namespace toolchain {

/// A detached CMS signature (RFC 5652) of one signer, taken apart. Nothing in it has been verified.
struct CmsSignature {
    QByteArray leaf; ///< the signer's certificate in DER form
    QList<QByteArray> certificates; ///< all, in DER form and their own order
    QCryptographicHash::Algorithm algorithm =
        QCryptographicHash::Sha256; ///< that the content is digested with
    QByteArray messageDigest; ///< of the content; empty without signed attributes
    QDateTime signingTime; ///< as the signer says it; not valid if it says nothing
    QList<DirectoryDigest> directories; ///< of Apple's attribute 1.2.840.113635.100.9.2; types 1, 2, 4, 5
    QList<QByteArray> codeHashes; ///< of Apple's attribute 1.2.840.113635.100.9.1
    QByteArray signedBytes; ///< the signed attributes as the signature is over them; empty if there are none
    QByteArray value; ///< of the signature
    QByteArray timestampToken; ///< in DER form; empty if there is none
    QString formProblem; ///< what is wrong with the bytes that no signature covers; empty if nothing is
};

/// Reads a CMS in DER or in the half indefinite form. Zeros behind it are passed over. Fails for anything
/// else, for a signature of several signers, and for one without its signer's certificate.
[[nodiscard]] platform::Result<CmsSignature> readCms(const QByteArray &bytes);

/// What a signature is held against.
struct SignedContent {
    /// The digest of the content by an algorithm.
    std::function<QByteArray(QCryptographicHash::Algorithm)> digest;
    /// The code directories; empty for what is no code.
    QList<DirectoryDigest> directories;
};

/// Whether the leaf's key made the signature of this content, and Apple's attributes agree with the code
/// directories. Answers what speaks against it, or an empty text. Judges no certificate and no time stamp.
[[nodiscard]] QString objectionTo(const CmsSignature &signature, const SignedContent &content);

/// The judgement on a signature.
struct CmsJudgement {
    QString problem; ///< what `objectionTo` says; empty if the signature is that of the content
    Trust trust; ///< of the signer, for the time stamp's moment, or for now without one
    std::optional<QDateTime> timestamp; ///< of a token that is over this signature and trusted
    Anchor timestampAnchor = Anchor::other;
    QString timestampProblem; ///< why there is a token but no time stamp
    QDateTime signingTime;

    /// The signature, the chain and, if there is one, the token are good.
    [[nodiscard]] bool isGood() const
    {
        return problem.isEmpty() && timestampProblem.isEmpty() && trust.isGood();
    }
};

[[nodiscard]] CmsJudgement judgeCms(const CmsSignature &signature, const SignedContent &content,
                                    TrustPurpose purpose, const TrustStore &store);

} // namespace toolchain
