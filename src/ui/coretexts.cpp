// The texts of the core that windows show, for the translators. A test holds them to the core's own.

#include "ui/shown.h"

#include <QtGlobal>

namespace sealwright {

const QStringList &coreTexts()
{
    static constexpr const char *texts[] = {
        QT_TRANSLATE_NOOP("Core", "OK"),
        QT_TRANSLATE_NOOP("Core", "Cancel"),
        QT_TRANSLATE_NOOP("Core", "Close"),
        QT_TRANSLATE_NOOP("Core", "Continue"),
        QT_TRANSLATE_NOOP("Core", "Set"),
        QT_TRANSLATE_NOOP("Core", "Reset"),
        QT_TRANSLATE_NOOP("Core", "Choose"),
        QT_TRANSLATE_NOOP("Core", "Choose…"),
        QT_TRANSLATE_NOOP("Core", "Show"),
        QT_TRANSLATE_NOOP("Core", "Show File"),
        QT_TRANSLATE_NOOP("Core", "Settings…"),
        QT_TRANSLATE_NOOP("Core", "Submit…"),
        QT_TRANSLATE_NOOP("Core", "Submit Now"),
        QT_TRANSLATE_NOOP("Core", "Sign Only…"),
        QT_TRANSLATE_NOOP("Core", "Staple Only…"),
        QT_TRANSLATE_NOOP("Core", "Fetch History"),
        QT_TRANSLATE_NOOP("Core", "Pages at most"),
        QT_TRANSLATE_NOOP("Core", "Submit Again"),
        QT_TRANSLATE_NOOP("Core", "Staple Again"),
        QT_TRANSLATE_NOOP("Core", "Sign Again"),
        QT_TRANSLATE_NOOP("Core", "Signs a copy of an item and submits nothing"),
        QT_TRANSLATE_NOOP("Core", "Lists what the account has submitted"),
        QT_TRANSLATE_NOOP("Core", "Asks for the short names of your teams"),
        QT_TRANSLATE_NOOP("Core", "Attempts to staple an item that has already been submitted"),
        QT_TRANSLATE_NOOP("Core", "Apple events"),
        QT_TRANSLATE_NOOP("Core", "Calendars"),
        QT_TRANSLATE_NOOP("Core", "Audio input"),
        QT_TRANSLATE_NOOP("Core", "Camera"),
        QT_TRANSLATE_NOOP("Core", "Location"),
        QT_TRANSLATE_NOOP("Core", "Photos library"),
        QT_TRANSLATE_NOOP("Core", "Address book"),
        QT_TRANSLATE_NOOP("Core", "Disable library validation"),
        QT_TRANSLATE_NOOP("Core", "Allow JIT"),
        QT_TRANSLATE_NOOP("Core", "Allow unsigned executable memory"),
        QT_TRANSLATE_NOOP("Core", "Allow DYLD environment variables"),
        QT_TRANSLATE_NOOP("Core", "Disable executable page protection"),
        QT_TRANSLATE_NOOP("Core", "Debugging tool"),
        QT_TRANSLATE_NOOP("Core", "loading"),
        QT_TRANSLATE_NOOP("Core", "ready"),
        QT_TRANSLATE_NOOP("Core", "interacting"),
        QT_TRANSLATE_NOOP("Core", "submitting"),
        QT_TRANSLATE_NOOP("Core", "waiting"),
        QT_TRANSLATE_NOOP("Core", "stapling"),
        QT_TRANSLATE_NOOP("Core", "fetching"),
        QT_TRANSLATE_NOOP("Core", "running"),
        QT_TRANSLATE_NOOP("Core", "done"),
        QT_TRANSLATE_NOOP("Core", "failed"),
        QT_TRANSLATE_NOOP("Core", "cancelled"),
        QT_TRANSLATE_NOOP("Core", "skipped"),
        QT_TRANSLATE_NOOP("Core", "Make zip archive"),
        QT_TRANSLATE_NOOP("Core", "Make disk image"),
        QT_TRANSLATE_NOOP("Core", "Make disk image with DropDMG"),
        QT_TRANSLATE_NOOP("Core", "Find bundle identifier"),
        QT_TRANSLATE_NOOP("Core", "Check credentials"),
        QT_TRANSLATE_NOOP("Core", "Wait for Apple's result"),
        QT_TRANSLATE_NOOP("Core", "Staple"),
        QT_TRANSLATE_NOOP("Core", "Upload to Apple"),
        QT_TRANSLATE_NOOP("Core", "Save entitlements"),
        QT_TRANSLATE_NOOP("Core", "Check and sign package"),
        QT_TRANSLATE_NOOP("Core", "Clear extended attributes"),
        QT_TRANSLATE_NOOP("Core", "Lock main script"),
        QT_TRANSLATE_NOOP("Core", "Sign contents"),
        QT_TRANSLATE_NOOP("Core", "Sign main file"),
        QT_TRANSLATE_NOOP("Core", "Check code signature"),
        QT_TRANSLATE_NOOP("Core", "Make working copy"),
        QT_TRANSLATE_NOOP("Core", "Choose an entitlements property list file"),
        QT_TRANSLATE_NOOP("Core",
                          "Choose an app, plugin, fmplugin, flat package or disk image to copy and submit"),
        QT_TRANSLATE_NOOP("Core", "Choose the RequestUUID.txt file"),
        QT_TRANSLATE_NOOP("Core", "Choose an app or a directory to copy and sign with the hardened runtime"),
        QT_TRANSLATE_NOOP("Core", "Choose an app, disk image, .pkg, .plugin or .fmplugin to try to staple"),
        QT_TRANSLATE_NOOP("Core", "Choose the “Submitted” folder of the item, or the RequestUUID.txt in it"),
        QT_TRANSLATE_NOOP("Core", "Cannot Go On Waiting"),
        QT_TRANSLATE_NOOP("Core", "App-Specific Password"),
        QT_TRANSLATE_NOOP("Core", "Provider Short Name"),
        QT_TRANSLATE_NOOP("Core", "Extra Entitlements"),
        QT_TRANSLATE_NOOP("Core", "Disk Image Options"),
        QT_TRANSLATE_NOOP("Core",
                          "You do not need to enter anything into this field unless your Developer ID is "
                          "used for more than one development team.\n\nClick the Choose button to choose "
                          "from your provider short names."),
        QT_TRANSLATE_NOOP(
            "Core",
            "You do not need to enter anything into this field unless your Developer ID is used for more "
            "than development one team.\n\nThe Choose button, which lets you choose from the teams you are a "
            "member of, is only available if you have Xcode version 11 or later installed."),
        QT_TRANSLATE_NOOP("Core",
                          "If you need to code-sign your app with entitlements not shown here, you can click "
                          "on the Extra entitlements checkbox and select a .plist file containing them. In "
                          "the case of conflict, those in the file will override other settings made here."),
        QT_TRANSLATE_NOOP(
            "Core",
            "When submitting other than a disk image file, Sealwright can either upload a .zip version of "
            "the file after signing it, and then staple the signed file, or it can upload a locked disk "
            "image of the file, and then staple that disk image ready for distribution.\n\nIf you choose to "
            "create a disk image and you have the application DropDMG.app installed, you can choose a "
            "DropDMG configuration to be used. This allows you greater control over the arrangement and "
            "contents of the disk image.\n\nOtherwise Sealwright will create a disk image containing just "
            "the submitted file.\n\nThe notarization process only accepts read-only Mac .dmg files, so if "
            "you choose a DropDMG configuration that specifies an incompatible format, notarization will "
            "fail."),
        QT_TRANSLATE_NOOP("Core", "The active extra entitlements file is ‘%1’."),
        QT_TRANSLATE_NOOP(
            "Core",
            "Notarizing uses a tool that requires password authorization. This means you need to do "
            "two things:\n\n• Set up an app-specific password. You do this by signing into you Apple "
            "ID account page <%1>, and clicking Generate Password below App-Specific Passwords.\n\n• "
            "Add the app-specific password to your login keychain. Open Keychain Access.app, select "
            "the login keychain on the left, choose File -> New Password Item…, and enter the name "
            "of your app-specific password as the Keychain Item Name, enter your Apple ID for the "
            "Account Name, and enter the actual app-specific password in the Password field.\n\nYou "
            "should enter the name of the app-specific password in the selected field."),
        QT_TRANSLATE_NOOP("Core", "Missing Apple ID"),
        QT_TRANSLATE_NOOP("Core", "You need to enter your Apple ID."),
        QT_TRANSLATE_NOOP("Core", "Missing Password"),
        QT_TRANSLATE_NOOP("Core",
                          "You need to enter the key to an application-specific password you have added to "
                          "your login Keychain."),
        QT_TRANSLATE_NOOP("Core", "Signing Successful"),
        QT_TRANSLATE_NOOP("Core", "Signing of '%1' has been completed."),
        QT_TRANSLATE_NOOP("Core", "Stapling Successful"),
        QT_TRANSLATE_NOOP("Core", "The file '%1' is now ready for distribution."),
        QT_TRANSLATE_NOOP("Core", "Set New Document Defaults"),
        QT_TRANSLATE_NOOP("Core",
                          "Click Set if you want the values, settings and entitlements in this document "
                          "saved and used in newly created documents. This includes any entered Apple ID, "
                          "app-specific password, and provider short name."),
        QT_TRANSLATE_NOOP("Core", "Reset Document Defaults"),
        QT_TRANSLATE_NOOP("Core",
                          "Click Reset if you want the values, settings and entitlements used for newly "
                          "created documents reset to their factory values. The Apple ID, app-specific "
                          "password, and provider short name will be set to empty values."),
        QT_TRANSLATE_NOOP("Core", "File Not Found"),
        QT_TRANSLATE_NOOP("Core", "The file:\n\n‘%1’\n\nhas been moved or deleted."),
        QT_TRANSLATE_NOOP("Core", "No Identities Found"),
        QT_TRANSLATE_NOOP("Core", "No Developer ID codesigning identities have been found."),
        QT_TRANSLATE_NOOP("Core", "No Developer ID identities found"),
        QT_TRANSLATE_NOOP("Core", "Cannot Read Extra Entitlements"),
        QT_TRANSLATE_NOOP("Core", "Process Cancelled"),
        QT_TRANSLATE_NOOP(
            "Core",
            "The app has been uploaded, but notarizing has not been confirmed. Once you get a confirmation "
            "email on your Apple ID email account, you can staple the app using the Staple Only button."),
        QT_TRANSLATE_NOOP("Core", "Uploading of the app may not have been completed."),
        QT_TRANSLATE_NOOP("Core", "Closing now may abort the uploading of your app."),
        QT_TRANSLATE_NOOP("Core", "The app is not yet approved and stapled."),
        QT_TRANSLATE_NOOP("Core", "This window is busy."),
        QT_TRANSLATE_NOOP("Core", "Continue Closing?"),
        QT_TRANSLATE_NOOP("Core", "Installer Identity Not Found"),
        QT_TRANSLATE_NOOP("Core",
                          "Packages require a 'Developer ID Installer' certificate that matches the identity "
                          "you have chosen (%1)."),
        QT_TRANSLATE_NOOP("Core", "Cannot Submit Item"),
        QT_TRANSLATE_NOOP("Core", "Cannot List Provider Names"),
        QT_TRANSLATE_NOOP("Core", "This command relies on Xcode 11 or later being available."),
        QT_TRANSLATE_NOOP("Core", "Provider Short Name Not Needed"),
        QT_TRANSLATE_NOOP("Core",
                          "You belong to only one Apple development team, so you do not need to enter a "
                          "provider short name."),
        QT_TRANSLATE_NOOP("Core", "Incorrect Application?"),
        QT_TRANSLATE_NOOP("Core",
                          "Are you sure that is the version of the app copied and submitted for notarizing, "
                          "and not the original un-signed version? It should normally be found inside a "
                          "folder called '%1'.\n\nPress Continue if you think you have the correct version."),
        QT_TRANSLATE_NOOP("Core", "Xcode or Transporter Not Found"),
        QT_TRANSLATE_NOOP("Core",
                          "Notarization cannot be performed without either Xcode.app 10.2 or later installed "
                          "and running, or Transporter.app 1.1 or later installed. Both are free downloads "
                          "from the Apple Store. You should install one or the other and run it at least "
                          "once before trying to run Sealwright again.\n\nSealwright will now quit."),
        QT_TRANSLATE_NOOP("Core", "See the log for details."),
        QT_TRANSLATE_NOOP("Core", "Cannot Create Working Folder"),
        QT_TRANSLATE_NOOP("Core", "Cannot Empty Working Folder"),
        QT_TRANSLATE_NOOP("Core", "Failed to create working folder '%1': %2"),
        QT_TRANSLATE_NOOP("Core", "Failed to empty working folder '%1': %2"),
        QT_TRANSLATE_NOOP("Core", "Failed to copy file to working folder '%1': %2"),
        QT_TRANSLATE_NOOP("Core", "Cannot Copy File"),
        QT_TRANSLATE_NOOP("Core", "The designated extra entitlements file at '%1' is missing."),
        QT_TRANSLATE_NOOP("Core", "Cannot Create Entitlements"),
        QT_TRANSLATE_NOOP("Core", "Cannot Save Entitlements"),
        QT_TRANSLATE_NOOP("Core", "Error Signing .pkg File"),
        QT_TRANSLATE_NOOP("Core", "Error Verifying Signing"),
        QT_TRANSLATE_NOOP("Core", "Error Signing Code"),
        QT_TRANSLATE_NOOP("Core", "Error Clearing Attributes"),
        QT_TRANSLATE_NOOP("Core", "No signable items found."),
        QT_TRANSLATE_NOOP("Core", "Stapling Failed"),
        QT_TRANSLATE_NOOP("Core", "Error Verifying Code Signing"),
        QT_TRANSLATE_NOOP("Core",
                          "Invalid Apple ID, or invalid key for app-specific password in login keychain."),
        QT_TRANSLATE_NOOP("Core",
                          "Unknown problem using altool. Check that the app-specific pasword, Apple ID, and "
                          "team provider name are correct."),
        QT_TRANSLATE_NOOP("Core", "Cannot Continue"),
        QT_TRANSLATE_NOOP("Core", "Error Uploading File"),
        QT_TRANSLATE_NOOP("Core", "No RequestUUID Returned"),
        QT_TRANSLATE_NOOP("Core", "No RequestUUID returned from upload."),
        QT_TRANSLATE_NOOP("Core", "Error Making Disk Image"),
        QT_TRANSLATE_NOOP("Core", "Error Making Archive"),
        QT_TRANSLATE_NOOP("Core", "Cannot Fetch History"),
        QT_TRANSLATE_NOOP("Core", "Notarization Failed"),
        QT_TRANSLATE_NOOP("Core", "Request UUID Not Found"),
        QT_TRANSLATE_NOOP("Core", "Failed to Retrieve Info"),
        QT_TRANSLATE_NOOP("Core", "Problem Retrieving Apple Team Details"),
        QT_TRANSLATE_NOOP("Core", "Problem With Apple Team Details"),
        QT_TRANSLATE_NOOP("Core", "No providers were found in the data returned."),
        QT_TRANSLATE_NOOP("Core", "Not applicable"),
        QT_TRANSLATE_NOOP("Core", "None found"),
        QT_TRANSLATE_NOOP("Core", "The keychain has no identity “%1”."),
        QT_TRANSLATE_NOOP("Core", "There is no profile “%1”."),
        QT_TRANSLATE_NOOP("Core", "“%1” cannot be the name of a profile."),
    };
    static const QStringList all = [] {
        QStringList list;
        for (const char *const text : texts)
            list.append(QString::fromUtf8(text));
        return list;
    }();
    return all;
}

} // namespace sealwright
