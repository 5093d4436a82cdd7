#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QStringList>

#include <functional>
#include <memory>

namespace platform {

/// One run of a program. Made idle, launched once at most. One thread launches, waits and reads; `terminate`
/// may come from any thread at any time.
class Process {
public:
    using DataHandler = std::function<void(const QByteArray &)>;

    virtual ~Process() = default;

    /// What the program reads as its standard input, before that ends; at most `mostInput` bytes, or the
    /// launch fails. For secrets, which other programs can see in neither the arguments nor the environment.
    /// Without this call standard input is the application's. Comes before the launch.
    virtual void setInput(const QByteArray &bytes) = 0;
    static constexpr qsizetype mostInput = 4096;

    /// Starts the program with two pipes of its own for its output streams. Environment and working directory
    /// are the application's. Fails with the reason when the program cannot be started.
    virtual Outcome launch() = 0;

    /// Blocks until the program has ended. Meanwhile it hands over standard output chunk by chunk as it
    /// arrives and standard error in one piece at its end of file, on the calling thread. What arrives later
    /// than the program's end is left for the two reads below.
    virtual void waitUntilExit(const DataHandler &output, const DataHandler &error) = 0;

    /// What is left of standard output, read to its end of file; empty after that. Blocks while another
    /// process holds the stream open.
    virtual QByteArray readOutputToEnd() = 0;

    /// The same for standard error.
    virtual QByteArray readErrorToEnd() = 0;

    /// The status that the program returned, or the number of the signal that ended it. Valid once it has
    /// ended.
    virtual int terminationStatus() const = 0;

    /// Asks the program and the processes that it started to end. Does nothing once the program has ended. A
    /// request that comes before the launch is carried out right after it.
    virtual void terminate() = 0;
};

/// Makes processes. Any thread.
class ProcessLauncher {
public:
    virtual ~ProcessLauncher() = default;

    /// An idle process for the program at `path` (absolute, as a workflow names it) with these arguments.
    [[nodiscard]] virtual std::shared_ptr<Process> process(const QString &path,
                                                           const QStringList &arguments) = 0;

    /// Starts a program in the background and forgets it; its streams are the application's.
    virtual Outcome launchDetached(const QString &path, const QStringList &arguments) = 0;
};

} // namespace platform
