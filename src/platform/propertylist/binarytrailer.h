#pragma once

#include <QByteArrayView>

#include "platform/result.h"

namespace platform::propertylist {

/// What a list in the binary form begins with.
inline constexpr QByteArrayView binaryMagic = "bplist00";
/// Bytes of the trailer, with which it ends.
inline constexpr qint64 trailerSize = 32;
/// The largest integer that a size, an offset or a reference is stored in.
inline constexpr int largestField = 8;

/// The last 32 bytes, which say how to read the rest. Format: CFBinaryPList.c of Apple's published
/// CoreFoundation.
struct Trailer {
    int offsetSize = 0; ///< bytes
    int referenceSize = 0; ///< bytes
    quint64 objectCount = 0;
    quint64 topObject = 0;
    quint64 tableOffset = 0;
};

/// The trailer of a whole list, whose table of offsets lies within the list. An error names the byte.
[[nodiscard]] Result<Trailer> readTrailer(QByteArrayView list);

/// A big-endian number of 1 to 8 bytes, which the caller knows to be there.
[[nodiscard]] quint64 fieldAt(QByteArrayView list, qint64 position, int size);

/// "Byte 7: MESSAGE".
[[nodiscard]] Error errorAt(qint64 position, const QString &message);

} // namespace platform::propertylist
