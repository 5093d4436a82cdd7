#include "document/resumecommands.h"

#include "document/credentialfields.h"
#include "document/mainwincontroller.h"
#include "notarization/resumeworkflow.h"
#include "platform/applicationhost.h"
#include "platform/itempath.h"
#include "run/waits.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString interfaceIsBlocked = u"Interface is blocked."_s;

/// Those of the run that began the wait; the document's where they are not on record.
Credentials credentialsFor(const WaitRecord &wait, const MainWinController &document)
{
    return wait.credentials.appleID.isEmpty() ? enteredCredentials(document) : wait.credentials;
}

} // namespace

void ResumeCommands::doGoOnWaiting()
{
    setStartedByPerson();
    document.askForItem(
        {.message = u"Choose the “Submitted” folder of the item, or the RequestUUID.txt in it"_s,
         .allowedFileTypes = {u"txt"_s},
         .canChooseFiles = true,
         .canChooseDirectories = true,
         .shouldEnable = &MainWinController::shouldEnableURL},
        [this](const QUrl &chosen) {
            document.changeStatus(status::ready);
            goOnInFolder(itempath::fromUrl(chosen));
        },
        [this] { document.endBeforeStart(); });
}

void ResumeCommands::goOnInFolder(const QString &path)
{
    setStartedByPerson();
    if (const auto wait = waits::at(document.host(), path))
        goOn(*wait);
    else
        refuse(cannotGoOnWaiting, wait.error());
}

void ResumeCommands::goOnByPerson(const WaitRecord &wait)
{
    setStartedByPerson();
    goOn(wait);
}

void ResumeCommands::scriptedResume(const WaitRecord &wait)
{
    document.isScripted.set(true);
    goOn(wait);
}

void ResumeCommands::goOn(const WaitRecord &wait)
{
    if (!document.finishEditing(interfaceIsBlocked) || !begin(wait))
        return;
    showWait(wait);
    RunInputs inputs = document.runInputs();
    inputs.wait = wait;
    inputs.requestUUID = wait.identifier;
    inputs.credentials = credentialsFor(wait, document);
    document.startRun(inputs, resumeWorkflow(), [this](Run &) { document.endStapling(); });
}

/// Has the document be where the run was that uploaded the item.
bool ResumeCommands::begin(const WaitRecord &wait)
{
    document.isBusy.set(true);
    if (wait.credentials.appleID.isEmpty() && !checkCredentialFields(document))
        return false;
    setOriginal(Item(wait.originalPath()), submitAction);
    document.appletURL.set(itempath::toUrl(wait.itemPath()));
    document.submitFilePath.set(wait.itemPath());
    document.loggingToFile.set(wait.logsToFile);
    document.infoFailureCount.set(0);
    document.info239FailureCount.set(0);
    document.cancelPressed.set(false); // it came before, and meant another run
    document.isPolling.set(true);
    document.changeStatus(status::waiting);
    return true;
}

void ResumeCommands::showWait(const WaitRecord &wait)
{
    showItem(wait.original);
    document.stepList.plan(planOf(resumeWorkflow()));
}

} // namespace sealwright
