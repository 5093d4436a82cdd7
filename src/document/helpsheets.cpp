#include "document/helpsheets.h"

#include "document/documentcommands.h"
#include "document/mainwincontroller.h"
#include "platform/itempath.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString appleAccountSite = u"https://appleid.apple.com/account/manage"_s;

const QString appPass =
    u"Notarizing uses a tool that requires password authorization. This means you need to do two things:\n\n• Set up an app-specific password. You do this by signing into you Apple ID account page <%1>, and clicking Generate Password below App-Specific Passwords.\n\n• Add the app-specific password to your login keychain. Open Keychain Access.app, select the login keychain on the left, choose File -> New Password Item…, and enter the name of your app-specific password as the Keychain Item Name, enter your Apple ID for the Account Name, and enter the actual app-specific password in the Password field.\n\nYou should enter the name of the app-specific password in the selected field."_s;
const QString providerWithChoose =
    u"You do not need to enter anything into this field unless your Developer ID is used for more than one development team.\n\nClick the Choose button to choose from your provider short names."_s;
const QString providerWithoutChoose =
    u"You do not need to enter anything into this field unless your Developer ID is used for more than development one team.\n\nThe Choose button, which lets you choose from the teams you are a member of, is only available if you have Xcode version 11 or later installed."_s;
const QString extraEntitlements =
    u"If you need to code-sign your app with entitlements not shown here, you can click on the Extra entitlements checkbox and select a .plist file containing them. In the case of conflict, those in the file will override other settings made here."_s;
const QString activeExtraEntitlements = u"The active extra entitlements file is ‘%1’."_s;
const QString diskImageOptions =
    u"When submitting other than a disk image file, Sealwright can either upload a .zip version of the file after signing it, and then staple the signed file, or it can upload a locked disk image of the file, and then staple that disk image ready for distribution.\n\nIf you choose to create a disk image and you have the application DropDMG.app installed, you can choose a DropDMG configuration to be used. This allows you greater control over the arrangement and contents of the disk image.\n\nOtherwise Sealwright will create a disk image containing just the submitted file.\n\nThe notarization process only accepts read-only Mac .dmg files, so if you choose a DropDMG configuration that specifies an incompatible format, notarization will fail."_s;

} // namespace

void HelpSheets::doAppPassHelp()
{
    show({u"App-Specific Password"_s, appPass.arg(appleAccountSite), {}}, document.appPassField);
}

void HelpSheets::doTeamProviderHelp()
{
    const QString title = u"Provider Short Name"_s;
    if (document.commands().providers.canBeListed())
        show({title, providerWithChoose, {u"Choose"_s, u"Cancel"_s}}, document.providerNameField,
             [this](int answer) { listProvidersIfChosen(answer); });
    else
        show({title, providerWithoutChoose, {}}, document.providerNameField);
}

void HelpSheets::listProvidersIfChosen(int answer)
{
    if (answer == platform::alertFirstButton)
        document.dispatchToMain([this] { document.commands().providers.listProviderShortnames(); });
}

void HelpSheets::doExtraEntitlementsHelp()
{
    QString text = extraEntitlements;
    if (const QUrl file = document.extraEntitlementsURL(); !file.isEmpty())
        text += u"\n\n"_s + activeExtraEntitlements.arg(itempath::fromUrl(file));
    show({u"Extra Entitlements"_s, text, {}}, document.providerNameField);
}

void HelpSheets::doDropDMGHelp()
{
    show({u"Disk Image Options"_s, diskImageOptions, {}}, document.providerNameField);
}

void HelpSheets::show(const platform::Alert &alert, TextField &fieldAfterwards, std::function<void(int)> next)
{
    document.changeStatus(status::interacting);
    document.giveUpFocus();
    document.beginSheet(alert, [this, &fieldAfterwards, next = std::move(next)](int answer) {
        fieldAfterwards.makeFirstResponder();
        document.changeStatus(status::ready);
        next(answer);
    });
}

} // namespace sealwright
