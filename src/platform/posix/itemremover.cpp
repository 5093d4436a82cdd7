#include "platform/posix/itemremover.h"

#include "platform/posix/failure.h"
#include "platform/posix/folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

bool removeEntry(Place place, Trail &trail);

bool removeEntries(const Folder &folder, Trail &trail)
{
    const auto entries = folder.entries();
    if (!entries)
        return false;
    for (const Folder::Entry &entry : *entries) {
        trail.enter(entry.name.c_str());
        if (!removeEntry({folder.descriptor(), entry.name.c_str()}, trail))
            return false;
        trail.leave();
    }
    return true;
}

/// On failure the trail is at the entry that failed, and the reason in errno.
bool removeEntry(Place place, Trail &trail)
{
    if (unlinkat(place.folder, place.name, 0) == 0)
        return true;
    const int error = errno;
    if (error != EISDIR && error != EPERM) // a folder's answer: that of Linux, and that of POSIX
        return false;
    if (const Folder folder(place, Links::refuse); folder) {
        if (!removeEntries(folder, trail))
            return false;
    } else if (errno == ENOTDIR || errno == ELOOP) {
        errno = error; // no folder, then
        return false;
    }
    // One that cannot be listed may still be empty.
    return unlinkat(place.folder, place.name, AT_REMOVEDIR) == 0;
}

} // namespace

Outcome removeTree(const QString &path)
{
    const QByteArray native = nativePath(path);
    Trail trail(native);
    if (removeEntry({AT_FDCWD, native.constData()}, trail))
        return Outcome::success();
    return failure(u"remove"_s, trail.path());
}

} // namespace platform
