#pragma once

#include "run/step.h"

namespace sealwright {

class SLWTaskResponse;

/// Signs the flat package in the working folder, which codesign cannot, unless its signature is good already.
/// Worker thread.
[[nodiscard]] StepResult checkPkgAndSign(Run &run);

/// Whether the assessment of a package says that its signature is good.
[[nodiscard]] bool hasUsableSignature(const SLWTaskResponse &assessment);

namespace step {
inline constexpr Step signPackage{.name = u"Check and sign package", .work = &checkPkgAndSign};
}

} // namespace sealwright
