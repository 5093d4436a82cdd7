#include "platform/posix/folderclaim.h"

#include "platform/posix/failure.h"
#include "platform/posix/uniquedescriptor.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

namespace platform {

namespace {

class LockedFolder : public FolderClaim {
public:
    explicit LockedFolder(UniqueDescriptor folder)
        : m_folder(std::move(folder))
    {
    }

private:
    const UniqueDescriptor m_folder;
};

UniqueDescriptor openFolder(const QByteArray &path)
{
    return UniqueDescriptor(open(path.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

/// True as well where the file system has no locks: then nobody can be asked.
bool lock(const UniqueDescriptor &folder)
{
    return flock(folder.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

/// Whether the folder still lies at the path: whoever had the claim before may have put another one there.
bool liesAt(const UniqueDescriptor &folder, const QByteArray &path)
{
    struct stat open;
    struct stat there;
    return fstat(folder.get(), &open) == 0 && lstat(path.constData(), &there) == 0
        && open.st_dev == there.st_dev && open.st_ino == there.st_ino;
}

} // namespace

std::shared_ptr<FolderClaim> claimOf(const QString &path)
{
    const QByteArray native = nativePath(path);
    UniqueDescriptor folder = openFolder(native);
    if (!folder || !lock(folder) || !liesAt(folder, native))
        return nullptr;
    return std::make_shared<LockedFolder>(std::move(folder));
}

bool isClaimedFolder(const QString &path)
{
    const UniqueDescriptor folder = openFolder(nativePath(path));
    return folder && !lock(folder);
}

} // namespace platform
