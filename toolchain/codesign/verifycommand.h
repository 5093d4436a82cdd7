#pragma once

#include "codesign/options.h"

namespace toolchain::codesign {

/// Verifies all paths; 0 if all are valid, 1 if one is not, 2 for options that mean nothing, 3 if all are
/// valid and one does not meet a requirement.
[[nodiscard]] int runVerify(const Options &options);

} // namespace toolchain::codesign
