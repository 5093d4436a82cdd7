#pragma once

#include "formats/udif/udifformat.h"

#include <QByteArray>

#include <optional>

/// How the bytes of a disk image's chunks are packed, as values in and values out. Any thread.
namespace toolchain::udif {

/// A format of read-only images, by what hdiutil calls it.
struct ImageFormat {
    enum class Support { reading, readingAndMaking }; ///< what can be done here with images of it

    quint32 chunkKind = rawChunk; ///< of those chunks that it makes smaller
    const char *name = "";
    const char *description = "";
    qsizetype chunkSize = 0; ///< bytes of the disk in a chunk
    Support support = Support::reading;
    int mostThreads = 0; ///< that may pack at once without taking much memory

    [[nodiscard]] constexpr bool isMade() const { return support == Support::readingAndMaking; }
};

/// The format of that name, such as "UDZO"; nothing if there is none.
[[nodiscard]] std::optional<ImageFormat> imageFormat(const QString &name);

/// The format whose chunks are of that kind; UDRO for all kinds that are no packing.
[[nodiscard]] ImageFormat imageFormatOf(quint32 chunkKind);

/// The names of the formats that can be made, for a message: "UDZO, UDBZ, ULMO and UDRO".
[[nodiscard]] QString formatsMade();

/// The bytes packed as one chunk of that kind; empty if that would not be shorter. `level` is zlib's and
/// bzip2's, from 1 to 9.
[[nodiscard]] QByteArray packedChunk(quint32 chunkKind, QByteArrayView bytes, int level);

/// Whether chunks of that kind can be unpacked here.
[[nodiscard]] bool canUnpack(quint32 chunkKind);

/// Unpacks a chunk into exactly `size` bytes; nothing if it does not hold just those. Takes no more memory
/// than the chunk and twice what is in it.
[[nodiscard]] std::optional<QByteArray> unpackedChunk(quint32 chunkKind, QByteArrayView stored,
                                                      qsizetype size);

} // namespace toolchain::udif
