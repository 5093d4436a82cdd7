#pragma once

#include "formats/bytestreams.h"

#include <QFile>

namespace toolchain {

/// Gives the next `length` bytes of an open file to the sink, block by block. False if the sink stops it or
/// the file does not give them all.
[[nodiscard]] inline bool readBlocks(QFile &file, qint64 length, const ByteSink &sink)
{
    constexpr qint64 blockSize = 1 << 18;
    while (length > 0) {
        const QByteArray block = file.read(std::min(blockSize, length));
        if (block.isEmpty() || !sink(block))
            return false;
        length -= block.size();
    }
    return true;
}

} // namespace toolchain
