#include "document/mainwincontroller.h"

#include "document/workingfoldernames.h"
#include "platform/fileservice.h"
#include "platform/itempath.h"

using namespace Qt::StringLiterals;

bool MainWinController::createWorkingFolderAndLog()
{
    logBoldString(u"Creating working copy..."_s);
    auto &files = host().files;
    const QString original = itempath::fromUrl(originalAppletURL());
    const QString base = itempath::withoutExtension(originalFileName());
    const QString folder =
        itempath::appending(itempath::folder(original), workingfolder::name(base, workingfolder::working));
    const QString copy = itempath::appending(folder, originalFileName());
    appletURL.set(itempath::toUrl(copy));
    files.removeItem(folder).ignore();
    if (const auto created = files.createDirectory(folder); !created) {
        reportFailure(u"Cannot Create Working Folder"_s,
                      u"Failed to create working folder '%1': %2"_s.arg(folder, created.error()));
        return false;
    }
    if (!emptyWorkingFolder(folder))
        return false;
    openLog(itempath::appending(folder, workingfolder::logName.toString()), workingfolder::banner(copy));
    // The tools follow links: the copy of one would lead them to the item itself.
    if (const auto copied = files.copyResolvedItem(original, copy); !copied) {
        const QString error = u"Failed to copy file to working folder '%1': %2"_s.arg(folder, copied.error());
        logToFile(error);
        reportFailure(u"Cannot Copy File"_s, error);
        return false;
    }
    return true;
}

bool MainWinController::emptyWorkingFolder(const QString &folder)
{
    auto &files = host().files;
    for (const QString &name : files.contentsOfDirectory(folder, platform::FolderLink::leaveAlone)) {
        if (const auto removed = files.removeItem(itempath::appending(folder, name)); !removed) {
            reportFailure(u"Cannot Empty Working Folder"_s,
                          u"Failed to empty working folder '%1': %2"_s.arg(folder, removed.error()));
            return false;
        }
    }
    return true;
}

void MainWinController::openLog(const QString &path, const QString &banner)
{
    closeLog();
    if (!loggingToFile())
        return;
    auto &files = host().files;
    if (!files.isReachable(path) && !files.createFile(path))
        return; // the window log is then the only one
    logHandle.set(files.openForAppending(path));
    logToFile(banner);
}

void MainWinController::renameWorkingFolderWith(const QString &suffix)
{
    auto &files = host().files;
    const QString copy = itempath::fromUrl(appletURL());
    const QString folder = itempath::folder(copy);
    const QString base = itempath::withoutExtension(originalFileName());
    const QString target = itempath::appending(itempath::folder(folder), workingfolder::name(base, suffix));
    if (files.isReachable(target) && !files.trashItem(target)) {
        const QString old = target + u" - old"_s;
        files.removeItem(old).ignore();
        files.moveItem(target, old).ignore();
    }
    files.moveItem(folder, target).ignore();
    appletURL.set(itempath::toUrl(itempath::appending(target, itempath::lastComponent(copy))));
    if (const QString submitted = submitFilePath(); !submitted.isNull())
        submitFilePath.set(itempath::appending(target, itempath::lastComponent(submitted)));
}

void MainWinController::moveOriginalIntoWorkingFolder()
{
    auto &files = host().files;
    const QString folder = itempath::folder(itempath::fromUrl(appletURL()));
    const QString original = itempath::appending(itempath::folder(folder), originalFileName());
    originalAppletURL.set(itempath::toUrl(original));
    if (!files.isReachable(original))
        return;
    const QString base = itempath::withoutExtension(originalFileName());
    const QString keeper = itempath::appending(folder, workingfolder::unmodifiedOriginalName(base));
    if (!files.createDirectory(keeper))
        return;
    if (!files.moveItem(original, itempath::appending(keeper, originalFileName())))
        files.removeItem(keeper).ignore();
}
