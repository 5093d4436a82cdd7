#pragma once

#include "formats/codesignature/cmsreader.h"
#include "formats/codesignature/signaturereader.h"

#include <QStringList>

#include <optional>

namespace toolchain::codesign {

/// What codesign shows of a signature, line by line; more with each level from 0 to 6.
[[nodiscard]] QStringList describe(const codesignature::SignedCode &code,
                                   const std::optional<CmsJudgement> &signer, int level);

} // namespace toolchain::codesign
