#include "support/wholefile.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace fs = std::filesystem;

namespace toolchain {

namespace {

constexpr std::array endingSignals{SIGTERM, SIGINT, SIGHUP};

/// The unfinished file's path for the signal handler, which may look at nothing but plain memory.
std::array<char, PATH_MAX> unfinishedFile = {};

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

/// Makes the file and its removal by a signal one step: a signal that arrives in between waits.
int makeTemporary(std::string &path)
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
    const int descriptor = mkostemp(path.data(), O_CLOEXEC);
    const int error = errno;
    if (descriptor >= 0) {
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
    , m_descriptor(makeTemporary(m_path))
{
}

WholeFile::~WholeFile()
{
    if (m_descriptor < 0)
        return;
    close(m_descriptor);
    if (!m_finished)
        unlink(m_path.c_str());
    setSignalHandlers(SIG_DFL);
}

bool WholeFile::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t length = ::write(m_descriptor, bytes.data(), bytes.size());
        if (length < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
}

bool WholeFile::finish()
{
    const mode_t mask = umask(0);
    umask(mask);
    m_finished =
        fchmod(m_descriptor, 0666 & ~mask) == 0 && std::rename(m_path.c_str(), m_destination.c_str()) == 0;
    return m_finished;
}

std::string writeWholeFile(const fs::path &path, std::string_view bytes)
{
    WholeFile file(path);
    const bool isWritten = file.descriptor() >= 0 && file.write(bytes) && file.finish();
    return isWritten ? std::string() : systemError(path, errno);
}

std::string systemError(const fs::path &path, int error)
{
    return path.string() + ": " + std::strerror(error);
}

} // namespace toolchain
