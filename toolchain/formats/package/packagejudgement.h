#pragma once

#include "formats/codesignature/trust.h"
#include "formats/ticket/ticketjudgement.h"
#include "formats/xar/archive.h"

#include <optional>

namespace toolchain::package {

/// What an installer would say of a package.
struct PackageJudgement {
    enum class Verdict {
        notSigned,
        damaged, ///< a file, or a signature, does not agree with the table
        untrusted, ///< the signatures hold, the certificate does not
        good
    };
    Verdict verdict = Verdict::notSigned;
    QString problem; ///< what speaks against it, for a person; empty for Good
    Trust trust; ///< of the signer at the moment of the time stamp, or now without one
    std::optional<QDateTime> timestamp; ///< UTC; of a trusted token
    Anchor timestampAnchor = Anchor::other;
    QDateTime signingTime; ///< as the signer says it; not valid if it says nothing
    ticket::TicketJudgement ticket; ///< of the one that is attached

    [[nodiscard]] bool isGood() const { return verdict == Verdict::good; }
};

/// Judges a package as an installer does: all checksums, the CMS signature or, in older packages, the RSA
/// one, the certificate with Apple's marks for installer packages, the time stamp, the attached ticket. Reads
/// the whole package.
[[nodiscard]] PackageJudgement judgePackage(const xar::Archive &archive);

} // namespace toolchain::package
