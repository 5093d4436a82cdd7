#include "document/itemcommands.h"

#include "document/applicationinterface.h"
#include "document/entitlementswitches.h"
#include "document/mainwincontroller.h"
#include "platform/applicationhost.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "platform/preferences.h"
#include "run/preferencekeys.h"
#include "run/workingfoldernames.h"
#include "signing/entitlements.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString interfaceIsBlocked = u"Inteface is blocked."_s;

} // namespace

void ItemCommands::setStartedByPerson()
{
    document.isScripted.set(false);
    document.suppressDialogs.set(false);
}

void ItemCommands::setOriginal(const Item &item, LastAction action)
{
    document.originalAppletURL.set(item.url());
    document.originalFileName.set(item.fileName());
    document.lastAction.set(action);
}

Item ItemCommands::original() const
{
    return Item::fromUrl(document.originalAppletURL());
}

bool ItemCommands::recoverOriginal(QStringView suffix)
{
    auto &files = document.host().files;
    const QString original = this->original().path();
    if (files.isReachable(original))
        return true;
    const QString kept = workingfolder::unmodifiedOriginalPath(original, suffix);
    return files.isReachable(kept) && files.copyItem(kept, original);
}

void ItemCommands::reportFileNotFound(const QString &path)
{
    document.changeStatus(status::interacting);
    document.beginSheet(
        {u"File Not Found"_s, u"The file:\n\n‘%1’\n\nhas been moved or deleted."_s.arg(path), {}},
        [this](int) {
            document.lastAction.set(nothingToRepeat);
            document.changeStatus(status::ready);
        });
}

bool ItemCommands::beginSubmitting()
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

bool ItemCommands::refuse(const QString &title, const QString &text)
{
    document.finalAlertOrMessage(title, text, text);
    document.host().application.beep();
    return false;
}

bool ItemCommands::checkIdentity(const QString &identity)
{
    return identity != noIdentitiesPlaceholder
        || refuse(u"No Identities Found"_s, u"No Developer ID codesigning identities have been found."_s);
}

void ItemCommands::showItem(const QString &name)
{
    document.appletNameField.setStringValue(name);
    document.window().setTitle(document.appDelegate().uniqueWindowNameFrom(name));
    document.progressIndicator.startAnimation();
    document.clearLogUnlessKept();
}

StepOptions ItemCommands::stepOptions() const
{
    return {.signsContents = !document.dontSignEnclosuresCheckbox.isOn(),
            .checksSignature = document.host().preferences.boolean(key::prefDoPostCodesignCheck),
            .archive = document.archiveKind()};
}

std::optional<RunInputs> ItemCommands::signingInputs(const QString &identity) const
{
    const QUrl extra = document.extraEntitlementsURL();
    const auto entitlements =
        withExtraEntitlements(entitlementsFromSettings(document), extra, document.host().files);
    if (!entitlements) {
        document.reportFailure(u"Cannot Read Extra Entitlements"_s, entitlements.error());
        return std::nullopt;
    }
    RunInputs inputs = document.runInputs();
    inputs.identity = identity;
    inputs.entitlements = *entitlements;
    inputs.extraEntitlements = itempath::fromUrl(extra);
    return inputs;
}

} // namespace sealwright
