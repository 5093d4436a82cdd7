#pragma once

#include "tools/slwtaskmaster.h"

namespace sealwright {

class RunLog;

/// The tools of one run: which runners it goes to, as whose, and whether the log file gets each tool's
/// report. Worker thread; each call blocks until the tool has ended.
class ToolSession {
public:
    /// The runners are two of the application's, or twice the document's own.
    struct Setup {
        SLWTaskMasterPtr runner; ///< for all tools but the upload
        SLWTaskMasterPtr uploadRunner;
        QString owner; ///< whose tools a cancel ends
        QString altoolPath;
    };

    ToolSession(Setup setup, RunLog &log, bool logsToFile)
        : m_setup(std::move(setup))
        , m_log(log)
        , m_logsToFile(logsToFile)
    {
    }

    /// Whether a log file is wanted for this run.
    bool logsToFile() const { return m_logsToFile; }

    const QString &altoolPath() const { return m_setup.altoolPath; }

    SLWTaskResponsePtr run(const QString &path, const QStringList &args);
    SLWTaskResponsePtr runAndLog(const QString &path, const QStringList &args);
    /// The notary tool.
    SLWTaskResponsePtr askService(const QStringList &args);
    SLWTaskResponsePtr askServiceAndLog(const QStringList &args);
    /// The listener hears what the notary tool prints, piece by piece, while it still runs.
    SLWTaskResponsePtr uploadAndLog(const QStringList &args, SLWTaskMaster::Listener listener = {});

private:
    SLWTaskResponsePtr runAltool(const SLWTaskMasterPtr &runner, const QStringList &args);
    SLWTaskResponsePtr logged(SLWTaskResponsePtr response);

    const Setup m_setup;
    RunLog &m_log;
    const bool m_logsToFile;
};

} // namespace sealwright
