#pragma once

#include "platform/posix/pipereader.h"
#include "platform/posix/spawn.h"
#include "platform/process.h"

#include <mutex>
#include <optional>

namespace platform {

/// A child process in a process group of its own. One that is dropped while it runs goes on running, with
/// nobody at the other end of its streams.
class PosixProcess : public Process {
public:
    explicit PosixProcess(Program program);
    ~PosixProcess() override;
    PosixProcess(const PosixProcess &) = delete;
    PosixProcess &operator=(const PosixProcess &) = delete;

    void setInput(const QByteArray &bytes) override { m_input = bytes; }
    Outcome launch() override;
    void waitUntilExit(const DataHandler &output, const DataHandler &error) override;
    QByteArray readOutputToEnd() override;
    QByteArray readErrorToEnd() override;
    int terminationStatus() const override;
    void terminate() override;

private:
    Outcome spawnWithPipes(pid_t *child);
    Result<UniqueDescriptor> makeInput() const;
    Outcome launchFailure(const QString &reason) const;
    Outcome abandon(pid_t child, int error) const;
    void adopt(pid_t child);
    void readError(bool isWholeWritten, const DataHandler &handler);
    void reap();
    void sendTermination() const;

    const Program m_program;
    std::optional<QByteArray> m_input;
    PipeReader m_output;
    PipeReader m_error;
    QByteArray m_collectedError; // until its end of file
    UniqueDescriptor m_exit; // readable when the program has ended

    // A number of a process may be given to another as soon as the process is reaped. So nobody reaps and
    // nobody signals without this lock.
    mutable std::mutex m_mutex;
    pid_t m_child = -1;
    bool m_isReaped = false;
    bool m_isTerminationRequested = false;
    int m_waitStatus = 0;
};

} // namespace platform
