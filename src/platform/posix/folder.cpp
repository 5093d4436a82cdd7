#include "platform/posix/folder.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace platform {

Folder::Folder(Place place, Links links)
{
    const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (links == Links::refuse ? O_NOFOLLOW : 0);
    const int descriptor = openat(place.folder, place.name, flags);
    if (descriptor < 0)
        return;
    m_stream.reset(fdopendir(descriptor));
    if (!m_stream)
        close(descriptor);
}

std::optional<std::vector<Folder::Entry>> Folder::entries() const
{
    std::vector<Entry> found;
    for (;;) {
        errno = 0; // only so is an error told from the end
        const dirent *entry = readdir(m_stream.get());
        if (!entry && errno != 0)
            return std::nullopt;
        if (!entry)
            return found;
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            found.push_back({entry->d_name, entry->d_ino, mode_t(DTTOIF(entry->d_type))});
    }
}

QString Trail::path() const
{
    return QFile::decodeName(m_path);
}

} // namespace platform
