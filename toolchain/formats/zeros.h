#pragma once

#include <QByteArrayView>

#include <cstring>

namespace toolchain {

/// Whether all bytes are zero, as those of nothing are. As fast as the host compares memory.
[[nodiscard]] inline bool isZero(QByteArrayView bytes)
{
    return bytes.isEmpty()
        || (bytes.front() == '\0'
            && std::memcmp(bytes.data(), bytes.data() + 1, std::size_t(bytes.size() - 1)) == 0);
}

} // namespace toolchain
