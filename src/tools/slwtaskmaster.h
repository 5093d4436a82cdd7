#pragma once

#include "platform/memoryahead.h"
#include "platform/process.h"
#include "tools/slwtaskresponse.h"

#include <atomic>
#include <functional>
#include <mutex>

namespace sealwright {

/// How long a runner waits, in seconds.
struct RunnerPauses {
    double afterExit = 0.15; ///< after a tool has ended, for what its streams still hold
    double altoolRetry =
        0.1; ///< before each further look at the output of a notary tool that printed nothing
};

/// A runner of external tools: one at a time, each as one blocking call.
///
/// The rules that keep this right:
/// - The monitor is held for the whole of a run. Others wait their turn at it, in no promised order. It is
///   recursive, so that a caller may take it to keep the next run from emptying the buffers that it still
///   reads.
/// - `terminateTaskFor` takes no monitor: a cancel must get through while a run holds it. All that the two
///   share are fields that are read and written as a whole.
/// - A cancel names its owner. If the run in progress is that owner's, the tool is ended; if it is another's,
///   the owner's next run is skipped; if there is none, the cancel has no effect, then or later.
class SLWTaskMaster {
public:
    explicit SLWTaskMaster(platform::ProcessLauncher &launcher, RunnerPauses pauses = {});

    Property<QString> ownerID; ///< of the run in progress; null when idle
    Property<std::shared_ptr<platform::Process>> currentTask; ///< of the run in progress; null when idle,
                                                              ///< save after a failed launch
    Property<QStringList> cancelledOwners; ///< whose next run is to be skipped
    Property<qint64> lastStatus{-1};
    Property<QString> lastPath;
    Property<QString> lastArgsString;

    /// Runs the tool and blocks until it has ended. Any thread but the main one, save for the probe at
    /// launch. A tool's failure is its status; one that cannot be launched has status 11000 and the reason as
    /// its error.
    [[nodiscard]] SLWTaskResponsePtr runTool(const QString &path, const QStringList &withArgs,
                                             const QString &forOwner);

    /// The same for the notary tool: by its own path, or as the first argument of xcrun.
    [[nodiscard]] SLWTaskResponsePtr runAltoolAt(const QString &path, const QStringList &withArgs,
                                                 const QString &forOwner);

    /// Ends the owner's tool, or has its next run skipped while another owner's tool runs. False, and without
    /// any effect, when nothing runs. Any thread; never blocks.
    bool terminateTaskFor(const QString &owner);

    using Listener = std::function<void(const QByteArray &output)>;
    /// What hears the standard output of the next runs, piece by piece as it comes and on their thread; empty
    /// for nobody. Only for who holds the monitor.
    void setListener(Listener listener) { m_listener = std::move(listener); }

    /// The seconds that this runner waits after a tool has ended. Any thread; a run in progress may still
    /// wait as before.
    double pauseAfterExit() const { return m_pauseAfterExit; }
    void setPauseAfterExit(double seconds) { m_pauseAfterExit = seconds; }

    /// Held by whoever needs the buffers to stay as they are after a run.
    std::recursive_mutex &monitor() { return m_monitor; }

    QString outputString() const;
    QString errorString() const;
    QString fileLogString() const;

private:
    bool takeCancellation(const QString &owner);
    SLWTaskResponsePtr launchFailed(const SLWTaskResponsePtr &response, const QString &description);
    void waitForTool(platform::Process &task);
    void takeOutput(const QByteArray &chunk);
    void readLateOutput(platform::Process &task, const SLWTaskResponsePtr &response);
    void appendLateBytes(OutputBuffer &buffer, const QByteArray &bytes);

    platform::ProcessLauncher &m_launcher;
    std::atomic<double> m_pauseAfterExit;
    const double m_altoolRetryPause;
    std::recursive_mutex m_monitor;
    Listener m_listener;
    platform::MemoryAhead m_outputAhead;
    const std::shared_ptr<OutputBuffer> lastOutput;
    const std::shared_ptr<OutputBuffer> lastError;
};

using SLWTaskMasterPtr = std::shared_ptr<SLWTaskMaster>;

} // namespace sealwright
