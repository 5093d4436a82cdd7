#pragma once

#include "formats/packedfiles.h"

namespace toolchain {

/// Reads a zip archive through once, unpacking nothing to disk. Two entries of one path are an error, since
/// nobody could tell which of them will be on disk. The locale must be a UTF-8 one.
/// Format: PKWARE's APPNOTE.TXT, the ZIP file format.
[[nodiscard]] PackedFiles readZipArchive(const QString &path, const KeepsBytes &keepsBytes);

/// Whether a file begins as a zip archive does; false also for one that cannot be read.
[[nodiscard]] bool looksLikeZipArchive(const QString &path);

} // namespace toolchain
