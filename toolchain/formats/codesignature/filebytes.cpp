#include "formats/codesignature/filebytes.h"

#include <unistd.h>

#include <cerrno>

namespace toolchain::codesignature {

bool readAt(int descriptor, char *buffer, quint64 length, quint64 offset)
{
    while (length > 0) {
        const ssize_t got = pread(descriptor, buffer, length, off_t(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got == 0)
            errno = EIO;
        if (got <= 0)
            return false;
        buffer += got;
        offset += quint64(got);
        length -= quint64(got);
    }
    return true;
}

bool writeAt(int descriptor, QByteArrayView bytes, quint64 offset)
{
    while (!bytes.isEmpty()) {
        const ssize_t put = pwrite(descriptor, bytes.data(), std::size_t(bytes.size()), off_t(offset));
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0)
            return false;
        bytes = bytes.sliced(put);
        offset += quint64(put);
    }
    return true;
}

} // namespace toolchain::codesignature
