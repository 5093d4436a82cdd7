#pragma once

#include "formats/review/unpack.h"

namespace toolchain::review {

/// `unpack` for what libarchive reads: zip, tar, cpio, compressed or not, and one compressed file alone.
[[nodiscard]] platform::Result<void> unpackStream(const QString &archive, ArchiveKind kind,
                                                  const QString &folder, UnpackBudget &budget);

/// `mayHoldCode` for the same.
[[nodiscard]] platform::Result<bool> streamMayHoldCode(const QString &archive, ArchiveKind kind,
                                                       UnpackBudget &budget);

} // namespace toolchain::review
