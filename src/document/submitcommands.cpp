#include "document/submitcommands.h"

#include "document/applicationinterface.h"
#include "document/credentialfields.h"
#include "document/mainwincontroller.h"
#include "notarization/submitworkflow.h"
#include "run/workingfoldernames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

// Commands and entries

void SubmitCommands::doSubmit()
{
    submitByPerson({});
}

void SubmitCommands::doDirectSubmit()
{
    _cancelDirectSubmitUI();
    submitByPerson(document.originalAppletURL());
}

void SubmitCommands::doCancelDirectSubmit()
{
    _cancelDirectSubmitUI();
    document.stepList.plan({});
}

void SubmitCommands::submitByPerson(const QUrl &url)
{
    setStartedByPerson();
    submitURL(url);
}

void SubmitCommands::scriptedSubmit(const QUrl &url)
{
    document.isScripted.set(true);
    submitURL(url);
}

void SubmitCommands::doSubmitAgain()
{
    if (!recoverOriginal(workingfolder::notarized))
        return reportFileNotFound(original().path());
    submitByPerson(document.originalAppletURL());
}

// Checks

void SubmitCommands::submitURL(const QUrl &url)
{
    const Item item = Item::fromUrl(url);
    if (!item.isNone())
        setOriginal(item, submitAction);
    if (!beginSubmitting())
        return;
    document.info239FailureCount.set(0);
    if (!checkFields(item))
        return;
    if (item.isNone())
        chooseItem();
    else
        startWithOriginal();
}

bool SubmitCommands::checkFields(const Item &item)
{
    if (!checkCredentialFields(document))
        return false;
    const QString identity = document.identitiesPopup.titleOfSelectedItem();
    if (!checkIdentity(identity))
        return false;
    if (item.kind() == ItemKind::pkg && !document.appDelegate().installerIdentities().contains(identity))
        return refuse(
            u"Installer Identity Not Found"_s,
            u"Packages require a 'Developer ID Installer' certificate that matches the identity you have chosen (%1)."_s
                .arg(identity));
    return true;
}

bool SubmitCommands::checkKind()
{
    const Item item = original();
    if (item.kind() != ItemKind::other)
        return true;
    return refuse(u"Cannot Submit Item"_s,
                  u"'%1' is not an app, plugin, fmplugin, flat package or disk image."_s.arg(item.path()));
}

void SubmitCommands::chooseItem()
{
    document.askForItem(
        {.message = u"Choose an app, plugin, fmplugin, flat package or disk image to copy and submit"_s,
         .allowedFileTypes = submittableExtensions(),
         .canChooseFiles = true,
         .canChooseDirectories = false,
         .shouldEnable = &MainWinController::shouldEnableURL},
        [this](const QUrl &chosen) {
            document.changeStatus(status::submitting);
            setOriginal(Item::fromUrl(chosen), submitAction);
            startWithOriginal();
        },
        [this] { document.endBeforeStart(); });
}

// The run

void SubmitCommands::startWithOriginal()
{
    if (!checkKind())
        return;
    showItem(document.originalFileName());
    planSteps();
    submitAsync();
}

Workflow SubmitCommands::workflow() const
{
    return submitWorkflow(itemKind(document.originalFileName()), stepOptions());
}

void SubmitCommands::planSteps()
{
    document.stepList.plan(planOf(workflow()));
}

void SubmitCommands::submitAsync()
{
    document.canCancel.set(true);
    document.submitFilePath.set({});
    auto inputs = signingInputs(document.identitiesPopup.titleOfSelectedItem());
    if (!inputs)
        return;
    inputs->credentials = enteredCredentials(document);
    document.startRun(*inputs, workflow(), [this](Run &) { document.endStapling(); });
}

} // namespace sealwright
