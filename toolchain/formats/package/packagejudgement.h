#pragma once

#include "formats/codesignature/trust.h"
#include "formats/ticket/ticketjudgement.h"
#include "formats/xar/archive.h"

#include <optional>

namespace toolchain::package {

/// What an installer would say of a package.
struct PackageJudgement {
    enum class Verdict {
        NotSigned,
        Damaged, ///< a file, or a signature, does not agree with the table
        Untrusted, ///< the signatures hold, the certificate does not
        Good
    };
    Verdict verdict = Verdict::NotSigned;
    QString problem; ///< what speaks against it, for a person; empty for Good
    Trust trust; ///< of the signer at the moment of the time stamp, or now without one
    std::optional<QDateTime> timestamp; ///< UTC; of a trusted token
    Anchor timestampAnchor = Anchor::Other;
    QDateTime signingTime; ///< as the signer says it; not valid if it says nothing
    ticket::TicketJudgement ticket; ///< of the one that is attached

    [[nodiscard]] bool isGood() const { return verdict == Verdict::Good; }
};

/// Judges a package as an installer does: all checksums, the CMS signature or, in older packages, the RSA
/// one, the certificate with Apple's marks for installer packages, the time stamp, the attached ticket. Reads
/// the whole package.
[[nodiscard]] PackageJudgement judgePackage(const xar::Archive &archive);

} // namespace toolchain::package
