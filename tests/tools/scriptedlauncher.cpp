#include "tools/scriptedlauncher.h"

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace {

class ScriptedProcess : public platform::Process {
public:
    ScriptedProcess(ScriptedRun run, std::atomic<int> &outputReads)
        : m_run(std::move(run))
        , m_outputReads(outputReads)
    {
    }

    void setInput(const QByteArray &) override { }

    platform::Outcome launch() override
    {
        return m_run.launchError.isNull() ? platform::Outcome::success()
                                          : platform::Outcome::failure(m_run.launchError);
    }

    void waitUntilExit(const DataHandler &output, const DataHandler &error) override
    {
        if (m_run.throws)
            throw std::runtime_error("the wait broke");
        for (const QByteArray &chunk : m_run.chunks)
            output(chunk);
        error(m_run.error);
    }

    QByteArray readOutputToEnd() override
    {
        ++m_outputReads;
        return m_run.lateOutput.isEmpty() ? QByteArray() : m_run.lateOutput.takeFirst();
    }

    QByteArray readErrorToEnd() override { return std::exchange(m_run.lateError, {}); }
    int terminationStatus() const override { return m_run.status; }
    void terminate() override { }

private:
    ScriptedRun m_run;
    std::atomic<int> &m_outputReads;
};

} // namespace

std::shared_ptr<platform::Process> ScriptedLauncher::process(const QString &path,
                                                             const QStringList &arguments)
{
    commands.append(QStringList{path} + arguments);
    return std::make_shared<ScriptedProcess>(m_runs.isEmpty() ? ScriptedRun{} : m_runs.takeFirst(),
                                             outputReads);
}

platform::Outcome ScriptedLauncher::launchDetached(const QString &, const QStringList &)
{
    return platform::Outcome::success();
}
