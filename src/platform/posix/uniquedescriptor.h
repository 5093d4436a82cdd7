#pragma once

#include <unistd.h>

#include <utility>

namespace platform {

/// Owns an open file descriptor; -1 when it owns none.
class UniqueDescriptor {
public:
    UniqueDescriptor() = default;
    explicit UniqueDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    UniqueDescriptor(UniqueDescriptor &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    UniqueDescriptor &operator=(UniqueDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~UniqueDescriptor() { close(); }

    int get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }

    /// Closes early. The result is that of close(2): some file systems tell only here that a write failed.
    bool close()
    {
        const int descriptor = std::exchange(m_descriptor, -1);
        return descriptor < 0 || ::close(descriptor) == 0;
    }

private:
    int m_descriptor = -1;
};

} // namespace platform
