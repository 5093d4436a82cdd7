#include "run/toolsession.h"

#include "run/runlog.h"

namespace sealwright {

SLWTaskResponsePtr ToolSession::run(const QString &path, const QStringList &args)
{
    const std::scoped_lock turn(
        m_setup.runner->monitor()); // until the data is ours, no other document's run may empty it
    const auto response = m_setup.runner->runTool(path, args, m_setup.owner);
    response->keepData();
    return response;
}

SLWTaskResponsePtr ToolSession::runAndLog(const QString &path, const QStringList &args)
{
    return logged(run(path, args));
}

SLWTaskResponsePtr ToolSession::askService(const QStringList &args)
{
    return runAltool(m_setup.runner, args);
}

SLWTaskResponsePtr ToolSession::askServiceAndLog(const QStringList &args)
{
    return logged(askService(args));
}

SLWTaskResponsePtr ToolSession::uploadAndLog(const QStringList &args, SLWTaskMaster::Listener listener)
{
    const std::scoped_lock turn(m_setup.uploadRunner->monitor());
    m_setup.uploadRunner->setListener(std::move(listener));
    const auto response = runAltool(m_setup.uploadRunner, args);
    m_setup.uploadRunner->setListener({});
    return logged(response);
}

SLWTaskResponsePtr ToolSession::runAltool(const SLWTaskMasterPtr &runner, const QStringList &args)
{
    const std::scoped_lock turn(runner->monitor());
    const auto response = runner->runAltoolAt(m_setup.altoolPath, args, m_setup.owner);
    response->keepData();
    return response;
}

SLWTaskResponsePtr ToolSession::logged(SLWTaskResponsePtr response)
{
    if (m_logsToFile)
        m_log.logToFile(response->fileLogString());
    return response;
}

} // namespace sealwright
