#include "examine/rules.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace sealwright::examine::rule {

QString advice(const QString &ruleName)
{
    static const QHash<QString, QString> texts{
        {unsignedCode,
         u"Make it visible and executable and put it where code belongs (Contents/MacOS, Helpers, Frameworks or PlugIns), or take it out of the item. What is no code belongs in Contents/Resources."_s},
        {skippedCode,
         u"Take its path off the paths to skip, or switch \"Sign main item only\" off, so that the run signs it. Or sign it yourself beforehand with a Developer ID Application certificate, the hardened runtime and a secure timestamp: codesign -f -o runtime --timestamp."_s},
        {codeInArchive,
         u"A run does not sign what lies in an archive. Sign the code with a Developer ID Application certificate, the hardened runtime and a secure timestamp (codesign -f -o runtime --timestamp) before you pack it, or leave it out of the archive."_s},
        {notDeveloperId,
         u"This run leaves the signature that it has. Sign it beforehand with a Developer ID Application certificate (codesign -f -o runtime --timestamp); or let the run sign it, unless it lies in an archive, a package or an image, where no run signs anything."_s},
        {noTimestamp,
         u"This run leaves the signature that it has. Sign it again beforehand with a secure timestamp (codesign -f -o runtime --timestamp); or let the run sign it, unless it lies in an archive, a package or an image, where no run signs anything."_s},
        {noHardenedRuntime,
         u"This run leaves the signature that it has. Sign it again beforehand with the hardened runtime (codesign -f -o runtime --timestamp); or let the run sign it, unless it lies in an archive, a package or an image, where no run signs anything."_s},
        {getTaskAllow,
         u"Development tools add com.apple.security.get-task-allow for debugging, and a release must not have it. Build for release, take it out of the entitlements, or let the run sign the code that bears it anew."_s},
        {oldSdk,
         u"Build it with the SDK of macOS 10.9 or later, or ask its maker for a newer build, or leave it out of the item."_s},
        {signatureInvalid,
         u"It, or something in its bundle, was changed after it was signed. Let the run sign it, or sign it again beforehand, after the last change."_s},
        {damagedCode,
         u"The file is cut, overwritten or of another kind than its name says. Build, download or copy it again, or leave it out of the item."_s},
        {unknownArchitecture,
         u"Take this part out of the file with lipo -remove and the name of the architecture, if it is not meant to be there."_s},
        {missingExecutable,
         u"Its Info.plist names a file under CFBundleExecutable, and there is none of that name where it belongs (Contents/MacOS; of a framework, its version folder). Build that file, or mend the name."_s},
        {invalidInfoPlist,
         u"The bundle needs an Info.plist that can be read and that names its executable under CFBundleExecutable. plutil -lint tells where it is wrong."_s},
        {invalidEntitlements,
         u"Choose another extra entitlements file, or mend this one: it must be a property list, whose values are true, false, whole numbers, texts, or lists and dictionaries of these."_s},
        {ambiguousBundle,
         u"An app or a plug-in has a folder Contents, a framework a folder Versions, and nothing has both. Take one of the two away."_s},
        {unsealedRoot,
         u"Beside Contents, or beside the Versions of a framework, nothing else may lie. Move it into Contents/Resources, or into the Resources of the framework's version."_s},
        {brokenLink,
         u"Put there what the link leads to, let it lead to something in the item, or delete the link."_s},
        {linkLeavesItem,
         u"On another Mac the link would lead to nothing. Copy what it leads to into the item and let it lead there, or delete the link."_s},
        {pathTooLong, u"Use shorter names or fewer folders within folders."_s},
        {missingIdentifier,
         u"Give the bundle a CFBundleIdentifier in its Info.plist, such as com.example.product: macOS knows it by that name."_s},
        {nameCollision,
         u"Macs take the two names for the same, so only one of the two would arrive: rename one."_s},
        {restrictedEntitlement,
         u"macOS does not start an app with this entitlement unless a provisioning profile allows it: put the profile there as Contents/embedded.provisionprofile, or take the entitlement out."_s},
        {libraryValidation,
         u"The app will not load it, since the hardened runtime takes only libraries of its own team. Let the run sign it with the rest, or set the entitlement com.apple.security.cs.disable-library-validation."_s},
        {olderThanLast,
         u"The item notarized last, in the folder whose name ends in \"Notarized\" beside this one, has a later version. Raise CFBundleVersion in the Info.plist, if this is the newer one."_s},
        {nestedArchiveTooDeep,
         u"Nobody looked into it here, and the service will. Unpack it, or leave it out of the item, if it may hold code that is not signed."_s},
        {forbiddenAttribute, u"Remove it with xattr -cr from what you pack, before you pack it."_s},
        {unreadable,
         u"Give yourself the right to read it (chmod u+r, of a folder u+rx), or take it out of the item. What is neither file nor folder nor link, such as a pipe or a socket, must go."_s},
    };
    return texts.value(ruleName);
}

} // namespace sealwright::examine::rule
