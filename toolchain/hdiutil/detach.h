#pragma once

#include "hdiutil/verb.h"

namespace toolchain {

/// `hdiutil detach`: removes the copy that attach has made. Answers the exit status.
[[nodiscard]] int detach(const VerbArguments &words);

/// `hdiutil info`: lists the attached images. Answers the exit status.
[[nodiscard]] int info(const VerbArguments &words);

} // namespace toolchain
