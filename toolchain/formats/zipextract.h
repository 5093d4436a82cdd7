#pragma once

#include <QString>

#include "platform/result.h"

namespace toolchain {

/// Unpacks a zip archive into a folder, which is made if it is not there: files, folders, symbolic links,
/// modes, times, and attributes from AppleDouble entries. Whatever leads out of the folder is refused before
/// anything is written: names with "..", absolute names, links to somewhere else; and so are devices, and
/// archives that hold more than the folder has room for. A file that is there is replaced as a whole; links
/// that are there are not followed. An error names the entry or the file; what has been unpacked until then
/// stays.
[[nodiscard]] platform::Outcome extractZipArchive(const QString &archive, const QString &folder);

} // namespace toolchain
