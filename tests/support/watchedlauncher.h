#pragma once

#include "platform/posix/posixprocesslauncher.h"

#include <atomic>

/// The real launcher, which lets a test act in the gaps around each run of a tool. The hooks are called on
/// the thread of the run with the path that the workflow names, and hold the run up until they return.
class WatchedLauncher : public platform::PosixProcessLauncher {
public:
    using PosixProcessLauncher::PosixProcessLauncher;

    /// Before there is a process that a cancel could reach.
    std::function<void(const QString &path)> beforeRun;
    /// When the process has ended and nobody has looked at its status yet.
    std::function<void(const QString &path)> afterRun;

    /// Whether a program may run that is not yet known by its process number: a cancel ends it a moment
    /// later. Any thread.
    bool isLaunching() const { return m_launching > 0; }

    [[nodiscard]] std::shared_ptr<platform::Process> process(const QString &path,
                                                             const QStringList &arguments) override;

private:
    std::atomic<int> m_launching = 0;
};
