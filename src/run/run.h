#pragma once

#include "platform/host.h"
#include "run/credentials.h"
#include "run/item.h"
#include "run/live.h"
#include "run/runfolder.h"
#include "run/runlog.h"
#include "run/status.h"
#include "run/toolsession.h"
#include "run/waitrecords.h"

#include <QVariantMap>

#include <memory>
#include <optional>

namespace sealwright {

/// What a run is about, as it was when the run began.
struct RunInputs {
    Places places;
    bool logsToFile = false; ///< a log file is wanted
    QString identity; ///< a name without its prefix
    QVariantMap entitlements;
    QString extraEntitlements; ///< path of the file that they hold as well; empty for none
    QStringList skipPaths; ///< what the signer skips, relative to the item
    Credentials credentials;

    // What is asked of the service
    std::optional<QString> requestUUID; ///< nothing for the newest request
    WaitRecord wait = {}; ///< what the run goes on with, where it is one that another has begun
    quint64 firstPage = 0; ///< of the history
    quint64 pageLimit = 0; ///< the first page that is not asked for
    OutputFormat format = OutputFormat::normal;
};

/// How the wait for a verdict stands.
struct WaitState {
    double delay = 0; ///< seconds between polls, fixed when the wait begins
    quint64 failures = 0; ///< ordinary ones
    quint64 failures239 = 0;
};

/// One workflow at work on one item. It is made on the main thread and takes along copies of what it works
/// with; from then on it belongs to one worker at a time. What it must read at its moment comes by `live`;
/// whoever shows it hears of it by `progress` and sees its log.
class Run {
public:
    /// The document behind all of this lives as long as the run, by the two last arguments.
    Run(const platform::Host &host, RunInputs inputs, RunLog &log, ToolSession::Setup tools,
        std::shared_ptr<LiveChoices> live, std::shared_ptr<Progress> progress);

    const RunInputs &inputs() const { return m_inputs; }
    /// Path of what is worked on.
    const QString &itemPath() const { return folder.places().item; }
    /// Opens the log file, if one is wanted, with the banner at its head. One that is open is closed first.
    void openLog(const QString &path, const QString &banner);
    /// Gives the folder its next name. That it has kept the one it had is a line of the log and no failure.
    void nameFolder(QStringView suffix);

    const platform::Host &host;
    RunLog &log;
    ToolSession tools;
    RunFolder folder;
    KeptWait wait;
    LiveChoices &live;
    Progress &progress;

    // What one step hands to the next
    QString identifier; ///< of the upload; null until one is known
    QString requestUUID; ///< the service's name for the upload; null until one is known
    WaitState polling;
    std::optional<QVariant> answer; ///< what a query has found, for the script that has asked
    SLWTaskResponsePtr response; ///< the same, as the tool gave it

private:
    const RunInputs m_inputs;
    const std::shared_ptr<LiveChoices> m_live;
    const std::shared_ptr<Progress> m_progress;
};

using RunPtr = std::shared_ptr<Run>;

} // namespace sealwright
