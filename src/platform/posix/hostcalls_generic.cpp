#include "platform/posix/hostcalls.h"

#include "platform/posix/portablecalls.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

namespace platform {

UniqueDescriptor makeExitDescriptor(pid_t child)
{
    return makeExitDescriptorByThread(child);
}

bool copyContents(int from, int to)
{
    return isSparse(from) ? copyContentsWithHoles(from, to) : copyContentsByReading(from, to);
}

bool renameToFreePath(const char *from, const char *to)
{
    return renameToUnoccupiedPath(from, to);
}

bool exchangeItems(const char *, const char *)
{
    errno = ENOTSUP;
    return false;
}

} // namespace platform
