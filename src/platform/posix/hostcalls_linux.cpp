#include "platform/posix/hostcalls.h"

#include "platform/posix/portablecalls.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace platform {

UniqueDescriptor makeExitDescriptor(pid_t child)
{
    UniqueDescriptor descriptor(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
    // Not there in a kernel before 5.3 and in some sandboxes.
    return descriptor ? std::move(descriptor) : makeExitDescriptorByThread(child);
}

namespace {

constexpr size_t most = 0x7ffff000; // what one call moves at most

/// Copies the bytes from one offset up to another one, to where they stand.
bool copyRange(int from, int to, off_t start, off_t end)
{
    off_t target = start;
    while (start < end) {
        const ssize_t count =
            copy_file_range(from, &start, to, &target, std::min(most, static_cast<size_t>(end - start)), 0);
        if (count <= 0)
            return false;
    }
    return true;
}

/// Copies a file with holes, and leaves them holes. False where a part of it fails; nothing is lost by a
/// second try then.
bool copyWithHoles(int from, int to, off_t size)
{
    for (off_t end = 0; end < size;) {
        const off_t start = lseek(from, end, SEEK_DATA);
        if (start < 0 && errno == ENXIO)
            break; // the rest is a hole
        end = start < 0 ? -1 : lseek(from, start, SEEK_HOLE);
        if (end < 0 || !copyRange(from, to, start, end))
            return false;
    }
    return ftruncate(to, size) == 0;
}

/// Whether the file is a sparse one that is about to be copied from its beginning.
bool isSparse(int file, off_t *size)
{
    constexpr off_t blockSize = 512; // as stat(2) counts them
    struct stat state;
    if (fstat(file, &state) < 0 || lseek(file, 0, SEEK_CUR) != 0)
        return false;
    *size = state.st_size;
    return state.st_blocks * blockSize < state.st_size;
}

} // namespace

bool copyContents(int from, int to)
{
    if (ioctl(to, FICLONE, from) == 0)
        return true;
    if (off_t size = 0; isSparse(from, &size)) {
        if (copyWithHoles(from, to, size))
            return true;
        if (lseek(from, 0, SEEK_SET) < 0 || lseek(to, 0, SEEK_SET) < 0 || ftruncate(to, 0) < 0)
            return false;
    }
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
