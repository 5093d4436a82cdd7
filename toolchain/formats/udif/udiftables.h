#pragma once

#include "formats/udif/udifformat.h"

#include <QByteArray>

#include <optional>

/// What lies behind the chunks of a disk image, as values and as bytes.
namespace toolchain::udif {

/// The last 512 bytes of an image.
struct Trailer {
    quint64 dataOffset = 0; ///< of the chunks' bytes in the file
    quint64 dataLength = 0;
    Checksum dataChecksum; ///< of the chunks' bytes as they are stored
    quint64 listOffset = 0;
    quint64 listLength = 0;
    Checksum masterChecksum; ///< of the checksums of all partitions
    quint64 sectorCount = 0; ///< of the disk
};

[[nodiscard]] QByteArray trailerBytes(const Trailer &trailer);

/// Nothing if the bytes are no trailer of the one version there is.
[[nodiscard]] std::optional<Trailer> readTrailer(QByteArrayView bytes);

/// The property list with a table of chunks for each partition.
[[nodiscard]] QByteArray partitionList(const std::vector<Partition> &partitions);

/// Nothing if the bytes are no such list, or if the chunks of a partition leave gaps or overlap.
[[nodiscard]] std::optional<std::vector<Partition>> readPartitionList(const QByteArray &bytes);

/// The CRC-32 of the partitions' checksums, one after the other.
[[nodiscard]] quint32 masterChecksum(const std::vector<Partition> &partitions);

} // namespace toolchain::udif
