#include "tools/slwtaskmaster.h"

#include "tools/logging.h"

#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qsizetype bufferCapacity = 10000;
constexpr qsizetype ownerCapacity = 20;
constexpr qsizetype leastLateBytes = 2; // a lone byte left in a pipe is thrown away
constexpr int altoolRetries = 10;

const QString xcrunPath = u"/usr/bin/xcrun"_s;
const QString altoolName = u"altool"_s;

std::shared_ptr<OutputBuffer> newBuffer()
{
    auto buffer = std::make_shared<OutputBuffer>();
    buffer->update([](QByteArray &bytes) { bytes.reserve(bufferCapacity); });
    return buffer;
}

void emptyInPlace(OutputBuffer &buffer)
{
    buffer.update([](QByteArray &bytes) { bytes.truncate(0); }); // empty, but not null
}

bool lacksRoom(const QByteArray &bytes, const QByteArray &more)
{
    return bytes.size() + more.size() > bytes.capacity();
}

void append(QByteArray &bytes, const QByteArray &more)
{
    if (lacksRoom(bytes, more)) // made in place, while append() would copy all
        bytes.reserve(qMax(bytes.size() + more.size(), 2 * bytes.capacity()));
    bytes.append(more);
}

void append(OutputBuffer &buffer, const QByteArray &more)
{
    buffer.update([&more](QByteArray &bytes) { append(bytes, more); });
}

void pause(double seconds)
{
    if (seconds > 0)
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

} // namespace

SLWTaskMaster::SLWTaskMaster(platform::ProcessLauncher &launcher, RunnerPauses pauses)
    : m_launcher(launcher)
    , m_pauseAfterExit(pauses.afterExit)
    , m_altoolRetryPause(pauses.altoolRetry)
    , lastOutput(newBuffer())
    , lastError(newBuffer())
{
    cancelledOwners.update([](QStringList &owners) { owners.reserve(ownerCapacity); });
}

SLWTaskResponsePtr SLWTaskMaster::runAltoolAt(const QString &path, const QStringList &withArgs,
                                              const QString &forOwner)
{
    return runTool(path, path == xcrunPath ? QStringList{altoolName} + withArgs : withArgs, forOwner);
}

SLWTaskResponsePtr SLWTaskMaster::runTool(const QString &path, const QStringList &withArgs,
                                          const QString &forOwner)
{
    const std::scoped_lock turn(m_monitor);
    ownerID.set(forOwner);
    emptyInPlace(*lastOutput);
    emptyInPlace(*lastError);
    const auto response = SLWTaskResponse::responseWithPath(path, withArgs);
    if (takeCancellation(forOwner)) {
        response->status.set(statusSkipped);
        return response;
    }
    qCDebug(toolsLogging).noquote() << "runs:" << path << "for" << forOwner;
    const auto task = m_launcher.process(path, withArgs);
    currentTask.set(task);
    if (const auto launched = task->launch(); !launched)
        return launchFailed(response, launched.error());
    waitForTool(*task);
    readLateOutput(*task, response);
    currentTask.set(nullptr);
    response->setData(lastOutput, lastError);
    ownerID.set({});
    qCDebug(toolsLogging).noquote() << "ended:" << path << "with" << response->status();
    return response;
}

bool SLWTaskMaster::takeCancellation(const QString &owner)
{
    return cancelledOwners.update([&owner](QStringList &owners) { return owners.removeAll(owner) > 0; });
}

SLWTaskResponsePtr SLWTaskMaster::launchFailed(const SLWTaskResponsePtr &response, const QString &description)
{
    // The current task stays: it is what a cancel finds until the next run, and remembers its owner for.
    append(*lastError, description.toUtf8());
    response->status.set(statusLaunchFailure);
    response->setData(lastOutput, lastError);
    ownerID.set({});
    return response;
}

void SLWTaskMaster::waitForTool(platform::Process &task)
{
    task.waitUntilExit([this](const QByteArray &chunk) { takeOutput(chunk); },
                       [this](const QByteArray &whole) { append(*lastError, whole); });
    m_outputAhead.pause();
}

void SLWTaskMaster::takeOutput(const QByteArray &chunk)
{
    lastOutput->update([&](QByteArray &bytes) {
        if (lacksRoom(bytes, chunk))
            m_outputAhead.pause();
        append(bytes, chunk);
        m_outputAhead.follow(bytes.data() + bytes.size(), bytes.capacity() - bytes.size());
    });
    if (m_listener)
        m_listener(chunk);
}

void SLWTaskMaster::readLateOutput(platform::Process &task, const SLWTaskResponsePtr &response)
{
    pause(m_pauseAfterExit);
    response->status.set(task.terminationStatus());
    appendLateBytes(*lastOutput, task.readOutputToEnd());
    if (response->status() == 0 && response->args.contains(altoolName)) {
        // The notary tool at times ends before its report is in the pipe.
        for (int retry = 0; retry < altoolRetries && (*lastOutput)().isEmpty(); ++retry) {
            pause(m_altoolRetryPause);
            appendLateBytes(*lastOutput, task.readOutputToEnd());
        }
    }
    appendLateBytes(*lastError, task.readErrorToEnd());
}

void SLWTaskMaster::appendLateBytes(OutputBuffer &buffer, const QByteArray &bytes)
{
    if (bytes.size() >= leastLateBytes)
        append(buffer, bytes);
}

bool SLWTaskMaster::terminateTaskFor(const QString &owner)
{
    if (!currentTask())
        return false;
    if (ownerID() != owner)
        cancelledOwners.update([&owner](QStringList &owners) { owners.append(owner); });
    else if (const auto task = currentTask()) // not the one of before: another's run may have ended since
        task->terminate();
    return true;
}

QString SLWTaskMaster::outputString() const
{
    return decodedToolOutput((*lastOutput)());
}

QString SLWTaskMaster::errorString() const
{
    return decodedToolOutput((*lastError)());
}

QString SLWTaskMaster::fileLogString() const
{
    return toolReport(lastPath(), lastArgsString(), lastStatus(), outputString(), errorString());
}

} // namespace sealwright
