#include "notarization/archivesteps.h"

#include "platform/applescript.h"
#include "platform/bundle.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"
#include "run/run.h"
#include "tools/failureline.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

const QString dittoTool = u"/usr/bin/ditto"_s;
const QString hdiutilTool = u"/usr/bin/hdiutil"_s;
const QString diskImageError = u"Error Making Disk Image"_s;

void takeDropDMGImage(Run &run, const QString &image)
{
    const QString ours = run.folder.path(itempath::lastComponent(image));
    if (itempath::folder(image) != run.folder.path())
        run.host.files.moveItem(image, ours).ignore();
    run.folder.setUpload(ours);
    run.folder.setItem(ours);
}

/// The bundle's own identifier, before a disk image may take its place.
void noteIdentifier(Run &run)
{
    const QString own = platform::bundleIdentifier(run.host.files, run.itemPath());
    if (!own.isEmpty())
        run.identifier = own;
}

QString identifierOfFirstApp(const platform::FileService &files, const QString &volume)
{
    for (const QString &name : files.contentsOfDirectory(volume, platform::FolderLink::follow)) {
        if (itempath::extension(name) == "app"_L1)
            return platform::bundleIdentifier(files, itempath::appending(volume, name));
    }
    return {};
}

const Step &chosenNow(const LiveChoices &live)
{
    return archiveStep(live.archiveKind());
}

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

const Step &archiveStep(ArchiveKind kind)
{
    switch (kind) {
    case ArchiveKind::diskImage:
        return step::makeDiskImage;
    case ArchiveKind::diskImageByDropDMG:
        return step::makeDiskImageWithDropDMG;
    case ArchiveKind::zip:
        break;
    }
    return step::makeZipArchive;
}

Step archiveRow(ArchiveKind planned)
{
    Step row = archiveStep(planned);
    row.chosen = &chosenNow;
    return row;
}

StepResult makeZipArchive(Run &run)
{
    noteIdentifier(run);
    run.log.logBoldString(u"Making zip archive..."_s);
    run.folder.setUpload(archive::zipPath(run.itemPath()));
    const auto response =
        run.tools.runAndLog(dittoTool, archive::dittoArguments(run.itemPath(), run.folder.places().upload));
    if (response->status() == 0)
        return Done{};
    run.folder.removeItem();
    return Failure{u"Error Making Archive"_s, toolFailureLine(*response, u"in ditto"_s)};
}

StepResult makeDiskImage(Run &run)
{
    noteIdentifier(run);
    run.log.logBoldString(u"Making disk image..."_s);
    run.folder.setUpload(archive::diskImagePath(run.itemPath()));
    const QString image = run.folder.places().upload;
    const auto response =
        run.tools.runAndLog(hdiutilTool, archive::hdiutilCreateArguments(run.itemPath(), image));
    run.folder.removeItem(); // also when the image could not be made
    if (response->status() != 0)
        return Failure{diskImageError, toolFailureLine(*response, u"in hdiutil"_s)};
    run.folder.setItem(image);
    return Done{};
}

StepResult makeDiskImageWithDropDMG(Run &run)
{
    noteIdentifier(run);
    run.log.logBoldString(u"Making disk image..."_s);
    const auto result =
        run.host.appleScript.execute(archive::dropDMGSource(run.itemPath(), run.live.dropDMGConfiguration()));
    run.folder.removeItem();
    if (!result.error.isNull())
        return Failure{diskImageError, u"Error creating disk image with DropDMG: %1"_s.arg(result.error)};
    if (!result.file)
        return Failure{diskImageError, u"Unknown error creating disk image with DropDMG"_s};
    takeDropDMGImage(run, *result.file);
    return Done{};
}

StepResult findPrimaryBundleID(Run &run)
{
    const auto attached = run.tools.run(
        hdiutilTool, {u"attach"_s, u"-noverify"_s, u"-noidmereveal"_s, u"-noautoopen"_s, run.itemPath()});
    if (attached->status() != 0)
        return Done{};
    const QString volume = archive::mountPoint(attached->outputString());
    const QString identifier = identifierOfFirstApp(run.host.files, volume);
    if (!identifier.isEmpty())
        run.identifier = identifier;
    // The tool refuses this verb, and the image stays mounted, which people have come to rely on.
    run.tools.run(hdiutilTool, {u"dettach"_s, u"-force"_s, volume});
    return Done{};
}

} // namespace sealwright
