#pragma once

#include "hdiutil/verb.h"

namespace toolchain {

/// `hdiutil attach`: copies the files of an image's volume into a mount folder. Answers the exit status.
[[nodiscard]] int attach(const VerbArguments &words);

} // namespace toolchain
