#pragma once

#include "hdiutil/verb.h"

namespace toolchain {

/// `hdiutil verify`: compares all checksums of an image. Answers the exit status.
[[nodiscard]] int verify(const VerbArguments &words);

/// `hdiutil imageinfo`: tells what an image is. Answers the exit status.
[[nodiscard]] int imageInfo(const VerbArguments &words);

} // namespace toolchain
