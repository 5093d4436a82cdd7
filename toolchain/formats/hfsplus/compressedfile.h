#pragma once

#include "formats/bytestreams.h"

#include <QByteArray>

namespace toolchain::hfsplus {

/// Whether a file that its file system compresses can be unpacked here, by its attribute com.apple.decmpfs:
/// bytes as they are or packed by zlib, in the attribute or in the resource fork. Format: bsd/sys/decmpfs.h
/// of Apple's published kernel sources.
[[nodiscard]] bool canUnpackCompressed(QByteArrayView attribute);

/// The size of the unpacked file in bytes, as the attribute tells.
[[nodiscard]] quint64 unpackedSize(QByteArrayView attribute);

/// Gives the unpacked bytes to the sink. `fork` reads the resource fork, which is `forkSize` bytes long.
/// False if the sink stops it or the bytes are not those of a compressed file.
[[nodiscard]] bool unpackCompressed(QByteArrayView attribute, const ByteSource &fork, quint64 forkSize,
                                    const ByteSink &sink);

} // namespace toolchain::hfsplus
