#pragma once

#include "hdiutil/verb.h"

namespace toolchain {

/// `hdiutil create`: makes a compressed disk image of a folder or an item. Answers the exit status.
[[nodiscard]] int create(const VerbArguments &words);

} // namespace toolchain
