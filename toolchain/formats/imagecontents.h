#pragma once

#include "formats/packedfiles.h"

namespace toolchain {

/// Reads the first HFS+ volume of a disk image through, unpacking nothing to disk.
[[nodiscard]] PackedFiles readImageContents(const QString &path, const KeepsBytes &keepsBytes);

} // namespace toolchain
