#include "support/newfile.h"

#include "support/openfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <random>

namespace toolchain {

namespace {

std::string hiddenName()
{
    std::random_device random;
    return ".unpacking." + std::to_string(random()) + std::to_string(random());
}

} // namespace

NewFile::NewFile(int folder, std::string name)
    : m_folder(folder)
    , m_name(std::move(name))
{
    constexpr mode_t ownersAlone = S_IRUSR | S_IWUSR;
    m_descriptor = openat(m_folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, ownersAlone);
    if (m_descriptor >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != ENOENT))
        return;
    m_hiddenName = hiddenName();
    m_descriptor =
        openat(m_folder, m_hiddenName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownersAlone);
}

NewFile::~NewFile()
{
    if (m_descriptor < 0)
        return;
    close(m_descriptor);
    if (!m_hiddenName.empty())
        unlinkat(m_folder, m_hiddenName.c_str(), 0);
}

bool NewFile::write(std::string_view bytes) const
{
    return writeFully(m_descriptor, bytes);
}

bool NewFile::nameIt(const char *name) const
{
    const std::string own = "/proc/self/fd/" + std::to_string(m_descriptor);
    return linkat(AT_FDCWD, own.c_str(), m_folder, name, AT_SYMLINK_FOLLOW) == 0;
}

bool NewFile::finish()
{
    if (m_hiddenName.empty() && nameIt(m_name.c_str()))
        return true;
    if (m_hiddenName.empty()) {
        if (errno != EEXIST)
            return false;
        std::string name = hiddenName();
        if (!nameIt(name.c_str()))
            return false;
        m_hiddenName = std::move(name);
    }
    if (renameat(m_folder, m_hiddenName.c_str(), m_folder, m_name.c_str()) != 0)
        return false;
    m_hiddenName.clear();
    return true;
}

} // namespace toolchain
