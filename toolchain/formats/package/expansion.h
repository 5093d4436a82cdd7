#pragma once

#include "formats/package/safefolder.h"
#include "formats/xar/archive.h"

namespace toolchain::package {

enum class Depth {
    archive, ///< the package's own files; its scripts become a folder, payloads stay as they are
    payloads ///< payloads become folders too
};

/// Unpacks a package into a new folder, as `pkgutil --expand` and `--expand-full` do. Device nodes, links
/// that lead out, and what does not agree with the table's digests are errors, and then there is no folder.
[[nodiscard]] platform::Outcome expandPackage(const xar::Archive &archive, const QString &folder,
                                              Depth depth);

} // namespace toolchain::package
