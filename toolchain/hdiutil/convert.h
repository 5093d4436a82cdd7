#pragma once

#include "hdiutil/verb.h"

namespace toolchain {

/// `hdiutil convert`: writes an image in another format. Answers the exit status.
[[nodiscard]] int convert(const VerbArguments &words);

} // namespace toolchain
