#pragma once

#include "formats/codesignature/cmsreader.h"
#include "formats/codesignature/signaturereader.h"
#include "formats/codesignature/verification.h"

namespace toolchain::codesignature {

/// Verifies one part of an item: its directories, its CMS signature, the files beside the code, and the code.
/// `signer` is filled in if there is a CMS signature.
[[nodiscard]] CodeProblem checkPart(const SignedCode &code, qsizetype part, const VerificationOrder &order,
                                    std::optional<CmsJudgement> &signer);

} // namespace toolchain::codesignature
