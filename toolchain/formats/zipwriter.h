#pragma once

#include <filesystem>
#include <string>

namespace toolchain {

enum class ZipRoot {
    Parent, ///< entries begin with the source's own name
    Contents ///< entries begin with what lies in the source folder
};

/// Packs a file or a folder into a zip archive with deflated entries, symbolic links as links and the
/// modes of all entries. The archive appears under `destination` only when it is whole, in place of a
/// file that was there; until then it grows in a hidden file beside it, which is gone afterwards in
/// every case, also when a signal ends the process during the call. Answers what went wrong, naming the
/// file, or nothing. One call at a time in a process; the locale must be a UTF-8 one.
/// Format: PKWARE's APPNOTE.TXT, the ZIP file format.
[[nodiscard]] std::string writeZipArchive(const std::filesystem::path &source, ZipRoot root,
                                          const std::filesystem::path &destination);

} // namespace toolchain
