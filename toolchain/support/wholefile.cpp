#include "support/wholefile.h"

#include "support/openfile.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace fs = std::filesystem;

namespace toolchain {

namespace {

constexpr std::array endingSignals{SIGTERM, SIGINT, SIGHUP};

/// The unfinished file's path for the signal handler, which may look at nothing but plain memory. Of several
/// files at once, as a service has them in its threads, it is the first one's: who serves ends in order and
/// leaves none behind.
std::array<char, PATH_MAX> unfinishedFile = {};
std::atomic<bool> isOneUnfinished = false;

void removeUnfinishedFile(int signalNumber)
{
    unlink(unfinishedFile.data());
    signal(signalNumber, SIG_DFL);
    raise(signalNumber);
}

void setSignalHandlers(void (*handler)(int))
{
    for (const int signalNumber : endingSignals)
        signal(signalNumber, handler);
}

std::string pathBeside(const fs::path &destination)
{
    constexpr std::size_t longestNamePart = 200;
    std::string name = destination.filename().string().substr(0, longestNamePart);
    name.insert(0, 1, '.').append(".XXXXXX");
    return (destination.parent_path() / name).string();
}

int makeRandomlyNamed(std::string &path)
{
    return mkostemp(path.data(), O_CLOEXEC);
}

/// The mask that the process has for new files. To ask by setting it would have it another one for a moment,
/// and that in all threads; proc(5) tells it.
mode_t maskForNewFiles()
{
    std::array<char, 1024> text = {};
    const OpenFile status("/proc/self/status");
    const ssize_t length =
        status.descriptor() < 0 ? -1 : read(status.descriptor(), text.data(), text.size() - 1);
    const std::string_view said(text.data(), std::size_t(std::max<ssize_t>(length, 0)));
    constexpr std::string_view name = "\nUmask:\t";
    const std::size_t place = said.find(name);
    if (place != std::string_view::npos)
        return mode_t(std::strtoul(text.data() + place + name.size(), nullptr, 8));
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

int makeNamed(std::string &path)
{
    unlink(path.c_str());
    return open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
}

/// Makes the file and its removal by a signal one step: a signal that arrives in between waits.
int makeTemporary(std::string &path, int (*make)(std::string &), bool &removedBySignals)
{
    if (path.size() >= unfinishedFile.size()) {
        errno = ENAMETOOLONG;
        return -1;
    }
    sigset_t ending;
    sigset_t before;
    sigemptyset(&ending);
    for (const int signalNumber : endingSignals)
        sigaddset(&ending, signalNumber);
    sigprocmask(SIG_BLOCK, &ending, &before);
    const int descriptor = make(path);
    const int error = errno;
    removedBySignals = descriptor >= 0 && !isOneUnfinished.exchange(true);
    if (removedBySignals) {
        std::memcpy(unfinishedFile.data(), path.c_str(), path.size() + 1);
        setSignalHandlers(removeUnfinishedFile);
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return descriptor;
}

} // namespace

WholeFile::WholeFile(fs::path destination)
    : m_destination(std::move(destination))
    , m_path(pathBeside(m_destination))
    , m_descriptor(makeTemporary(m_path, makeRandomlyNamed, m_removedBySignals))
{
}

WholeFile::WholeFile(fs::path destination, std::string unfinished)
    : m_destination(std::move(destination))
    , m_path(std::move(unfinished))
    , m_descriptor(makeTemporary(m_path, makeNamed, m_removedBySignals))
{
}

WholeFile::~WholeFile()
{
    if (m_descriptor < 0)
        return;
    close(m_descriptor);
    if (!m_finished)
        unlink(m_path.c_str());
    if (!m_removedBySignals)
        return;
    setSignalHandlers(SIG_DFL);
    isOneUnfinished = false;
}

bool WholeFile::write(std::string_view bytes)
{
    return writeFully(m_descriptor, bytes);
}

bool WholeFile::append(int source, std::uint64_t length)
{
    off64_t offset = 0;
    while (std::uint64_t(offset) < length) {
        const std::uint64_t left = length - std::uint64_t(offset);
        const ssize_t copied = copy_file_range(source, &offset, m_descriptor, nullptr, left, 0);
        if (copied > 0)
            continue;
        const bool isUnsupported = copied < 0
            && (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP
                || errno == EBADF);
        if (copied < 0 && errno != EINTR && !isUnsupported)
            return false;
        if (copied == 0 || isUnsupported)
            return appendByHand(source, offset, left);
    }
    return true;
}

bool WholeFile::appendByHand(int source, off_t offset, std::uint64_t length)
{
    std::vector<char> buffer(1 << 18);
    while (length > 0) {
        const ssize_t taken =
            pread(source, buffer.data(), std::min<std::uint64_t>(buffer.size(), length), offset);
        if (taken < 0 && errno == EINTR)
            continue;
        if (taken == 0)
            errno = EIO;
        if (taken <= 0 || !write({buffer.data(), std::size_t(taken)}))
            return false;
        offset += taken;
        length -= std::uint64_t(taken);
    }
    return true;
}

bool WholeFile::takeAfter(int original)
{
    struct stat status = {};
    if (fstat(original, &status) != 0)
        return false;
    m_mode = status.st_mode & 07777;
    std::vector<char> names(64 << 10); // the longest list that Linux has
    const ssize_t length = flistxattr(original, names.data(), names.size());
    for (ssize_t start = 0; start < length; start += ssize_t(std::strlen(&names[std::size_t(start)])) + 1) {
        const char *name = &names[std::size_t(start)];
        std::vector<char> value(64 << 10);
        const ssize_t size = fgetxattr(original, name, value.data(), value.size());
        if (size >= 0 && std::string_view(name).starts_with("user.")
            && fsetxattr(m_descriptor, name, value.data(), std::size_t(size), 0) != 0 && errno != EPERM)
            return false;
    }
    return true;
}

bool WholeFile::finish()
{
    const mode_t mode = m_mode ? *m_mode : 0666 & ~maskForNewFiles();
    m_finished = fchmod(m_descriptor, mode) == 0 && std::rename(m_path.c_str(), m_destination.c_str()) == 0;
    return m_finished;
}

std::string writeWholeFile(const fs::path &path, std::string_view bytes, Readers readers)
{
    WholeFile file(path);
    if (readers == Readers::ownerAlone)
        file.keepPrivate();
    const bool isWritten = file.descriptor() >= 0 && file.write(bytes) && file.finish();
    return isWritten ? std::string() : systemError(path, errno);
}

std::string systemError(const fs::path &path, int error)
{
    return path.string() + ": " + std::strerror(error);
}

} // namespace toolchain
