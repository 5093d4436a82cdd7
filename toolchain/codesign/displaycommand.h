#pragma once

#include "codesign/options.h"

namespace toolchain::codesign {

/// Shows the signatures of all paths; 0, or 1 if one is not signed or cannot be read.
[[nodiscard]] int runDisplay(const Options &options);

} // namespace toolchain::codesign
