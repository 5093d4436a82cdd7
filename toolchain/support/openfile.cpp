#include "support/openfile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace toolchain {

OpenFile::OpenFile(const std::filesystem::path &path, LastLink link)
    : m_descriptor(
        open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | (link == LastLink::refused ? O_NOFOLLOW : 0)))
{
}

OpenFile::~OpenFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

bool readFully(int file, std::uint64_t offset, char *target, std::ptrdiff_t size)
{
    while (size > 0) {
        const ssize_t length = pread(file, target, std::size_t(size), off_t(offset));
        if (length < 0 && errno == EINTR)
            continue;
        if (length == 0)
            errno = 0;
        if (length <= 0)
            return false;
        target += length;
        size -= length;
        offset += std::uint64_t(length);
    }
    return true;
}

bool writeFully(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t length = write(descriptor, bytes.data(), bytes.size());
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0)
            return false;
        bytes.remove_prefix(std::size_t(length));
    }
    return true;
}

} // namespace toolchain
