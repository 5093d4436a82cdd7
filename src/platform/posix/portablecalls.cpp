#include "platform/posix/portablecalls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <thread>

namespace platform {

namespace {

UniqueDescriptor aboveStandardStreams(int descriptor)
{
    UniqueDescriptor owned(descriptor);
    if (descriptor > STDERR_FILENO)
        return owned;
    return UniqueDescriptor(fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

int makeUninheritedPipe(int ends[2])
{
#ifdef __APPLE__
    return pipe(ends); // there a program inherits nothing that it is not given by name
#else
    return pipe2(ends, O_CLOEXEC);
#endif
}

/// Copies the bytes from one offset up to another one, to where they stand.
bool copyRange(int from, int to, off_t start, off_t end)
{
    constexpr off_t size = 256 * 1024;
    const std::unique_ptr<char[]> buffer(new char[size]);
    if (lseek(to, start, SEEK_SET) < 0)
        return false;
    while (start < end) {
        const ssize_t count =
            pread(from, buffer.get(), static_cast<size_t>(std::min(size, end - start)), start);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0 || !writeFully(to, buffer.get(), static_cast<size_t>(count)))
            return count == 0; // one that has become shorter
        start += count;
    }
    return true;
}

} // namespace

std::optional<Pipe> makePipe()
{
    int ends[2];
    if (makeUninheritedPipe(ends) < 0)
        return std::nullopt;
    // One after the other would let the first move fill the place of the second.
    UniqueDescriptor writeEnd = aboveStandardStreams(ends[1]);
    UniqueDescriptor readEnd = aboveStandardStreams(ends[0]);
    if (!readEnd || !writeEnd)
        return std::nullopt;
    return Pipe{std::move(readEnd), std::move(writeEnd)};
}

UniqueDescriptor makeExitDescriptorByThread(pid_t child)
{
    auto pipe = makePipe();
    if (!pipe)
        return {};
    // The end of the child is told by closing the write end.
    std::thread([child, writeEnd = std::move(pipe->writeEnd)] {
        siginfo_t ignored;
        while (waitid(P_PID, static_cast<id_t>(child), &ignored, WEXITED | WNOWAIT) < 0 && errno == EINTR) { }
    }).detach();
    return std::move(pipe->readEnd);
}

bool copyContentsByReading(int from, int to)
{
    constexpr size_t size = 256 * 1024;
    const std::unique_ptr<char[]> buffer(new char[size]);
    for (;;) {
        const ssize_t count = read(from, buffer.get(), size);
        if (count == 0)
            return true;
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0 && !writeFully(to, buffer.get(), static_cast<size_t>(count)))
            return false;
    }
}

bool isSparse(int file)
{
    constexpr off_t blockSize = 512; // as stat(2) counts them
    struct stat state;
    return fstat(file, &state) == 0 && lseek(file, 0, SEEK_CUR) == 0
        && off_t(state.st_blocks) * blockSize < state.st_size;
}

bool copyContentsWithHoles(int from, int to)
{
    struct stat state;
    if (fstat(from, &state) < 0)
        return false;
    for (off_t end = 0; end < state.st_size;) {
        const off_t start = lseek(from, end, SEEK_DATA);
        if (start < 0 && errno == ENXIO)
            break; // the rest is a hole
        end = start < 0 ? -1 : lseek(from, start, SEEK_HOLE);
        if (end < 0 || !copyRange(from, to, start, end))
            return false;
    }
    return ftruncate(to, state.st_size) == 0;
}

bool writeFully(int to, const char *bytes, size_t count)
{
    while (count > 0) {
        const ssize_t written = write(to, bytes, count);
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0) {
            bytes += written;
            count -= static_cast<size_t>(written);
        }
    }
    return true;
}

int reapChild(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return -1;
    }
    return status;
}

bool renameToUnoccupiedPath(const char *from, const char *to)
{
    struct stat ignored;
    if (lstat(to, &ignored) == 0) {
        errno = EEXIST;
        return false;
    }
    return rename(from, to) == 0;
}

void reapInBackground(pid_t child)
{
    std::thread([child] { reapChild(child); }).detach();
}

} // namespace platform
