#pragma once

#include <QString>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>

/// A file in memory for readers that want a path, which is the same in each round.
class MemoryFile {
public:
    /// Puts the input of a round into the file, and answers its path.
    [[nodiscard]] QString with(const std::uint8_t *data, std::size_t size) const
    {
        const bool isWritten = ftruncate(m_descriptor, 0) == 0
            && pwrite(m_descriptor, data, size, 0) == static_cast<ssize_t>(size);
        if (!isWritten)
            std::abort();
        return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor);
    }

private:
    const int m_descriptor = memfd_create("input", 0);
};
