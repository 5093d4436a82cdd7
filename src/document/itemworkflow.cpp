#include "document/itemworkflow.h"

#include "app/appdelegate.h"
#include "app/preferencekeys.h"
#include "document/documentextensions.h"
#include "document/mainwincontroller.h"
#include "document/workingfoldernames.h"
#include "platform/applicationhost.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/preferences.h"

using namespace Qt::StringLiterals;

namespace {

const QString interfaceIsBlocked = u"Inteface is blocked."_s;

} // namespace

void ItemWorkflow::setStartedByPerson()
{
    document.isScripted.set(false);
    document.suppressDialogs.set(false);
}

void ItemWorkflow::setOriginal(const QUrl &url, LastAction action)
{
    const QString path = itempath::fromUrl(url);
    document.originalAppletURL.set(itempath::toUrl(path));
    document.originalFileName.set(itempath::lastComponent(path));
    document.lastAction.set(action);
}

bool ItemWorkflow::recoverOriginal(QStringView suffix)
{
    auto &files = document.host().files;
    const QString original = itempath::fromUrl(document.originalAppletURL());
    if (files.isReachable(original))
        return true;
    const QString kept = workingfolder::unmodifiedOriginalPath(original, suffix);
    return files.isReachable(kept) && files.copyItem(kept, original);
}

void ItemWorkflow::reportFileNotFound(const QString &path)
{
    document.changeStatus(status::interacting);
    document.beginSheet(
        {u"File Not Found"_s, u"The file:\n\n‘%1’\n\nhas been moved or deleted."_s.arg(path), {}},
        [this](int) {
            document.lastAction.set(nothingToRepeat);
            document.changeStatus(status::ready);
        });
}

bool ItemWorkflow::beginSubmitting()
{
    if (!document.finishEditing(interfaceIsBlocked))
        return false;
    document.changeStatus(status::submitting);
    document.isBusy.set(true);
    document.isSubmitting.set(true);
    document.infoFailureCount.set(0);
    document.loggingToFile.set(document.host().preferences.boolean(key::detailedLogToFile));
    return true;
}

bool ItemWorkflow::refuse(const QString &title, const QString &text)
{
    document.finalAlertOrMessage(title, text, text);
    document.host().application.beep();
    return false;
}

bool ItemWorkflow::checkIdentity(const QString &identity)
{
    return identity != noIdentitiesPlaceholder
        || refuse(u"No Identities Found"_s, u"No Developer ID codesigning identities have been found."_s);
}

void ItemWorkflow::showItem(const QString &name)
{
    document.appletNameField.setStringValue(name);
    document.window().setTitle(document.appDelegate().uniqueWindowNameFrom(name));
    document.progressIndicator.startAnimation();
    document.clearLogUnlessKept();
}

StepOptions ItemWorkflow::stepOptions() const
{
    return {.signsContents = !document.dontSignEnclosuresCheckbox.isOn(),
            .checksSignature = document.host().preferences.boolean(key::prefDoPostCodesignCheck),
            .archive = document.steps().archive.chosenStep()};
}

bool ItemWorkflow::goesOn(bool stepWorked) const
{
    if (!stepWorked || !document.cancelPressed())
        return stepWorked;
    // The cancel has ended the list, but a step may have begun since.
    document.dispatchToMain([this] { document.stepList.finish(StepState::cancelled); });
    return false;
}
