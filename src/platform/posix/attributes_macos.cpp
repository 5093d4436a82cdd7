#include "platform/posix/hostcalls.h"

#include <copyfile.h>

#include <cerrno>

namespace platform {

bool copyExtendedAttributes(int from, int to)
{
    return fcopyfile(from, to, nullptr, COPYFILE_XATTR) == 0 || errno == ENOTSUP;
}

} // namespace platform
