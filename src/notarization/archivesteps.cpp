#include "notarization/archivesteps.h"

#include "app/appdelegate.h"
#include "document/mainwincontroller.h"
#include "platform/applescript.h"
#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "tools/failureline.h"

using namespace Qt::StringLiterals;

namespace {

const QString dittoTool = u"/usr/bin/ditto"_s;
const QString hdiutilTool = u"/usr/bin/hdiutil"_s;
const QString diskImageError = u"Error Making Disk Image"_s;

} // namespace

namespace archive {

QString zipPath(const QString &item)
{
    return itempath::withoutExtension(item) + u".zip"_s;
}

QString diskImagePath(const QString &item)
{
    QString name = itempath::withoutExtension(itempath::lastComponent(item));
    name.replace(u' ', u'_');
    return itempath::appending(itempath::folder(item), name + u".dmg"_s);
}

QStringList dittoArguments(const QString &item, const QString &zip)
{
    return {u"-c"_s, u"-k"_s, u"--keepParent"_s, item, zip};
}

QStringList hdiutilCreateArguments(const QString &item, const QString &image)
{
    const QString volumeName = itempath::withoutExtension(itempath::lastComponent(item));
    return {u"create"_s, image,     u"-format"_s,    u"UDZO"_s, u"-ov"_s,    u"-volName"_s, volumeName,
            u"-fs"_s,    u"HFS+"_s, u"-srcfolder"_s, item,      u"-plist"_s, u"-verbose"_s};
}

QString dropDMGSource(const QString &item, const QString &configuration)
{
    return u"set theFile to \"%1\" as POSIX file\ntell application id \"com.c-command.DropDMG\"\nwith timeout of 600 seconds\nset theResult to create from theFile configuration name \"%2\"\nend timeout\nend tell\nreturn theResult"_s
        .arg(item, configuration);
}

QString mountPoint(const QString &attachOutput)
{
    return attachOutput.mid(attachOutput.lastIndexOf(u'\t') + 1).trimmed();
}

} // namespace archive

QString ArchiveSteps::itemPath() const
{
    return itempath::fromUrl(document.appletURL());
}

void ArchiveSteps::deleteSignedBundle()
{
    document.host().files.removeItem(itemPath()).ignore();
}

Step ArchiveSteps::chosenStep() const
{
    if (!document.useDiskImage())
        return Step::makeZipArchive;
    if (document.appDelegate().hasDropDMG() && document.useDropDMG())
        return Step::makeDiskImageWithDropDMG;
    return Step::makeDiskImage;
}

bool ArchiveSteps::makeArchiveForUploading()
{
    const Step step = chosenStep();
    document.beginStep(step);
    if (step == Step::makeZipArchive)
        return makeZipArchive();
    return step == Step::makeDiskImage ? makeDiskImage() : makeDiskImageWithDropDMG();
}

bool ArchiveSteps::makeZipArchive()
{
    document.logBoldString(u"Making zip archive..."_s);
    document.submitFilePath.set(archive::zipPath(itemPath()));
    const auto response =
        document.runAndLog(dittoTool, archive::dittoArguments(itemPath(), document.submitFilePath()));
    if (response->status() == 0)
        return true;
    deleteSignedBundle();
    document.reportFailureAndRename(u"Error Making Archive"_s, toolFailureLine(*response, u"in ditto"_s));
    return false;
}

bool ArchiveSteps::makeDiskImage()
{
    document.logBoldString(u"Making disk image..."_s);
    document.submitFilePath.set(archive::diskImagePath(itemPath()));
    const auto response = document.runAndLog(
        hdiutilTool, archive::hdiutilCreateArguments(itemPath(), document.submitFilePath()));
    deleteSignedBundle(); // also when the image could not be made
    if (response->status() != 0) {
        document.reportFailureAndRename(diskImageError, toolFailureLine(*response, u"in hdiutil"_s));
        return false;
    }
    document.appletURL.set(itempath::toUrl(document.submitFilePath()));
    return true;
}

bool ArchiveSteps::makeDiskImageWithDropDMG()
{
    document.logBoldString(u"Making disk image..."_s);
    const auto result = document.host().appleScript.execute(
        archive::dropDMGSource(itemPath(), document.dropDMGConfiguration()));
    deleteSignedBundle();
    if (!result.error.isNull()) {
        document.reportFailureAndRename(diskImageError,
                                        u"Error creating disk image with DropDMG: %1"_s.arg(result.error));
        return false;
    }
    if (!result.file) {
        document.reportFailureAndRename(diskImageError, u"Unknown error creating disk image with DropDMG"_s);
        return false;
    }
    takeDropDMGImage(*result.file);
    return true;
}

void ArchiveSteps::takeDropDMGImage(const QString &image)
{
    const QString folder = itempath::folder(itemPath());
    const QString ours = itempath::appending(folder, itempath::lastComponent(image));
    if (itempath::folder(image) != folder)
        document.host().files.moveItem(image, ours).ignore();
    document.submitFilePath.set(ours);
    document.appletURL.set(itempath::toUrl(ours));
}

QString ArchiveSteps::primaryBundleID()
{
    const auto attached = document.runTool(
        hdiutilTool, {u"attach"_s, u"-noverify"_s, u"-noidmereveal"_s, u"-noautoopen"_s, itemPath()});
    if (attached->status() != 0)
        return {};
    const QString volume = archive::mountPoint(attached->outputString());
    QString identifier;
    for (const QString &name :
         document.host().files.contentsOfDirectory(volume, platform::FolderLink::follow)) {
        if (itempath::extension(name) != "app"_L1)
            continue;
        identifier = platform::bundleIdentifier(document.host().files, itempath::appending(volume, name));
        break;
    }
    // The tool refuses this verb, and the image stays mounted, which people have come to rely on.
    document.runTool(hdiutilTool, {u"dettach"_s, u"-force"_s, volume});
    return identifier;
}
