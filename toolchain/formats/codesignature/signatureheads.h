#pragma once

#include "formats/codesignature/machoimage.h"
#include "formats/codesignature/superblob.h"

#include "platform/result.h"

namespace toolchain::codesignature {

/// The signature at a place of a file, its code directories cut off before the digests of the code and saying
/// that there are none: of a program of some gigabytes those take tens of megabytes, and to sign it anew
/// nobody asks for them. What such a directory's own digest would be cannot be told afterwards.
[[nodiscard]] platform::Result<SuperBlob> readSignatureHeads(QIODevice &file, ByteRange place);

} // namespace toolchain::codesignature
