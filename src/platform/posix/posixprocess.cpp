#include "platform/posix/posixprocess.h"

#include "platform/posix/hostcalls.h"
#include "platform/posix/portablecalls.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <csignal>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

/// Where the host refuses, the pipe holds what it held before.
void enlarge(const Pipe &pipe)
{
#ifdef F_SETPIPE_SZ
    fcntl(pipe.writeEnd.get(), F_SETPIPE_SZ, static_cast<int>(PipeReader::capacity));
#else
    Q_UNUSED(pipe)
#endif
}

} // namespace

PosixProcess::PosixProcess(Program program)
    : m_program(std::move(program))
{
}

PosixProcess::~PosixProcess()
{
    if (m_child > 0 && !m_isReaped)
        reapInBackground(m_child);
}

Outcome PosixProcess::launch()
{
    pid_t child = -1;
    Outcome launched = spawnWithPipes(&child);
    if (!launched)
        return launched;
    m_exit = makeExitDescriptor(child);
    if (!m_exit)
        return abandon(child, errno);
    adopt(child);
    return launched;
}

Outcome PosixProcess::spawnWithPipes(pid_t *child)
{
    const auto lock = lockLaunches();
    auto output = makePipe();
    auto error = makePipe();
    if (!output || !error)
        return launchFailure(qt_error_string(errno));
    enlarge(*output);
    const auto input = makeInput();
    if (!input)
        return launchFailure(input.error());
    Outcome spawned = spawn(m_program, {output->writeEnd.get(), error->writeEnd.get(), input->get()},
                            SpawnAs::group, child);
    if (spawned) {
        m_output = PipeReader(std::move(output->readEnd));
        m_error = PipeReader(std::move(error->readEnd));
    }
    return spawned;
}

/// A pipe that holds all that the program is to read; none where that is the application's own input.
Result<UniqueDescriptor> PosixProcess::makeInput() const
{
    if (!m_input)
        return UniqueDescriptor();
    if (m_input->size() > mostInput) // a pipe has room for so much at least, with nobody reading yet
        return Error{u"its input is longer than %1 bytes"_s.arg(mostInput)};
    auto pipe = makePipe();
    const auto length = static_cast<size_t>(m_input->size());
    if (!pipe || !writeFully(pipe->writeEnd.get(), m_input->constData(), length))
        return Error{qt_error_string(errno)};
    return std::move(pipe->readEnd);
}

/// For a child whose end could not be noticed.
Outcome PosixProcess::abandon(pid_t child, int error) const
{
    kill(-child, SIGKILL);
    reapChild(child);
    return launchFailure(qt_error_string(error));
}

void PosixProcess::adopt(pid_t child)
{
    const std::lock_guard lock(m_mutex);
    m_child = child;
    if (m_isTerminationRequested)
        sendTermination();
}

void PosixProcess::waitUntilExit(const DataHandler &output, const DataHandler &error)
{
    if (m_child < 0 || m_isReaped)
        return;
    // The end stands first: a poll that finds the program ended looks at the streams after that, and so finds
    // all that the program has written.
    std::array<pollfd, 3> watched{{{m_exit.get(), POLLIN, 0}, {-1, POLLIN, 0}, {-1, POLLIN, 0}}};
    auto &[exitState, outputState, errorState] = watched;
    do {
        outputState.fd = m_output.descriptor();
        errorState.fd = m_error.descriptor();
        if (poll(watched.data(), watched.size(), -1) < 0)
            continue;
        if (outputState.revents != 0) {
            const QByteArray &chunk = m_output.readChunk();
            if (!chunk.isEmpty())
                output(chunk);
        }
        if (errorState.revents != 0)
            readError((errorState.revents & POLLHUP) != 0, error);
    } while (exitState.revents == 0);
    reap();
}

/// Nothing blocks here: once the last writer has hung up, all that comes is there already.
void PosixProcess::readError(bool isWholeWritten, const DataHandler &handler)
{
    m_collectedError += isWholeWritten ? m_error.readToEnd() : m_error.readChunk();
    if (m_error.isAtEnd() && !m_collectedError.isEmpty())
        handler(std::exchange(m_collectedError, {}));
}

void PosixProcess::reap()
{
    const std::lock_guard lock(m_mutex);
    m_waitStatus = reapChild(m_child);
    m_isReaped = true;
    m_exit.close();
}

QByteArray PosixProcess::readOutputToEnd()
{
    return m_output.readToEnd();
}

QByteArray PosixProcess::readErrorToEnd()
{
    return std::exchange(m_collectedError, {}) + m_error.readToEnd();
}

int PosixProcess::terminationStatus() const
{
    const std::lock_guard lock(m_mutex);
    return WIFSIGNALED(m_waitStatus) ? WTERMSIG(m_waitStatus) : WEXITSTATUS(m_waitStatus);
}

void PosixProcess::terminate()
{
    const std::lock_guard lock(m_mutex);
    m_isTerminationRequested = true;
    if (m_child > 0 && !m_isReaped)
        sendTermination();
}

void PosixProcess::sendTermination() const
{
    if (kill(-m_child, SIGTERM) < 0)
        kill(m_child, SIGTERM); // it has left the group that was made for it
}

Outcome PosixProcess::launchFailure(const QString &reason) const
{
    return Outcome::failure(u"Cannot launch '"_s + m_program.path + u"': "_s + reason);
}

} // namespace platform
