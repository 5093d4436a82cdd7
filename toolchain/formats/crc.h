#pragma once

#include <QByteArrayView>

#include <zlib.h>

namespace toolchain {

/// CRC-32 of bytes, or of what came before them and them.
[[nodiscard]] inline quint32 crcOf(QByteArrayView bytes, quint32 before = 0)
{
    return quint32(crc32(before, reinterpret_cast<const Bytef *>(bytes.data()), uInt(bytes.size())));
}

/// CRC-32 of two runs of bytes from those of each.
[[nodiscard]] inline quint32 joinedCrc(quint32 first, quint32 second, quint64 secondLength)
{
    return quint32(crc32_combine(first, second, z_off_t(secondLength)));
}

} // namespace toolchain
