#pragma once

#include <QString>

namespace toolchain {

/// Unpacks a zip archive into a folder, which is made if it is not there: files, folders, symbolic links,
/// modes, times, and attributes from AppleDouble entries. Whatever leads out of the folder is refused before
/// anything is written: names with "..", absolute names, links to somewhere else; and so are devices, and
/// archives that hold more than the folder has room for. A file that is there is replaced as a whole; links
/// that are there are not followed. Answers what went wrong, naming the entry or the file, or an empty text;
/// what has been unpacked until then stays.
[[nodiscard]] QString extractZipArchive(const QString &archive, const QString &folder);

} // namespace toolchain
