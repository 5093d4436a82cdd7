#pragma once

#include "formats/sealedtree.h"

#include <functional>

namespace toolchain {

struct ZipContents {
    SealedTree files; ///< every file and link by its path in the archive
    QMap<QString, QByteArray> kept; ///< the bytes of those files that were asked for
    QString error; ///< why the archive cannot be read to its end; empty if it can
};

/// Reads a zip archive through once, unpacking nothing to disk. `keepsBytes` tells by an entry's path
/// whether its bytes are wanted; of a file longer than 64 MiB they are an error. Two entries of one path
/// are an error as well, since nobody could tell which of them will be on disk. The locale must be a
/// UTF-8 one.
/// Format: PKWARE's APPNOTE.TXT, the ZIP file format.
[[nodiscard]] ZipContents readZipArchive(const QString &path,
                                         const std::function<bool(const QString &)> &keepsBytes);

/// Whether a file begins as a zip archive does; false also for one that cannot be read.
[[nodiscard]] bool looksLikeZipArchive(const QString &path);

} // namespace toolchain
