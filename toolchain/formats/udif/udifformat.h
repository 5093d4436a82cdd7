#pragma once

#include <QString>

#include <vector>

/// Numbers and structures of UDIF disk images. Apple has published no description; these are the ones that
/// its own and other programs are seen to write and read.
namespace toolchain::udif {

inline constexpr quint64 sectorSize = 512; ///< bytes
inline constexpr qsizetype trailerSize = 512;
inline constexpr qsizetype trailerHasDataFork = 24; ///< offset and length of the chunks' bytes in the file
inline constexpr qsizetype trailerHasDataChecksum = 80;
inline constexpr qsizetype trailerHasList = 216; ///< offset and length of the property list
inline constexpr qsizetype trailerHasSignature = 296; ///< offset and length of a code signature
inline constexpr qsizetype trailerHasMasterChecksum = 352;
inline constexpr qsizetype trailerHasSectorCount = 492;
inline constexpr qsizetype tableHeaderSize = 204; ///< of a partition's table of chunks
inline constexpr qsizetype tableHasChecksum = 64;
inline constexpr qsizetype tableEntrySize = 40;
inline constexpr quint32 crc32Kind = 2; ///< the kind of checksum that is a CRC-32
inline constexpr qsizetype checksumSize = 128; ///< bytes kept for a checksum, however short it is

inline constexpr quint64 longestChunk = 16 << 20; ///< bytes, unpacked, that are read; usual are up to one MiB

inline constexpr quint32 zeroChunk = 0;
inline constexpr quint32 rawChunk = 1;
inline constexpr quint32 ignoredChunk = 2; ///< free blocks, read as zeros
inline constexpr quint32 adcChunk = 0x80000004;
inline constexpr quint32 zlibChunk = 0x80000005;
inline constexpr quint32 bzip2Chunk = 0x80000006;
inline constexpr quint32 lzfseChunk = 0x80000007;
inline constexpr quint32 xzChunk = 0x80000008;
inline constexpr quint32 commentChunk = 0x7ffffffe;
inline constexpr quint32 lastChunk = 0xffffffff;

/// A run of sectors of a partition, and where their bytes are.
struct Chunk {
    quint32 kind = zeroChunk;
    quint64 firstSector = 0; ///< counted from the partition's first
    quint64 sectorCount = 0;
    quint64 offset = 0; ///< of the bytes in the data fork
    quint64 length = 0; ///< of the bytes as they are stored
};

struct Checksum {
    quint32 kind = 0; ///< 0: there is none
    quint32 value = 0; ///< as long as the kind is CRC-32
};

/// A partition of the disk, or a part of the disk that belongs to none.
struct Partition {
    QString name;
    quint64 firstSector = 0; ///< on the disk
    quint64 sectorCount = 0;
    Checksum checksum; ///< of all its bytes as they are on the disk
    std::vector<Chunk> chunks; ///< without gaps, from the partition's first sector to its last
};

} // namespace toolchain::udif
