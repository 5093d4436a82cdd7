#pragma once

#include "platform/process.h"

#include <atomic>

/// What a scripted process hands over, piece by piece.
struct ScriptedRun {
    QList<QByteArray> chunks = {}; ///< of standard output, while it runs
    QByteArray error = {}; ///< of standard error, while it runs
    QList<QByteArray> lateOutput = {}; ///< what each read after its end finds; nothing when they are used up
    QByteArray lateError = {};
    int status = 0;
    QString launchError = {}; ///< not null: it cannot be launched
    bool throws = false; ///< waiting for it throws
};

/// Makes processes that run nothing: each answers as the test has laid down, in the order of their making.
class ScriptedLauncher : public platform::ProcessLauncher {
public:
    /// The next process does this. Once none is left a process succeeds and prints nothing.
    void add(ScriptedRun run) { m_runs.append(std::move(run)); }

    [[nodiscard]] std::shared_ptr<platform::Process> process(const QString &path,
                                                             const QStringList &arguments) override;
    platform::Outcome launchDetached(const QString &path, const QStringList &arguments) override;

    QList<QStringList> commands; ///< path and arguments of each process made
    std::atomic<int> outputReads = 0; ///< how often a standard output was read to its end

private:
    QList<ScriptedRun> m_runs;
};
