#include "signing/signonlyworkflow.h"

#include "document/documentextensions.h"
#include "document/mainwincontroller.h"
#include "document/workingfoldernames.h"
#include "platform/itempath.h"

using namespace Qt::StringLiterals;

// Commands and entries

void SignOnlyWorkflow::doSignOnly()
{
    signByPerson({});
}

void SignOnlyWorkflow::doSignAgain()
{
    if (!recoverOriginal(workingfolder::codeSigned))
        return reportFileNotFound(itempath::fromUrl(document.originalAppletURL()));
    signByPerson(document.originalAppletURL());
}

void SignOnlyWorkflow::signByPerson(const QUrl &url)
{
    setStartedByPerson();
    signOnlyURL(url);
}

void SignOnlyWorkflow::scriptedSignOnly(const QUrl &url)
{
    document.isScripted.set(true);
    signOnlyURL(url);
}

void SignOnlyWorkflow::signOnlyURL(const QUrl &url)
{
    if (!url.isEmpty())
        setOriginal(url, signAction);
    if (!beginSubmitting())
        return;
    const QString identity = document.identitiesPopup.titleOfSelectedItem();
    if (!checkIdentity(identity))
        return;
    if (url.isEmpty())
        chooseItem(identity);
    else
        startWithOriginal(identity);
}

void SignOnlyWorkflow::chooseItem(const QString &identity)
{
    document.askForItem(
        {.message = u"Choose an app or a directory to copy and sign with the hardened runtime"_s,
         .allowedFileTypes = {u"app"_s},
         .canChooseFiles = true,
         .canChooseDirectories = true,
         .shouldEnable = &MainWinController::shouldEnableURL},
        [this, identity](const QUrl &chosen) {
            document.changeStatus(status::submitting);
            setOriginal(chosen, signAction);
            startWithOriginal(identity);
        },
        [this] { document.endBeforeStart(); });
}

void SignOnlyWorkflow::startWithOriginal(const QString &identity)
{
    showItem(document.originalFileName());
    document.stepList.plan(signOnlySteps(isApp(), stepOptions()));
    signOnlyAsyncWithID(identity);
}

void SignOnlyWorkflow::signOnlyAsyncWithID(const QString &identity)
{
    document.canCancel.set(true);
    const bool dontSignEnclosures = document.dontSignEnclosuresCheckbox.isOn();
    const auto entitlements = document.steps().entitlements.assembleEntitlements();
    if (!entitlements)
        return;
    document.dispatchToWorker(
        [this,
         signing = Signing{.entitlements = *entitlements,
                           .identity = identity,
                           .isApp = isApp(),
                           .dontSignEnclosures = dontSignEnclosures}] { runChain(signing); });
}

bool SignOnlyWorkflow::isApp() const
{
    return itempath::lowerExtension(document.originalFileName()) == "app"_L1;
}

// The background chain

void SignOnlyWorkflow::runChain(const Signing &signing)
{
    if (prepareCopy(signing) && signCopy(signing))
        finish();
}

bool SignOnlyWorkflow::prepareCopy(const Signing &signing)
{
    auto &steps = document.steps();
    document.beginStep(Step::makeWorkingCopy);
    if (!goesOn(document.createWorkingFolderAndLog()))
        return false;
    document.beginStep(Step::saveEntitlements);
    if (!goesOn(steps.entitlements.saveEntitlementsDictionary(signing.entitlements)))
        return false;
    document.beginStep(Step::clearAttributes);
    if (!goesOn(steps.signing.clearXattrs()))
        return false;
    if (!signing.isApp)
        return true;
    document.beginStep(Step::lockScript);
    return goesOn(steps.signing.lockMainScpt());
}

bool SignOnlyWorkflow::signCopy(const Signing &signing)
{
    auto &steps = document.steps().signing;
    // Whatever is no app has no main file: all of it are members, and leaving them out would sign nothing.
    const bool signsMembers = !signing.isApp || !signing.dontSignEnclosures;
    if (signsMembers) {
        document.beginStep(Step::signContents);
        if (!goesOn(steps.codesignMembersWithID(signing.identity, signing.isApp)))
            return false;
    }
    if (!signing.isApp)
        return true;
    document.beginStep(Step::signMainFile);
    return goesOn(steps.signAndCheckAppWithID(signing.identity, true));
}

void SignOnlyWorkflow::finish()
{
    document.moveOriginalIntoWorkingFolder();
    document.renameWorkingFolderWith(workingfolder::codeSigned.toString());
    document.logBoldString(u"Code-signing succeeded."_s);
    document.closeLog();
    const bool isSilent = document.suppressDialogs(); // as it was when the work ended: a cancel clears it
    // All of the end is one turn of the main thread: a command that follows at once finds no half of it.
    document.dispatchToMain([this, isSilent] {
        if (isSilent)
            endSilently();
        else
            endWithDialog();
    });
}

// The two ends

void SignOnlyWorkflow::endSilently()
{
    document.changeStatus(status::ready);
    endCommon();
}

void SignOnlyWorkflow::endWithDialog()
{
    document.changeStatus(status::interacting);
    endCommon();
    const QString name = itempath::lastComponent(itempath::fromUrl(document.appletURL()));
    document.beginSuccessSheet(
        {u"Signing Successful"_s, u"Signing of '%1' has been completed."_s.arg(name), {u"OK"_s, u"Show"_s}});
}

void SignOnlyWorkflow::endCommon()
{
    document.resumeScript(document.appletURL());
    document.endWorkflow();
}
