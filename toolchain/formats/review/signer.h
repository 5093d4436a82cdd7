#pragma once

#include "formats/codesignature/trust.h"

#include <QDateTime>
#include <QStringList>

namespace toolchain::codesignature {
struct SignedPart;
}

namespace toolchain::review {

/// What a CMS signature tells of who made it and when.
struct SignerFacts {
    QStringList names; ///< common names of the certificates, the signer's first
    bool isDeveloperId = false; ///< rests on a trusted anchor and has the form of Developer ID for code
    QDateTime timestamp; ///< of a trusted time stamp, in UTC; not valid if there is none
    QString problem; ///< why the signature is not that of the code directory; empty if it is
};

/// The common names of certificates in DER form.
[[nodiscard]] QStringList commonNames(const QList<QByteArray> &certificates);

/// Judges the CMS signature of a part that has one. Nothing of the code is looked at.
[[nodiscard]] SignerFacts signerFacts(const codesignature::SignedPart &part, const TrustStore &store);

} // namespace toolchain::review
