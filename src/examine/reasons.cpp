#include "examine/reasons.h"

using namespace Qt::StringLiterals;

namespace sealwright::examine {

Unsigned unsignedBecause(PassedOver reason)
{
    switch (reason) {
    case PassedOver::pathToSkip:
        return Unsigned::isSkipped;
    case PassedOver::currentVersion:
        return Unsigned::isCurrentVersion;
    case PassedOver::noVersionFolder:
        return Unsigned::isNoVersionFolder;
    case PassedOver::packageMark:
    case PassedOver::seal:
        return Unsigned::hasFixedName;
    case PassedOver::leftover:
        return Unsigned::isLeftover;
    case PassedOver::kindNeverExamined:
        return Unsigned::isText;
    case PassedOver::notRegular:
        return Unsigned::isIrregular;
    case PassedOver::notExecutable:
        return Unsigned::isNotExecutable;
    case PassedOver::noCode:
        break;
    }
    return Unsigned::isForOtherProcessors;
}

QString text(Unsigned reason)
{
    switch (reason) {
    case Unsigned::isPackage:
        return u"is signed as a package, by productsign"_s;
    case Unsigned::liesInArchive:
        return u"lies in an archive, where nothing is signed"_s;
    case Unsigned::isDropped:
        return u"is left unsigned, since the executable of the item itself is missing"_s;
    case Unsigned::onlyItemIsSigned:
        return u"lies in the item, of which only the main item is to be signed"_s;
    case Unsigned::isSkipped:
        return u"is among the paths to skip"_s;
    case Unsigned::isHidden:
        return u"is hidden, and hidden files are not looked at"_s;
    case Unsigned::isCurrentVersion:
        return u"is a link to a version, which is signed itself"_s;
    case Unsigned::isNoVersionFolder:
        return u"is among a framework's versions and is not a folder"_s;
    case Unsigned::hasFixedName:
        return u"has a name that is never signed"_s;
    case Unsigned::isLeftover:
        return u"is a leftover such as .DS_Store, which the run deletes from its working copy"_s;
    case Unsigned::isText:
        return u"has the extension of a text, and texts are never signed"_s;
    case Unsigned::isIrregular:
        return u"is no regular file"_s;
    case Unsigned::liesInFlatFramework:
        return u"lies at the top of a framework without versions"_s;
    case Unsigned::isArchive:
        return u"is not code"_s;
    case Unsigned::hasNoExecutable:
        return u"has no file at its CFBundleExecutable"_s;
    case Unsigned::isForOtherProcessors:
        return u"is no code for x86_64 or arm64"_s;
    case Unsigned::isNotExecutable:
        return u"is not executable"_s;
    case Unsigned::isSignedWithParent:
        return u"is signed as a part of the bundle around it"_s;
    }
    return {};
}

QString advice(Unsigned reason)
{
    switch (reason) {
    case Unsigned::isHidden:
        return u"Its name, or that of a folder above it, begins with a dot, and what is hidden is never signed. Rename it without the dot, or leave it out of the item."_s;
    case Unsigned::hasFixedName:
        return u"Files called PkgInfo or CodeResources are never signed. Give it another name, or leave it out of the item."_s;
    case Unsigned::isText:
        return u"Files with these extensions are never signed: txt, h, strings, rtf, rtfd, scpt. Give it another extension, or leave it out of the item."_s;
    case Unsigned::liesInFlatFramework:
        return u"The framework has no Versions folder, so its code is not signed. Build it with versions, or put the bare library into Contents/Frameworks."_s;
    case Unsigned::isForOtherProcessors:
        return u"It is code for processors other than x86_64 and arm64, such as i386, and only code for these two is signed. Build it for one of them, or leave it out of the item."_s;
    case Unsigned::isNotExecutable:
        return u"It is not executable (no x among its permissions), so it is not signed. Make it executable with chmod +x, or leave it out of the item."_s;
    case Unsigned::liesInArchive:
        return u"A run signs only the outside of a package or a disk image, not the code in it. Sign the code with a Developer ID Application certificate, the hardened runtime and a secure timestamp (codesign -f -o runtime --timestamp) before you make the package or the image."_s;
    case Unsigned::isDropped:
    case Unsigned::hasNoExecutable:
        return u"The bundle is not signed, since the file that CFBundleExecutable in its Info.plist names is missing. Build that file, or correct the name."_s;
    default:
        return {};
    }
}

} // namespace sealwright::examine
