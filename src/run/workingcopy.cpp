#include "run/workingcopy.h"

#include "run/run.h"
#include "run/workingfoldernames.h"

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

Failure folderFailure(const QString &title, const QString &logLine)
{
    return {title, logLine, FolderFate::keepsItsName};
}

} // namespace

StepResult createWorkingFolderAndLog(Run &run)
{
    run.log.logBoldString(u"Creating working copy..."_s);
    RunFolder &folder = run.folder;
    folder.aimAtCopy();
    folder.remove().ignore();
    if (const auto created = folder.create(); !created)
        return folderFailure(
            u"Cannot Create Working Folder"_s,
            u"Failed to create working folder '%1': %2"_s.arg(folder.path(), created.error()));
    if (const auto emptied = folder.empty(); !emptied)
        return folderFailure(
            u"Cannot Empty Working Folder"_s,
            u"Failed to empty working folder '%1': %2"_s.arg(folder.path(), emptied.error()));
    run.openLog(folder.path(workingfolder::logName), workingfolder::banner(run.itemPath()));
    if (const auto copied = folder.copyOriginal(); !copied) {
        const QString error =
            u"Failed to copy file to working folder '%1': %2"_s.arg(folder.path(), copied.error());
        run.log.logToFile(error);
        return folderFailure(u"Cannot Copy File"_s, error);
    }
    return Done{};
}

} // namespace sealwright
