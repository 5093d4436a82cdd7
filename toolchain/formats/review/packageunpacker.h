#pragma once

#include "formats/review/unpack.h"

namespace toolchain::review {

/// `unpack` for flat packages: the files of the xar archive under their names, and in place of each Payload
/// and Scripts archive a folder of that name with what is in it.
[[nodiscard]] platform::Result<void> unpackPackage(const QString &package, const QString &folder,
                                                   UnpackBudget &budget);

} // namespace toolchain::review
