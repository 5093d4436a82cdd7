#pragma once

#include "platform/result.h"

#include <filesystem>
#include <string>

namespace toolchain {

enum class ZipRoot {
    contents, ///< the source's contents lie at the top of the archive
    parent ///< everything lies under the source's own name
};

/// Where extended attributes and resource forks go, as AppleDouble files.
enum class ZipAttributes {
    beside, ///< "._NAME" in the folder of NAME
    sequestered, ///< in the same place below a folder "__MACOSX"
    leftOut
};

struct ZipOptions {
    ZipRoot root = ZipRoot::contents;
    ZipAttributes attributes = ZipAttributes::beside;
    int level = 6; ///< of compression, from 0 to 9
};

/// Writes a zip archive of a file or folder with symbolic links, modes, times and attributes. Names are kept
/// byte for byte; two of them that macOS takes for one are refused. The archive appears under its path only
/// when it is whole. An error names the file.
[[nodiscard]] platform::Outcome writeZipArchive(const std::filesystem::path &source,
                                                const ZipOptions &options,
                                                const std::filesystem::path &destination);

} // namespace toolchain
