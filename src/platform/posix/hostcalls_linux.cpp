#include "platform/posix/hostcalls.h"

#include "platform/posix/portablecalls.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstdio>

namespace platform {

UniqueDescriptor makeExitDescriptor(pid_t child)
{
    UniqueDescriptor descriptor(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
    // Not there in a kernel before 5.3 and in some sandboxes.
    return descriptor ? std::move(descriptor) : makeExitDescriptorByThread(child);
}

bool copyContents(int from, int to)
{
    if (ioctl(to, FICLONE, from) == 0)
        return true;
    if (isSparse(from))
        return copyContentsWithHoles(from, to);
    constexpr size_t most = 0x7ffff000; // what one call moves at most
    ssize_t total = 0;
    for (;;) {
        const ssize_t count = copy_file_range(from, nullptr, to, nullptr, most, 0);
        if (count == 0 && total > 0)
            return true;
        // A file that is made up by the system may look empty to this call. And whatever else it objects to,
        // both offsets stand where plain reading and writing has to go on, which also tells a real error.
        if (count <= 0)
            return copyContentsByReading(from, to);
        total += count;
    }
}

bool renameToFreePath(const char *from, const char *to)
{
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS)
        return false;
    return renameToUnoccupiedPath(from, to); // the file system has no such rename
}

bool exchangeItems(const char *first, const char *second)
{
    return renameat2(AT_FDCWD, first, AT_FDCWD, second, RENAME_EXCHANGE) == 0;
}

} // namespace platform
