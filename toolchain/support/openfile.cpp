#include "support/openfile.h"

#include <fcntl.h>
#include <unistd.h>

namespace toolchain {

OpenFile::OpenFile(const std::filesystem::path &path, LastLink link)
    : m_descriptor(
        open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | (link == LastLink::Refused ? O_NOFOLLOW : 0)))
{
}

OpenFile::~OpenFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

} // namespace toolchain
