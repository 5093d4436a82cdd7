#include "run/run.h"

namespace sealwright {

Run::Run(const platform::Host &runHost, RunInputs inputs, RunLog &runLog, ToolSession::Setup setup,
         std::shared_ptr<LiveChoices> choices, std::shared_ptr<Progress> watcher)
    : host(runHost)
    , log(runLog)
    , tools(std::move(setup), runLog, inputs.logsToFile)
    , folder(
          runHost.files, inputs.places, [told = watcher.get()](const Places &places) { told->moved(places); },
          [told = watcher.get()](std::shared_ptr<platform::FolderClaim> claim) {
              told->claimed(std::move(claim));
          })
    , wait(runHost)
    , live(*choices)
    , progress(*watcher)
    , requestUUID(inputs.requestUUID.value_or(QString()))
    , m_inputs(std::move(inputs))
    , m_live(std::move(choices))
    , m_progress(std::move(watcher))
{
}

void Run::nameFolder(QStringView suffix)
{
    if (const auto named = folder.renameTo(suffix); !named)
        log.logString(named.error());
}

void Run::openLog(const QString &path, const QString &banner)
{
    log.close();
    if (m_inputs.logsToFile)
        log.open(path, banner);
}

} // namespace sealwright
