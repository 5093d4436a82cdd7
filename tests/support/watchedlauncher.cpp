#include "support/watchedlauncher.h"

namespace {

class WatchedProcess : public platform::Process {
public:
    WatchedProcess(std::shared_ptr<Process> process, std::atomic<int> &launching,
                   std::function<void()> afterRun)
        : m_process(std::move(process))
        , m_launching(launching)
        , m_afterRun(std::move(afterRun))
    {
    }

    void setInput(const QByteArray &bytes) override { m_process->setInput(bytes); }
    platform::Outcome launch() override
    {
        ++m_launching;
        platform::Outcome launched = m_process->launch();
        --m_launching;
        return launched;
    }
    void waitUntilExit(const DataHandler &output, const DataHandler &error) override
    {
        m_process->waitUntilExit(output, error);
        m_afterRun();
    }
    QByteArray readOutputToEnd() override { return m_process->readOutputToEnd(); }
    QByteArray readErrorToEnd() override { return m_process->readErrorToEnd(); }
    int terminationStatus() const override { return m_process->terminationStatus(); }
    void terminate() override { m_process->terminate(); }

private:
    const std::shared_ptr<Process> m_process;
    std::atomic<int> &m_launching;
    const std::function<void()> m_afterRun;
};

} // namespace

std::shared_ptr<platform::Process> WatchedLauncher::process(const QString &path, const QStringList &arguments)
{
    if (beforeRun)
        beforeRun(path);
    return std::make_shared<WatchedProcess>(PosixProcessLauncher::process(path, arguments), m_launching,
                                            [this, path] {
                                                if (afterRun)
                                                    afterRun(path);
                                            });
}
