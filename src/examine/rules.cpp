#include "examine/rules.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace sealwright::examine::rule {

QString advice(const QString &ruleName)
{
    static const QHash<QString, QString> texts{
        {unsignedCode,
         u"Make it visible and executable and put it where code belongs, or take it out of the item. What is no code belongs into Contents/Resources."_s},
        {skippedCode,
         u"Take it off the paths to skip, or let all of the contents be signed and not only the main item. Or sign it with Developer ID, hardened runtime and a secure timestamp before the run."_s},
        {codeInArchive,
         u"Sign the code with Developer ID, hardened runtime and a secure timestamp before you pack it, or leave the archive out."_s},
        {notDeveloperId,
         u"This run leaves the signature that it has. Let the run sign it, or sign it with a Developer ID Application certificate before."_s},
        {noTimestamp,
         u"This run leaves the signature that it has. Let the run sign it, or sign it again with codesign --timestamp before."_s},
        {noHardenedRuntime,
         u"This run leaves the signature that it has. Let the run sign it, or sign it again with codesign -o runtime before."_s},
        {getTaskAllow,
         u"Take com.apple.security.get-task-allow out of the entitlements, or let the run sign what bears it. Development tools add it for debugging; a release build has it not."_s},
        {oldSdk, u"Build it with the SDK of macOS 10.9 or later, or leave it out."_s},
        {signatureInvalid,
         u"Something was changed after it was signed. Let the run sign it, or sign it again before."_s},
        {damagedCode, u"Build or copy the file again, or leave it out."_s},
        {unknownArchitecture,
         u"Take it out with lipo -remove and the name of the architecture, if it is not meant to be there."_s},
        {missingExecutable, u"Build the executable, or mend CFBundleExecutable in Info.plist."_s},
        {invalidInfoPlist, u"Mend the bundle's Info.plist; plutil -lint tells where it is wrong."_s},
        {invalidEntitlements, u"Choose another entitlements file, or mend this one."_s},
        {ambiguousBundle,
         u"A bundle has either a folder Contents or a folder Versions. Take one of them away."_s},
        {unsealedRoot,
         u"Move the file into Contents/Resources, or of a framework into its version folder."_s},
        {brokenLink, u"Let the link lead to something, or take it away."_s},
        {linkLeavesItem, u"Copy what the link leads to into the item, or take the link away."_s},
        {pathTooLong, u"Use shorter names or fewer folders."_s},
        {missingIdentifier, u"Give the bundle a CFBundleIdentifier in its Info.plist."_s},
        {nameCollision,
         u"Macs take the two names for the same: rename one, or only one of them will arrive."_s},
        {restrictedEntitlement,
         u"macOS does not start an app with this entitlement unless a provisioning profile allows it: add Contents/embedded.provisionprofile."_s},
        {libraryValidation,
         u"The app will not load it, since the hardened runtime takes only libraries of its own team. Let the run sign it with the rest, or set the entitlement com.apple.security.cs.disable-library-validation."_s},
        {olderThanLast, u"The item notarized last has a later version: raise CFBundleVersion."_s},
        {nestedArchiveTooDeep, u"Nothing looked into it. Unpack it, or leave it out."_s},
        {forbiddenAttribute, u"Remove it with xattr -c before you pack the item."_s},
        {unreadable, u"Give yourself the right to read it, or take it out of the item."_s},
    };
    return texts.value(ruleName);
}

} // namespace sealwright::examine::rule
