// The runs that a document starts, and their good ends.

#include "document/applicationinterface.h"
#include "document/runwatcher.h"
#include "platform/itempath.h"
#include "run/workflow.h"

using namespace Qt::StringLiterals;

namespace sealwright {

RunInputs MainWinController::runInputs() const
{
    RunInputs inputs;
    inputs.places = {.original = itempath::fromUrl(originalAppletURL()),
                     .fileName = originalFileName(),
                     .item = itempath::fromUrl(appletURL()),
                     .upload = submitFilePath()};
    inputs.logsToFile = loggingToFile();
    inputs.skipPaths = skipPaths();
    return inputs;
}

RunPtr MainWinController::makeRun(const RunInputs &inputs, std::function<void(Run &)> atEnd)
{
    m_runCount.increment();
    folderClaim.set(nullptr);
    folderLeftIn.set({});
    serviceIssues.set(u"[]"_s);
    const auto watcher =
        std::make_shared<RunWatcher>(shared_from_this(), m_runCount(), inputs.places, std::move(atEnd));
    const ToolSession::Setup tools{.runner = taskRunner(),
                                   .uploadRunner = uploadTaskRunner(),
                                   .owner = uniqueID,
                                   .altoolPath = altoolPath()};
    return std::make_shared<Run>(host(), inputs, log, tools, watcher, watcher);
}

void MainWinController::startRun(const RunInputs &inputs, const Workflow &workflow,
                                 std::function<void(Run &)> atEnd)
{
    std::make_shared<Driver>(makeRun(inputs, std::move(atEnd)), workflow)->start();
}

ArchiveKind MainWinController::archiveKind() const
{
    if (!useDiskImage())
        return ArchiveKind::zip;
    return m_appDelegate.hasDropDMG() && useDropDMG() ? ArchiveKind::diskImageByDropDMG
                                                      : ArchiveKind::diskImage;
}

// All of an end is one turn of the main thread: a command that follows at once finds no half of it.

void MainWinController::endSigning()
{
    const bool isSilent = suppressDialogs(); // as it was when the work ended: a cancel clears it
    dispatchToMain([this, isSilent] {
        changeStatus(isSilent ? status::ready : status::interacting);
        resumeScript(whereItLies(appletURL()));
        endWorkflow();
        if (!isSilent)
            beginSuccessSheet({u"Signing Successful"_s,
                               u"Signing of '%1' has been completed."_s.arg(itemName()),
                               {u"OK"_s, u"Show"_s}});
    });
}

void MainWinController::endStapling()
{
    const bool isSilent = suppressDialogs();
    if (!isSilent)
        changeStatus(status::interacting); // at once, unlike after signing
    dispatchToMain([this, isSilent] {
        resumeScript(whereItLies(scriptResult()));
        endWorkflow();
        if (isSilent)
            return changeStatus(status::ready);
        beginSuccessSheet({u"Stapling Successful"_s,
                           u"The file '%1' is now ready for distribution."_s.arg(itemName()),
                           {u"OK"_s, u"Show File"_s}});
    });
}

void MainWinController::endWithUpload()
{
    dispatchToMain([this] {
        resumeScript(whereItLies(appletURL()));
        changeStatus(status::ready);
        endWorkflow();
    });
}

QUrl MainWinController::whereItLies(const QUrl &url) const
{
    const QString folder = folderLeftIn();
    if (folder.isNull())
        return url;
    return itempath::toUrl(itempath::appending(folder, itempath::lastComponent(itempath::fromUrl(url))));
}

QString MainWinController::itemName() const
{
    return itempath::lastComponent(itempath::fromUrl(appletURL()));
}

} // namespace sealwright
