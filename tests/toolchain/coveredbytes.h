#pragma once

#include "formats/codesignature/machoimage.h"

#include <QList>
#include <QStringList>

/// Which bytes of an item its signatures cover.
namespace coveredbytes {

/// Bytes of a file that no signature covers: of a Mach-O file the length of the signature as a whole and what
/// stands behind it within its room, the header of a universal file, and what lies between its slices.
[[nodiscard]] QList<toolchain::codesignature::ByteRange> uncovered(const QString &path);

[[nodiscard]] bool isCovered(const QList<toolchain::codesignature::ByteRange> &ranges, quint64 offset);

/// The files of a folder, hidden ones too, in the order of their paths; links are none.
[[nodiscard]] QStringList filesBelow(const QString &folder);

} // namespace coveredbytes
