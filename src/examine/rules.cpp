#include "examine/rules.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace sealwright::examine::rule {

QString advice(const QString &ruleName)
{
    static const QHash<QString, QString>
        texts{
            {unsignedCode,
             u"If it is code: take a leading dot off its name, make it executable (chmod +x) and move it to Contents/MacOS, Helpers, Frameworks or PlugIns. If it is not, move it to Contents/Resources. Or leave it out of the item."_s},
            {skippedCode,
             u"Take its path off the paths to skip, or switch \"Sign main item only\" off, so that the run signs it. Or sign it yourself beforehand with a Developer ID Application certificate, the hardened runtime and a secure timestamp: codesign -f -o runtime --timestamp."_s},
            {codeInArchive,
             u"A run does not sign what lies in an archive. Sign the code with a Developer ID Application certificate, the hardened runtime and a secure timestamp (codesign -f -o runtime --timestamp) before you pack it, or leave it out of the archive."_s},
            {notDeveloperId,
             u"This run keeps the file's present signature. Sign the file again beforehand with a Developer ID Application certificate: codesign -f -o runtime --timestamp. Or have the run replace it, which works outside of archives, packages and disk images alone."_s},
            {noTimestamp,
             u"This run keeps the file's present signature. Sign the file again beforehand with a secure timestamp: codesign -f -o runtime --timestamp. Or have the run replace it, which works outside of archives, packages and disk images alone."_s},
            {noHardenedRuntime,
             u"This run keeps the file's present signature. Sign the file again beforehand with the hardened runtime: codesign -f -o runtime --timestamp. Or have the run replace it, which works outside of archives, packages and disk images alone."_s},
            {getTaskAllow,
             u"Xcode adds com.apple.security.get-task-allow for debugging; a release must not have it. Make a release build, or take it out of the entitlements. Or have the run sign this code again."_s},
            {oldSdk,
             u"Build it with the SDK of macOS 10.9 or later, or ask its maker for a newer build, or leave it out of the item."_s},
            {signatureInvalid,
             u"It, or something in its bundle, was changed after it was signed. Let the run sign it, or sign it again beforehand, after the last change."_s},
            {damagedCode,
             u"The file is incomplete, damaged or not of the kind that its name says. Build, download or copy it again, or leave it out of the item."_s},
            {unknownArchitecture,
             u"If nobody needs this architecture, take it out of the file: lipo FILE -remove ARCHITECTURE -output NEWFILE. Otherwise build the file again."_s},
            {missingExecutable,
             u"The file that CFBundleExecutable in its Info.plist names is missing. It belongs in Contents/MacOS, for a framework in its version's folder. Build that file, or correct the name."_s},
            {invalidInfoPlist,
             u"The bundle needs an Info.plist that can be read and that names its executable under CFBundleExecutable. plutil -lint tells where it is wrong."_s},
            {invalidEntitlements,
             u"The file of extra entitlements is not valid. Correct it, or choose another. It must be a property list with booleans, integers, strings, arrays and dictionaries alone."_s},
            {ambiguousBundle,
             u"A bundle must not have both Contents and Versions. In an app or a plug-in delete Versions, in a framework delete Contents."_s},
            {unsealedRoot, u"At the top of a bundle only Contents may be; at the top of a framework only Versions and links into it. Move this into Contents/Resources, or into the Resources of the framework's version."_s},
            {brokenLink,
             u"The link is broken. Add what it leads to, point it to something inside of the item, or delete it."_s},
            {linkLeavesItem,
             u"On another Mac the link would lead to nothing. Copy what it leads to into the item and let it lead there, or delete the link."_s},
            {pathTooLong, u"The path is too long. Use shorter names or fewer nested folders."_s},
            {missingIdentifier,
             u"Give the bundle a CFBundleIdentifier in its Info.plist, such as com.example.product: macOS knows it by that name."_s},
            {nameCollision,
             u"macOS takes these two names for the same (letters that differ in case or in the form of their accents), so only one of the files would arrive. Rename one."_s},
            {restrictedEntitlement,
             u"macOS does not start an app with this entitlement unless a provisioning profile allows it: put the profile there as Contents/embedded.provisionprofile, or take the entitlement out."_s},
            {libraryValidation,
             u"With the hardened runtime the app loads only libraries of its own team. Have the run sign this library too, or give the app (not the library) the entitlement com.apple.security.cs.disable-library-validation."_s},
            {olderThanLast,
             u"The item notarized last has a later version; it is in the folder beside this one whose name ends in \"Notarized\". If this item is newer, raise CFBundleVersion in its Info.plist. If not, choose the right item."_s},
            {nestedArchiveTooDeep,
             u"This file was not examined, but the service will look inside. If it may hold code that is not signed, unpack it or leave it out of the item."_s},
            {forbiddenAttribute,
             u"Before you pack, run xattr -cr on the folder that you pack. It removes all extended attributes of what is in it."_s},
            {unreadable,
             u"Give yourself the right to read it (chmod u+r, of a folder u+rx), or take it out of the item. What is neither file nor folder nor link, such as a pipe or a socket, must go."_s},
        };
    return texts.value(ruleName);
}

} // namespace sealwright::examine::rule
